// The scanner's panel: the button that was pressed last, until a host's scan takes it or another is pressed.
// Threads: any.
#pragma once
#include <mutex>
#include <optional>

#include "protocol/panel_settings.h"

namespace vscan {

class Panel {
 public:
  void press(PanelSettings settings) {
    const std::lock_guard lock(mutex_);
    pressed_ = settings;
  }
  void release() {
    const std::lock_guard lock(mutex_);
    pressed_.reset();
  }
  std::optional<PanelSettings> pressed() const {
    const std::lock_guard lock(mutex_);
    return pressed_;
  }

 private:
  mutable std::mutex mutex_;
  std::optional<PanelSettings> pressed_;  // guarded by mutex_
};

}  // namespace vscan
