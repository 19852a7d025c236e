// Questions to the messages that a case left in the log.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/foundation/log_sandbox.h"

namespace foundation_test {

using Messages = std::vector<std::string>;

inline long countOf(const Messages& messages, const std::string& message) {
  return std::count(messages.begin(), messages.end(), message);
}
inline long countOfStart(const Messages& messages, const std::string& start) {
  return std::count_if(messages.begin(), messages.end(),
                       [&](const std::string& message) { return message.rfind(start, 0) == 0; });
}

// The messages that a case writes at each level alone: [0], [1], [2]. The case is run once for each set-up level.
template <class Code>
std::vector<Messages> messagesByLevel(Code code) {
  std::vector<Messages> levels;
  for (int level = 0; level < 3; ++level) {
    levels.push_back(runWithLog("LogLevel=" + std::to_string(level) + "\n", code).messages());
  }
  return levels;
}

// The message is written at that level: it is there from the set-up of that level on, and not before.
inline void expectAtLevel(const std::vector<Messages>& levels, int level, const std::string& message) {
  for (int setup = 0; setup < 3; ++setup) {
    EXPECT_EQ(countOf(levels[static_cast<std::size_t>(setup)], message) > 0, setup >= level)
        << "\"" << message << "\" with a set-up of level " << setup;
  }
}
inline void expectStartAtLevel(const std::vector<Messages>& levels, int level, const std::string& start) {
  for (int setup = 0; setup < 3; ++setup) {
    EXPECT_EQ(countOfStart(levels[static_cast<std::size_t>(setup)], start) > 0, setup >= level)
        << "\"" << start << "...\" with a set-up of level " << setup;
  }
}

}  // namespace foundation_test
