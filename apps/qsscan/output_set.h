// The files that a scan leaves: one document, or a file for each page.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "document_writer.h"
#include "output_file.h"

namespace qsscan {

struct OutputPlan {
  Format format = Format::kPdf;
  std::string path;   // of the document; "-" is standard output
  std::string batch;  // a name pattern for one file per page; empty where path counts
};

// Which format, and where to. Each argument may be empty. A format that is not named follows from the ending of the
// file's name; without a name the output is scan-DATE-TIME in the current folder. Throws CommandError (usage).
OutputPlan planOutput(std::string_view format, const std::string& path, const std::string& batch);

// The name for a page number from a pattern with one %d or %03d in it, "%%" being a percent sign. Throws CommandError
// (usage) for any other pattern.
std::string batchName(std::string_view pattern, int number);

// "page.png", 7 -> "page-007.png"
std::string numberedName(const std::string& path, int number);

// Each file appears under its name when it is complete. Failures throw CommandError (cannot write).
class OutputSet {
 public:
  // Opens the first file, so that a place that cannot be written shows before the paper moves.
  OutputSet(OutputPlan plan, WriterOptions options);

  void addPage(const Page& page);

  // Completes what is under way. Without a page nothing is left behind.
  void finish();

  // The complete files, in order.
  const std::vector<std::string>& files() const { return files_; }
  // Pages in complete files.
  int keptPages() const { return keptPages_; }

 private:
  void open(const std::string& path);
  void close(const std::string& name);
  bool onePagePerFile() const { return !plan_.batch.empty() || !rowOf(plan_.format).holdsManyPages; }

  OutputPlan plan_;
  WriterOptions options_;
  std::unique_ptr<OutputFile> file_;  // the file under way
  std::unique_ptr<DocumentWriter> writer_;
  int pagesInFile_ = 0;  // in the file under way
  int pages_ = 0;        // given to a writer that took them
  int keptPages_ = 0;
  std::vector<std::string> files_;
};

}  // namespace qsscan
