#include "pdf_file.h"

#include <array>
#include <cerrno>

#include "output_file.h"

namespace qsscan {

std::string reference(int number) { return std::to_string(number) + " 0 R"; }

PdfFile::PdfFile(std::FILE* stream) : stream_(stream) {
  // Bytes above 127 tell transfer programs that this is no text.
  write("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");
}

int PdfFile::reserve() {
  offsets_.push_back(0);
  return static_cast<int>(offsets_.size());
}

int PdfFile::add(std::string_view body) {
  const int number = reserve();
  add(number, body);
  return number;
}

void PdfFile::add(int number, std::string_view body) {
  beginObject(number);
  write(body);
  write("\nendobj\n");
}

int PdfFile::addStream(std::string_view entries, std::string_view data) {
  const int number = beginStream(entries, data.size());
  write(data);
  write("\nendstream\nendobj\n");
  return number;
}

int PdfFile::addStream(std::string_view entries, SpoolFile& spool) {
  const int number = beginStream(entries, spool.size());
  std::array<std::uint8_t, 1 << 16> buffer;
  std::uint64_t offset = 0;
  while (const std::size_t n = spool.read(offset, buffer)) {
    write({reinterpret_cast<const char*>(buffer.data()), n});
    offset += n;
  }
  write("\nendstream\nendobj\n");
  return number;
}

void PdfFile::addEnd(int catalog, int information) {
  const std::uint64_t tableOffset = bytes_;
  const std::string size = std::to_string(offsets_.size() + 1);
  write("xref\n0 " + size + "\n0000000000 65535 f \n");
  for (const std::uint64_t offset : offsets_) {
    std::array<char, 24> line{};  // each of 20 bytes
    std::snprintf(line.data(), line.size(), "%010llu 00000 n \n", static_cast<unsigned long long>(offset));
    write(line.data());
  }
  write("trailer\n<< /Size " + size + " /Root " + reference(catalog) + " /Info " + reference(information) +
        " >>\nstartxref\n" + std::to_string(tableOffset) + "\n%%EOF\n");
}

bool PdfFile::flush() {
  if (error_ == 0 && std::fflush(stream_) != 0) error_ = errno;
  return error_ == 0;
}

bool PdfFile::cutBackTo(const Mark& mark) {
  if (!cutStream(stream_, mark.bytes)) return false;
  bytes_ = mark.bytes;
  offsets_.resize(mark.objects);
  error_ = 0;
  return true;
}

void PdfFile::write(std::string_view text) {
  bytes_ += text.size();
  if (error_ == 0 && std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) error_ = errno;
}

void PdfFile::beginObject(int number) {
  offsets_[static_cast<std::size_t>(number - 1)] = bytes_;
  write(std::to_string(number) + " 0 obj\n");
}

int PdfFile::beginStream(std::string_view entries, std::uint64_t bytes) {
  const int number = reserve();
  beginObject(number);
  write("<< " + std::string(entries) + " /Length " + std::to_string(bytes) + " >>\nstream\n");
  return number;
}

}  // namespace qsscan
