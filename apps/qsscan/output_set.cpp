#include "output_set.h"

#include <cctype>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <utility>

#include "exit_codes.h"

namespace qsscan {
namespace {

// The place of the ending's dot, or the end of the path where there is none.
std::size_t endingStart(const std::string& path) {
  const auto slash = path.rfind('/');
  const auto dot = path.rfind('.');
  const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
  return dot == std::string::npos || dot <= nameStart ? path.size() : dot;
}

std::string dateName(Format format) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  char text[40];
  std::strftime(text, sizeof text, "scan-%Y%m%d-%H%M%S.", &local);
  return std::string(text) + rowOf(format).ending;
}

std::string temporaryFolder() {
  const char* folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

std::string folderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string padded(int number, std::size_t digits) {
  std::string text = std::to_string(number);
  if (text.size() < digits) text.insert(0, digits - text.size(), '0');
  return text;
}

}  // namespace

OutputPlan planOutput(std::string_view format, const std::string& path, const std::string& batch) {
  if (!path.empty() && !batch.empty()) {
    throw CommandError(ExitCode::kUsage,
                       "-o and --batch exclude each other: one names a file, the other a file per page.");
  }
  if (!batch.empty()) batchName(batch, 1);  // refuses a bad pattern before the scan
  OutputPlan plan;
  const std::string& name = batch.empty() ? path : batch;
  if (!format.empty()) {
    const auto known = findFormat(format);
    if (!known) {
      throw CommandError(ExitCode::kUsage,
                         "The format \"" + std::string(format) + "\" is unknown. There are " + formatNames() + ".");
    }
    plan.format = *known;
  } else if (!name.empty() && name != "-") {
    const std::size_t dot = endingStart(name);
    const auto known = dot < name.size() ? findFormat(name.substr(dot + 1)) : std::nullopt;
    if (!known) {
      throw CommandError(ExitCode::kUsage,
                         "The name \"" + name +
                             "\" does not tell the format: let it end in .pdf, .tif, .png, .jpg or .pnm, "
                             "or give --format.");
    }
    plan.format = *known;
  }
  plan.batch = batch;
  plan.path = path.empty() && batch.empty() ? dateName(plan.format) : path;
  return plan;
}

std::string batchName(std::string_view pattern, int number) {
  std::string name;
  int fields = 0;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '%') {
      name += pattern[i];
      continue;
    }
    std::size_t end = i + 1;
    while (end < pattern.size() && std::isdigit(static_cast<unsigned char>(pattern[end]))) ++end;
    const std::string_view digits = pattern.substr(i + 1, end - i - 1);
    const char letter = end < pattern.size() ? pattern[end] : '\0';
    if (letter == '%' && digits.empty()) {
      name += '%';
    } else if (letter == 'd' && (digits.empty() || (digits.size() == 2 && digits[0] == '0'))) {
      name += padded(number, digits.empty() ? 1 : static_cast<std::size_t>(digits[1] - '0'));
      ++fields;
    } else {
      fields = 2;
      break;
    }
    i = end;
  }
  if (fields == 1) return name;
  throw CommandError(ExitCode::kUsage, "The pattern \"" + std::string(pattern) +
                                           "\" needs the page number once, as %d or %03d, such as page%03d.png.");
}

std::string numberedName(const std::string& path, int number) {
  const std::size_t dot = endingStart(path);
  return path.substr(0, dot) + "-" + padded(number, 3) + path.substr(dot);
}

OutputSet::OutputSet(OutputPlan plan, WriterOptions options) : plan_(std::move(plan)), options_(std::move(options)) {
  open(plan_.batch.empty() ? plan_.path : batchName(plan_.batch, 1));
}

void OutputSet::open(const std::string& path) {
  file_ = std::make_unique<OutputFile>(path);
  // Beside a file of our own there is room for what will be written there; beside a device or a pipe there may be none.
  options_.scratchDir = file_->isOwn() ? folderOf(path) : temporaryFolder();
  options_.isOwnFile = file_->isOwn();
  writer_ = makeWriter(plan_.format, file_->stream(), options_);
  pagesInFile_ = 0;
}

void OutputSet::close(const std::string& name) {
  // Taken out first: a file that fails here is not tried again.
  const auto file = std::move(file_);
  const auto writer = std::move(writer_);
  pagesInFile_ = 0;
  const Finished finished = writer->finish();
  if (finished.pages > 0) {
    file->commit();
    keptPages_ += finished.pages;
    files_.push_back(name);
  }
  if (finished.failure) throw *finished.failure;
}

void OutputSet::addPage(const Page& page) {
  const int number = pages_ + 1;
  if (!plan_.batch.empty()) {
    if (!file_) open(batchName(plan_.batch, number));
    writer_->addPage(page);
    pagesInFile_ = 1;
    close(batchName(plan_.batch, number));
  } else if (rowOf(plan_.format).holdsManyPages) {
    writer_->addPage(page);
    ++pagesInFile_;
  } else {
    // The first page waits under its temporary name until it is known whether more follow.
    if (number > 1 && plan_.path == "-") {
      throw CommandError(ExitCode::kCannotWrite,
                         "Standard output takes one page in this format. Use --format pdf or tiff, or --pages 1.");
    }
    if (number == 2) {
      file_->setPath(numberedName(plan_.path, 1));
      close(numberedName(plan_.path, 1));
    }
    if (!file_) open(numberedName(plan_.path, number));
    writer_->addPage(page);
    pagesInFile_ = 1;
    if (number > 1) close(numberedName(plan_.path, number));
  }
  pages_ = number;
}

void OutputSet::finish() {
  if (pagesInFile_ > 0) close(plan_.path);
  writer_.reset();
  file_.reset();
}

}  // namespace qsscan
