#include "jpeg_reader.h"

#include <jerror.h>

#include <algorithm>
#include <cmath>

namespace jpeg_decode {
namespace {

// A picture in several scans is held as coefficients before its first line comes out.
constexpr std::size_t kMaxWorkingBytes = std::size_t{1} << 29;
// Real pictures have up to about a dozen; each one costs a walk over the whole picture, however few its bytes.
constexpr int kMaxScans = 64;

constexpr JOCTET kEndMarker[] = {0xFF, JPEG_EOI};

std::uint32_t dotsPerInch(int unit, std::uint32_t density) {
  constexpr int kPerInch = 1;
  constexpr int kPerCentimetre = 2;
  if (unit == kPerInch) return density;
  if (unit == kPerCentimetre) return static_cast<std::uint32_t>(std::lround(density * 2.54));
  return 0;
}

}  // namespace

// libjpeg leaves a failed call by longjmp, back to here. Between this frame and libjpeg's there is only action, which
// must not hold anything with a destructor.
template <class Action>
Step JpegReader::guarded(Action action) {
  if (setjmp(errors_.jump) != 0) return errors_.msg_code == JERR_OUT_OF_MEMORY ? Step::NoMemory : Step::Failed;
  const Step step = action();
  // The last segment was cut and is passed over; libjpeg waits at the end that stands in its place.
  return step == Step::NeedInput && last_ ? action() : step;
}

JpegReader::JpegReader() {
  info_.err = jpeg_std_error(&errors_);
  errors_.error_exit = onError;
  errors_.emit_message = onMessage;
  info_.client_data = this;
  source_.init_source = [](j_decompress_ptr) {};
  source_.fill_input_buffer = onEmpty;
  source_.skip_input_data = onSkip;
  source_.resync_to_restart = jpeg_resync_to_restart;
  source_.term_source = [](j_decompress_ptr) {};
  progress_.progress_monitor = onScan;
  created_ = guarded([this] {
               jpeg_create_decompress(&info_);
               return Step::Done;
             }) == Step::Done;
  info_.src = &source_;
  info_.progress = &progress_;
}

JpegReader::~JpegReader() { jpeg_destroy_decompress(&info_); }

void JpegReader::give(const std::uint8_t* data, std::size_t size, bool last) {
  const std::size_t skipped = std::min(skipBytes_, size);
  skipBytes_ -= skipped;
  source_.next_input_byte = data + skipped;
  source_.bytes_in_buffer = size - skipped;
  last_ = last;
}

Step JpegReader::readHeader(Picture& picture) {
  if (!created_) return Step::NoMemory;
  return guarded([&] {
    if (jpeg_read_header(&info_, TRUE) == JPEG_SUSPENDED) return Step::NeedInput;
    if (!isAcceptable()) return Step::Failed;
    if (workingBytes() > kMaxWorkingBytes) return Step::NoMemory;
    info_.out_color_space = info_.num_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    fillPicture(picture);
    frame_ = {info_.image_width,    info_.image_height,     info_.num_components,
              info_.data_precision, info_.progressive_mode, info_.arith_code};
    return Step::Done;
  });
}

Step JpegReader::start() {
  const auto takeScans = [this] { return jpeg_start_decompress(&info_) ? Step::Done : Step::NeedInput; };
  const Step step = guarded(takeScans);
  const bool linesCame = info_.input_scan_number > 1 || info_.input_iMCU_row > 0;
  if (step != Step::Failed || !linesCame || tooManyScans_) return step;
  // libjpeg gives up on a segment between two scans that makes no sense. The scans before it are a picture.
  endHere();
  return guarded(takeScans);
}

// The end of the picture in the place of the segment that libjpeg is at.
void JpegReader::endHere() {
  if (frame_) {
    info_.image_width = frame_->widthPx;
    info_.image_height = frame_->heightPx;
    info_.num_components = frame_->components;
    info_.data_precision = frame_->precision;
    info_.progressive_mode = frame_->isProgressive;
    info_.arith_code = frame_->isArithmetic;
  }
  info_.unread_marker = JPEG_EOI;
}

Step JpegReader::readLines(std::uint8_t** rows, std::size_t count, std::size_t& got) {
  got = 0;
  return guarded([&] {
    got = jpeg_read_scanlines(&info_, rows, static_cast<JDIMENSION>(count));
    return got > 0 ? Step::Done : Step::NeedInput;
  });
}

bool JpegReader::isAcceptable() const {
  const J_COLOR_SPACE colors = info_.jpeg_color_space;
  return info_.num_components == 1 || (info_.num_components == 3 && (colors == JCS_YCbCr || colors == JCS_RGB));
}

std::size_t JpegReader::workingBytes() const {
  if (!jpeg_has_multiple_scans(const_cast<j_decompress_ptr>(&info_))) return 0;
  std::size_t blocks = 0;
  for (int i = 0; i < info_.num_components; ++i) {
    const jpeg_component_info& part = info_.comp_info[i];
    blocks += std::size_t{part.width_in_blocks} * part.height_in_blocks;
  }
  return blocks * sizeof(JBLOCK);
}

void JpegReader::fillPicture(Picture& picture) const {
  picture.widthPx = info_.image_width;
  picture.heightPx = info_.image_height;
  picture.bitsPerPixel = info_.num_components == 1 ? 8 : 24;
  if (!info_.saw_JFIF_marker) return;
  picture.dpiX = dotsPerInch(info_.density_unit, info_.X_density);
  picture.dpiY = dotsPerInch(info_.density_unit, info_.Y_density);
}

void JpegReader::onError(j_common_ptr info) { std::longjmp(of(info).errors_.jump, 1); }

// Warnings of damaged data: libjpeg goes on, with mid-grey where nothing can be made of the data.
void JpegReader::onMessage(j_common_ptr info, int level) {
  if (level >= 0) return;
  ++info->err->num_warnings;
  JpegReader& reader = of(info);
  if (info->err->msg_code == JWRN_HIT_MARKER && reader.info_.unread_marker == JPEG_EOI &&
      reader.info_.input_scan_number <= 1 && reader.info_.input_iMCU_row == 0) {
    reader.nothingCame_ = true;
  }
}

void JpegReader::onScan(j_common_ptr info) {
  JpegReader& reader = of(info);
  if (reader.info_.input_scan_number <= kMaxScans) return;
  reader.tooManyScans_ = true;
  onError(info);
}

boolean JpegReader::onEmpty(j_decompress_ptr info) {
  JpegReader& reader = of(reinterpret_cast<j_common_ptr>(info));
  if (!reader.last_) return FALSE;
  // Inside a marker's segment: the bytes of the end would be taken for its content, and the scans before it lost.
  if (info->unread_marker != 0) {
    reader.endHere();
    return FALSE;
  }
  reader.source_.next_input_byte = kEndMarker;
  reader.source_.bytes_in_buffer = sizeof(kEndMarker);
  return TRUE;
}

void JpegReader::onSkip(j_decompress_ptr info, long count) {
  if (count <= 0) return;
  JpegReader& reader = of(reinterpret_cast<j_common_ptr>(info));
  const auto wanted = static_cast<std::size_t>(count);
  const std::size_t here = std::min(wanted, reader.source_.bytes_in_buffer);
  reader.source_.next_input_byte += here;
  reader.source_.bytes_in_buffer -= here;
  reader.skipBytes_ = wanted - here;
}

}  // namespace jpeg_decode
