#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page-renderer.h>
#include <poppler-page.h>

#include <cmath>
#include <memory>
#include <mutex>

#include "sheets/sheet_file.h"
#include "support/failure.h"

namespace vscan {
namespace {

constexpr double kPointsPerInch = 72;

// The library's documents share fonts and settings: one thread at a time, whichever scanner it works for.
std::mutex& popplerMutex() {
  static std::mutex mutex;
  return mutex;
}

class PdfFile final : public SheetFile {
 public:
  explicit PdfFile(const std::string& path) : SheetFile(path) {
    const std::lock_guard lock(popplerMutex());
    poppler::set_debug_error_function([](const std::string&, void*) {}, nullptr);
    document_.reset(poppler::document::load_from_file(path));
    if (!document_) throw Failure(path + " is broken or not a PDF");
    if (document_->is_locked()) throw Failure(path + " is locked by a password");
    if (document_->pages() < 1) throw Failure(path + " has no pages");
  }

  int pages() const override { return document_->pages(); }
  bool hasResolution() const override { return true; }

  Sheet load(int page, int dpiX, int dpiY) const override {
    const std::lock_guard lock(popplerMutex());
    const std::unique_ptr<poppler::page> drawn(document_->create_page(page));
    const std::string name = path() + ", page " + std::to_string(page + 1) + ",";
    if (!drawn) throw Failure(name + " is broken");
    const poppler::rectf box = drawn->page_rect(poppler::crop_box);
    checkSheetSize(path(), std::llround(std::min(1e6, box.width() / kPointsPerInch * dpiX)),
                   std::llround(std::min(1e6, box.height() / kPointsPerInch * dpiY)));
    poppler::page_renderer renderer;
    renderer.set_render_hint(poppler::page_renderer::antialiasing);
    renderer.set_render_hint(poppler::page_renderer::text_antialiasing);
    renderer.set_image_format(poppler::image::format_rgb24);
    const poppler::image image = renderer.render_page(drawn.get(), dpiX, dpiY);
    if (!image.is_valid()) throw Failure(name + " could not be drawn");
    Sheet sheet{Raster(image.width(), image.height(), 3), static_cast<double>(dpiX), static_cast<double>(dpiY)};
    for (int y = 0; y < image.height(); ++y) {
      const auto* in = reinterpret_cast<const std::uint8_t*>(image.const_data()) +
                       static_cast<std::size_t>(y) * static_cast<std::size_t>(image.bytes_per_row());
      std::copy(in, in + sheet.pixels.lineBytes(), sheet.pixels.line(y));
    }
    return sheet;
  }

 private:
  std::unique_ptr<poppler::document> document_;
};

}  // namespace

std::shared_ptr<const SheetFile> openPdf(const std::string& path) { return std::make_shared<PdfFile>(path); }

}  // namespace vscan
