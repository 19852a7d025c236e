// What the benchmark scans.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "picture.h"

namespace qsscan_bench {

using Arguments = std::vector<std::string>;

struct Job {
  const char* name;  // for the table, and for --only
  int dpi;
  bool isColor;      // of the sheets
  bool isMono;       // of the pages
  const char* file;  // the output's name; %d stands for the page where each has a file
  Arguments options;
};

const std::vector<Job>& jobs();

// A4 sheets as files in the folder, and as they look: as many as pages, but no more than four.
struct Sheets {
  std::vector<e2e::Picture> pictures;
  Arguments paths;
};
Sheets drawSheets(const Job& job, int pages, const std::string& folder);

// Empty, or a sentence that tells how the job's output differs from so many pages of the sheets over and over.
std::string faultOf(const Job& job, const Sheets& sheets, const std::string& folder, int pages);

}  // namespace qsscan_bench
