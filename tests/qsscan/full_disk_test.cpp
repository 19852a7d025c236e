// Documents that find no more room: the pages before are whole, in a sound file under its final name.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <tiffio.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <optional>
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <random>
#include <string>
#include <vector>

#include "apps/qsscan/exit_codes.h"
#include "apps/qsscan/output_set.h"
#include "made_page.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using namespace qsscan_test;
using Names = std::set<std::string>;

// Not to be coded shorter, so that sizes are those of the pixels.
Page noise(int widthPx, int heightPx, int number) {
  Page page = makePage(widthPx, heightPx, 24, 300, number);
  std::mt19937 random(static_cast<unsigned>(number));
  for (auto& byte : page.pixels) byte = static_cast<std::uint8_t>(random());
  return page;
}

std::string rgbOf(const Page& page) {
  std::string samples;
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* line = page.line(y);
    for (int x = 0; x < page.widthPx; ++x) {
      for (const int channel : {2, 1, 0}) samples += static_cast<char>(line[3 * x + channel]);
    }
  }
  return samples;
}

// The pictures of a document, as a strict reader sees them.
std::vector<std::string> readPdf(const std::string& name) {
  QPDF pdf;
  pdf.setSuppressWarnings(true);
  pdf.setAttemptRecovery(false);
  pdf.processFile(name.c_str());
  std::vector<std::string> pictures;
  for (auto& page : QPDFPageDocumentHelper(pdf).getAllPages()) {
    const auto data = page.getImages().begin()->second.getStreamData(qpdf_dl_all);
    pictures.emplace_back(reinterpret_cast<const char*>(data->getBuffer()), data->getSize());
  }
  EXPECT_TRUE(pdf.getWarnings().empty());
  return pictures;
}

std::vector<std::string> readTiff(const std::string& name) {
  static int complaints = 0;
  complaints = 0;
  TIFFSetErrorHandler([](const char*, const char*, va_list) { ++complaints; });
  TIFFSetWarningHandler([](const char*, const char*, va_list) { ++complaints; });
  std::vector<std::string> pictures;
  const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(name.c_str(), "r"), TIFFClose);
  EXPECT_NE(tiff, nullptr);
  do {
    std::string picture;
    for (std::uint32_t strip = 0; strip < TIFFNumberOfStrips(tiff.get()); ++strip) {
      std::string part(static_cast<std::size_t>(TIFFStripSize(tiff.get())), '\0');
      const tmsize_t got = TIFFReadEncodedStrip(tiff.get(), strip, part.data(), -1);
      EXPECT_GE(got, 0);
      picture += part.substr(0, static_cast<std::size_t>(got));
    }
    pictures.push_back(picture);
  } while (TIFFReadDirectory(tiff.get()) == 1);
  EXPECT_EQ(complaints, 0);
  return pictures;
}

struct Outcome {
  int kept = 0;
  std::string sentence;  // of the first failure
};

class FullDisk : public testing::TestWithParam<Format> {
 protected:
  FullDisk() {
    std::signal(SIGXFSZ, SIG_IGN);
    options.lossless = true;
  }

  Outcome write(const std::string& name, const std::vector<Page>& pages) {
    Outcome outcome;
    std::optional<OutputSet> output;
    try {
      output.emplace(OutputPlan{GetParam(), name, ""}, options);
      for (const Page& page : pages) output->addPage(page);
    } catch (const CommandError& error) {
      outcome.sentence = error.what();
    }
    if (!output) return outcome;
    try {
      output->finish();
    } catch (const CommandError& error) {
      if (outcome.sentence.empty()) outcome.sentence = error.what();
    }
    outcome.kept = output->keptPages();
    EXPECT_EQ(output->files().size(), outcome.kept > 0 ? 1u : 0u);
    return outcome;
  }

