#include "apps/qsscan/output_set.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "apps/qsscan/exit_codes.h"
#include "made_page.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using namespace qsscan_test;
using Names = std::set<std::string>;

Page page(int number) { return makePage(20, 10, 8, 300, number); }

OutputPlan document(const std::string& path, Format format = Format::kPdf) { return {format, path, ""}; }
OutputPlan batch(const std::string& pattern, Format format) { return {format, "", pattern}; }

struct PlanRow {
  const char *format, *path, *batch;
  Format expected;
};
class Plan : public testing::TestWithParam<PlanRow> {};
TEST_P(Plan, FormatFollowsFromOptionOrName) {
  EXPECT_EQ(planOutput(GetParam().format, GetParam().path, GetParam().batch).format, GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(
    OutputSet, Plan,
    testing::Values(PlanRow{"", "", "", Format::kPdf}, PlanRow{"", "a.PDF", "", Format::kPdf},
                    PlanRow{"", "dir.x/a.png", "", Format::kPng}, PlanRow{"", "a.jpg", "", Format::kJpeg},
                    PlanRow{"", "a.jpeg", "", Format::kJpeg}, PlanRow{"", "-", "", Format::kPdf},
                    PlanRow{"png", "-", "", Format::kPng}, PlanRow{"JPEG", "a.pdf", "", Format::kJpeg},
                    PlanRow{"pdf", "noending", "", Format::kPdf}, PlanRow{"", "", "p%d.png", Format::kPng},
                    PlanRow{"", "a.tif", "", Format::kTiff}, PlanRow{"tiff", "-", "", Format::kTiff},
                    PlanRow{"", "", "p%d.TIFF", Format::kTiff}, PlanRow{"", "a.pnm", "", Format::kPnm},
                    PlanRow{"", "a.ppm", "", Format::kPnm}, PlanRow{"pnm", "-", "", Format::kPnm}));

TEST(OutputSet, NamesThatDoNotTellTheFormatAreRefused) {
  for (const char* path : {"scan", "scan.gif", "dir.png/scan", ".png", "scan."}) {
    EXPECT_THROW(planOutput("", path, ""), CommandError) << path;
  }
}

TEST(OutputSet, BatchPatternsTakeThePageNumberOnce) {
  EXPECT_EQ(batchName("p%d.png", 7), "p7.png");
  EXPECT_EQ(batchName("p%03d.png", 7), "p007.png");
  EXPECT_EQ(batchName("p%03d.png", 12345), "p12345.png");
  EXPECT_EQ(batchName("100%%-%d", 1), "100%-1");
  for (const char* bad : {"", "p.png", "p%d%d", "p%s", "p%", "p%3d", "p%0d", "p%003d", "%n%d", "p%*d", "p%ld"}) {
    EXPECT_THROW(batchName(bad, 1), CommandError) << bad;
  }
}

TEST(OutputSet, NumbersGoBeforeTheEnding) {
  EXPECT_EQ(numberedName("page.png", 7), "page-007.png");
  EXPECT_EQ(numberedName("a.b/page", 1000), "a.b/page-1000");
  EXPECT_EQ(numberedName("a/.hidden", 1), "a/.hidden-001");
}

TEST(OutputSet, ADocumentAppearsUnderItsNameOnlyWhenComplete) {
  const TemporaryFolder folder;
  OutputSet output(document(folder.file("a.pdf")), {});
  output.addPage(page(1));
  output.addPage(page(2));
  EXPECT_EQ(folder.names(), Names{"a.pdf.part"});
  EXPECT_EQ(output.keptPages(), 0);
  output.finish();
  EXPECT_EQ(folder.names(), Names{"a.pdf"});
  EXPECT_EQ(output.files(), std::vector<std::string>{folder.file("a.pdf")});
  EXPECT_EQ(output.keptPages(), 2);
}

TEST(OutputSet, WithoutAPageNothingIsLeftAndAnOlderFileStays) {
  const TemporaryFolder folder;
  { std::ofstream(folder.file("a.pdf")) << "older"; }
  OutputSet output(document(folder.file("a.pdf")), {});
  output.finish();
  EXPECT_EQ(folder.names(), Names{"a.pdf"});
  EXPECT_EQ(folder.content("a.pdf"), "older");
  EXPECT_TRUE(output.files().empty());
}

TEST(OutputSet, AbandonedOutputLeavesNothing) {
  const TemporaryFolder folder;
  {
    OutputSet output(document(folder.file("a.pdf")), {});
    output.addPage(page(1));
  }
  EXPECT_TRUE(folder.names().empty());
}

TEST(OutputSet, OnePngKeepsItsNameAndSeveralAreNumbered) {
  const TemporaryFolder one;
  OutputSet single(document(one.file("a.png"), Format::kPng), {});
  single.addPage(page(1));
  EXPECT_EQ(one.names(), Names{"a.png.part"});
  single.finish();
  EXPECT_EQ(one.names(), Names{"a.png"});

  const TemporaryFolder many;
  OutputSet several(document(many.file("a.png"), Format::kPng), {});
  for (int i = 1; i <= 3; ++i) several.addPage(page(i));
  EXPECT_EQ(several.keptPages(), 3);
  several.finish();
  EXPECT_EQ(many.names(), (Names{"a-001.png", "a-002.png", "a-003.png"}));
  EXPECT_EQ(several.files().front(), many.file("a-001.png"));
  EXPECT_EQ(several.keptPages(), 3);
}

TEST(OutputSet, ABatchCompletesEachPageAtOnceInEveryFormat) {
  for (const Format format : {Format::kPng, Format::kJpeg, Format::kPdf}) {
    const TemporaryFolder folder;
    OutputSet output(batch(folder.file("p%02d.x"), format), {});
    output.addPage(page(1));
    EXPECT_EQ(folder.names(), Names{"p01.x"});
    output.addPage(page(2));
    EXPECT_EQ(folder.names(), (Names{"p01.x", "p02.x"}));
    output.finish();
    EXPECT_EQ(folder.names(), (Names{"p01.x", "p02.x"}));
    EXPECT_EQ(output.keptPages(), 2);
  }
}

TEST(OutputSet, AFileInTheWayOfABatchStopsItThereAndKeepsTheRest) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkdir(folder.file("p2.png").c_str(), 0777), 0);
  OutputSet output(batch(folder.file("p%d.png"), Format::kPng), {});
  output.addPage(page(1));
  EXPECT_THROW(output.addPage(page(2)), CommandError);
  output.finish();
  EXPECT_EQ(output.keptPages(), 1);
  EXPECT_EQ(folder.names(), (Names{"p1.png", "p2.png"}));
}

