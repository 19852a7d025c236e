// Memory that runs out while a page is written: the program goes on to its end and keeps what it has.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "apps/qsscan/connect.h"
#include "apps/qsscan/exit_codes.h"
#include "apps/qsscan/scan_command.h"
#include "fake_scan_core.h"
#include "temporary_folder.h"

namespace {
// The next allocation of this thread fails, once.
thread_local bool failsNext = false;
}  // namespace

// Not inlined: GCC would take free for the wrong partner of new.
__attribute__((noinline)) void* operator new(std::size_t bytes) {
  if (failsNext) {
    failsNext = false;
    throw std::bad_alloc();
  }
  if (void* block = std::malloc(bytes == 0 ? 1 : bytes)) return block;
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* block) noexcept { std::free(block); }
__attribute__((noinline)) void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

using namespace qsscan;
using namespace qsscan_test;
using Names = std::set<std::string>;

// Progress goes out after each page: from the first on, on the writing thread.
ssize_t armAfterAPage(void*, const char*, std::size_t bytes) {
  failsNext = true;
  return static_cast<ssize_t>(bytes);
}

TEST(OutOfMemory, WhileAPageIsWrittenKeepsThePagesBeforeIt) {
  const TemporaryFolder folder;
  Options options;
  options.device = "host";
  options.wish.paper = *findPaper("a4");
  options.output = {Format::kPng, "", folder.file("p%d.png")};
  options.progress = ProgressStyle::kText;
  FakeScript script;
  script.capability = officeCapability();
  script.pages.assign(3, FakePage{});
  FakeScanCore core(script);
  std::FILE* progress = fopencookie(nullptr, "w", {nullptr, armAfterAPage, nullptr, nullptr});
  ASSERT_NE(progress, nullptr);

  const ScanReport report = runScan(core, connect(core, options.device), options, progress,
                                    [](const ScanReport&, const Options&) { FAIL(); });

  failsNext = false;
  std::fclose(progress);
  failsNext = false;
  EXPECT_EQ(report.exit, ExitCode::kInternal);
  EXPECT_NE(report.sentence.find("not enough memory"), std::string::npos) << report.sentence;
  EXPECT_EQ(report.pages.size(), 1u);
  EXPECT_EQ(folder.names(), (Names{"p1.png"}));
}

}  // namespace