  // The file holds the first pages, and nothing else lies beside it.
  void expectKept(const TemporaryFolder& folder, const Outcome& outcome, const std::vector<Page>& pages) {
    if (outcome.kept == 0) {
      EXPECT_TRUE(folder.names().empty());
      return;
    }
    EXPECT_EQ(folder.names(), Names{"document"});
    const std::string name = folder.file("document");
    const auto pictures = GetParam() == Format::kPdf ? readPdf(name) : readTiff(name);
    ASSERT_EQ(pictures.size(), static_cast<std::size_t>(outcome.kept));
    for (std::size_t i = 0; i < pictures.size(); ++i) EXPECT_EQ(pictures[i], rgbOf(pages[i])) << "page " << i + 1;
  }

  WriterOptions options;
};

// How many bytes documents of one page, two pages and so on take.
std::vector<std::size_t> sizesOf(Format format, const WriterOptions& options, const std::vector<Page>& pages) {
  std::vector<std::size_t> sizes;
  for (std::size_t count = 1; count <= pages.size(); ++count) {
    const TemporaryFolder folder;
    OutputSet output({format, folder.file("document"), ""}, options);
    for (std::size_t i = 0; i < count; ++i) output.addPage(pages[i]);
    output.finish();
    sizes.push_back(folder.content("document").size());
  }
  return sizes;
}

class FileLimit {
 public:
  explicit FileLimit(std::size_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileLimit() { ::setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

TEST_P(FullDisk, AsManyPagesAreKeptAsFitIntoTheLargestFile) {
  std::vector<Page> pages;
  for (int i = 1; i <= 4; ++i) pages.push_back(noise(19, 23, i));
  const auto sizes = sizesOf(GetParam(), options, pages);
  ASSERT_LT(sizes.back(), 20000u);
  for (std::size_t limit = 1; limit <= sizes.back() + 40; limit += limit + 200 < sizes.front() ? 97 : 7) {
    SCOPED_TRACE(limit);
    const TemporaryFolder folder;
    Outcome outcome;
    {
      const FileLimit limited(limit);
      outcome = write(folder.file("document"), pages);
    }
    int fitting = 0;
    for (const std::size_t size : sizes) fitting += size <= limit ? 1 : 0;
    ASSERT_EQ(outcome.kept, fitting) << outcome.sentence;
    EXPECT_EQ(outcome.sentence.empty(), fitting == 4);
    if (fitting < 4) {
      EXPECT_NE(outcome.sentence.find("File too large. Make room there"), std::string::npos) << outcome.sentence;
    }
    expectKept(folder, outcome, pages);
    if (HasFailure()) return;
  }
}

// A file system of 512 KiB; nothing where this user may not have one.
class SmallDisk {
 public:
  explicit SmallDisk(const std::string& folder) : folder_(folder) {
    const bool mayMount = ::geteuid() == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
    isThere_ = mayMount && ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=512k") == 0;
  }
  ~SmallDisk() {
    if (isThere_) ::umount2(folder_.c_str(), MNT_DETACH);
  }
  bool isThere() const { return isThere_; }

 private:
  const std::string folder_;
  bool isThere_ = false;
};

// What the page takes that did not fit is room enough for the end of the document.
TEST_P(FullDisk, EveryPageThatFittedOntoAFullDiskIsKept) {
  const TemporaryFolder folder;
  const SmallDisk disk(folder.file(""));
  if (!disk.isThere()) GTEST_SKIP() << "This user may not mount a small disk.";
  std::vector<Page> pages;
  for (int i = 1; i <= 30; ++i) pages.push_back(noise(120, 100, i));  // 35 to 50 KiB each when coded
  const Outcome outcome = write(folder.file("document"), pages);
  EXPECT_NE(outcome.sentence.find("No space left on device. Make room there"), std::string::npos) << outcome.sentence;
  expectKept(folder, outcome, pages);
  const std::size_t size = folder.content("document").size();
  EXPECT_GT(size, std::size_t{512 - 110} << 10) << "room for two pages at most is left";
}

INSTANTIATE_TEST_SUITE_P(Formats, FullDisk, testing::Values(Format::kPdf, Format::kTiff),
                         [](const auto& info) { return std::string(rowOf(info.param).name); });

}  // namespace