TEST(OutputSet, AFailedCommitIsNotTriedAgain) {
  const TemporaryFolder folder;
  OutputSet output(document(folder.file("a.pdf")), {});
  output.addPage(page(1));
  ASSERT_EQ(::mkdir(folder.file("a.pdf").c_str(), 0777), 0);  // a folder took the name meanwhile
  EXPECT_THROW(output.finish(), CommandError);
  output.finish();
  EXPECT_EQ(output.keptPages(), 0);
  EXPECT_TRUE(output.files().empty());
  EXPECT_EQ(folder.names(), Names{"a.pdf"});
}

TEST(OutputSet, APlaceThatCannotBeWrittenShowsBeforeAnyPage) {
  EXPECT_THROW(OutputSet(document("/nonexistent/a.pdf"), {}), CommandError);
  EXPECT_THROW(OutputSet(document("/"), {}), CommandError);
  EXPECT_THROW(OutputSet(batch("/nonexistent/p%d.png", Format::kPng), {}), CommandError);
}

TEST(OutputSet, ALinkStaysALinkAndItsTargetIsReplaced) {
  const TemporaryFolder folder;
  { std::ofstream(folder.file("target.png")) << "older"; }
  ASSERT_EQ(::symlink("target.png", folder.file("link.png").c_str()), 0);
  OutputSet output(document(folder.file("link.png"), Format::kPng), {});
  output.addPage(page(1));
  output.finish();
  struct stat info {};
  ASSERT_EQ(::lstat(folder.file("link.png").c_str(), &info), 0);
  EXPECT_TRUE(S_ISLNK(info.st_mode));
  EXPECT_EQ(folder.content("target.png").substr(1, 3), "PNG");
}

TEST(OutputSet, ADeviceIsWrittenDirectlyAndNotReplaced) {
  OutputSet output(document("/dev/null", Format::kPng), {});
  output.addPage(page(1));
  output.finish();
  struct stat info {};
  ASSERT_EQ(::stat("/dev/null", &info), 0);
  EXPECT_TRUE(S_ISCHR(info.st_mode));
  EXPECT_EQ(output.keptPages(), 1);
}

}  // namespace
