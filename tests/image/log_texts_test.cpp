// What the stages and their manager write into the log, at which level and in which order, and what they dump.
#include <gtest/gtest.h>

#include "image/ImageEnhanceThread.h"
#include "image/JpegDecodeThread.h"
#include "image/ScanDecThread.h"
#include "tests/fakes/fake_image_enhance.h"
#include "tests/fakes/fake_jpeg_decode.h"
#include "tests/fakes/fake_scan_dec.h"
#include "tests/fakes/test_bmp.h"
#include "tests/foundation/expect_log.h"
#include "tests/image/pipeline_run.h"
#include "tests/reception/keep_modules.h"

using namespace orvalle_scan_api;
using namespace foundation_test;
using fakes::ByteVector;

namespace {

// Before any case hides /tmp, in which this program and its modules may lie.
[[maybe_unused]] const bool kModulesAreLoaded = (reception_test::keepModulesLoaded(), true);

constexpr char kAllLevels[] = "LogLevel=2\n";

// One page of 5 pixels' width and number 7.
struct OnePage {
  fakes::Settings settings;
  CScanError scanError;
  fakes::FakeScanDec lines;
  fakes::FakeJpegDecode jpegs;
  fakes::FakeImageEnhance enhancer;
  CJpegDecodeThread jpegStage;
  CScanDecThread lineStage;
  CImageEnhanceThread enhanceStage;
  CImageData page;

  OnePage() { page.SetPageNo(7); }
  void lineRecords(int count) {
    page.m_rawData.StartWriteData(300, 200, 5, 0, COLORTYPE_COLOR24BIT, 6, 3);
    for (int i = 1; i <= count; ++i) {
      const ByteVector line(15, static_cast<std::uint8_t>(i));
      page.m_rawData.WriteLineData(6, 3, line.data(), 15);
    }
    page.m_rawData.FinishWriteData(false, 0);
  }
  void jpegBytes() {
    const ByteVector bytes = {0xFF, 0xD8, 1, 2, 3, 4};
    page.m_pCurrentStore = &page.m_jpegData;
    page.m_jpegData.StartWriteData(300, 200, 5, 3, COLORTYPE_COLOR24BIT, 5, 5);
    page.m_jpegData.WriteJpegBlock(bytes.data(), 6);
    page.m_jpegData.FinishWriteData(false, 0);
  }
  void decodedBmp(int height, int bpp = 24) {
    const ByteVector bmp = fakes::makeBmp(5, height, bpp, fakes::countingPixels(5, height, bpp));
    page.m_pCurrentStore = &page.m_decodedData;
    page.m_decodedData.StartWriteData(300, 300, 5, height, bpp == 24 ? COLORTYPE_COLOR24BIT : COLORTYPE_TRUEGRAY, 6, 2);
    page.m_decodedData.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size()));
    page.m_decodedData.FinishWriteData(false, 0);
  }
  void runLines() {
    lineStage.WriteImage(&page);
    lineStage.Start1Image(settings.user, settings.device, &scanError, &lines);
    EXPECT_EQ(fakes::collect(lineStage), &page);
  }
  void runJpeg() {
    jpegStage.WriteImage(&page);
    jpegStage.Start1Image(settings.user, settings.device, &scanError, &jpegs);
    EXPECT_EQ(fakes::collect(jpegStage), &page);
  }
  void runEnhance() {
    enhanceStage.WriteImage(&page);
    enhanceStage.Start1Image(settings.user, settings.device, &scanError, &enhancer, {});
    EXPECT_EQ(fakes::collect(enhanceStage), &page);
  }
};

// Every message at its level, and all of them in this order.
struct Expected {
  int level;
  const char* message;
};
template <class Code>
void expectLog(const std::vector<Expected>& expected, Code code) {
  const std::vector<Messages> levels = messagesByLevel(code);
  for (int level = 0; level < 3; ++level) {
    Messages messages;
    for (const Expected& line : expected) {
      if (line.level <= level) messages.emplace_back(line.message);
    }
    EXPECT_EQ(levels[static_cast<std::size_t>(level)], messages) << "with a set-up of level " << level;
  }
}

TEST(LogTexts, OfAPageOfLines) {
  expectLog({{1, ">>>>> ThreadProc >>>>>"},
             {1, ">>>>> DecodeImage >>>>>"},
             {1, ">>>>> OpenScanDec >>>>>"},
             {1, "<<<<< OpenScanDec <<<<< success = 1"},
             {1, "scanDecOpen.nPageNum = 1"},
             {1, "scanDecOpen.nInResoX = 300"},
             {1, "scanDecOpen.nInResoY = 200"},
             {1, "scanDecOpen.nOutResoX = 300"},
             {1, "scanDecOpen.nOutResoY = 200"},
             {1, "scanDecOpen.nColorType = 1056"},
             {1, "scanDecOpen.dwInLinePixCnt = 5"},
             {1, "scanDecOpen.dwInHeightPixCnt = 2"},
             {1, "scanDecOpen.nBrightness = 0"},
             {1, "scanDecOpen.nContrast = 0"},
             {1, "scanDecOpen.dwOutLineByteCnt = 15"},
             {1, "scanDecWrite.nInDataComp = 3"},
             {1, "scanDecWrite.nInDataKind = 6"},
             {1, "scanDecWrite.dwWriteBuffSize = 60"},
             {1, "ScanDec Start In Data. resoX = 300, resoY = 200, width = 5, height = 2, colortype = 5, DataType = 6"},
             {1, "nInResoX = 300, nInResoY = 200, bpp = 24, widthPix = 5, heightPix = 2, bmpHeaderSize = 54, "},
             {2, "ScanDecWrite. result = 0"},
             {2, "ScanDecWriteStatus = 0"},
             {2, "ScanDecWrite. result = 4"},
             {2, "ScanDecWriteStatus = 2"},
             {2, "totalWrittenLineCnt = 1"},
             {1, "ScanDecPageEnd. result = 3"},
             {1, "ScanDecData TotalWriteLineCnt = 2"},
             {1, ">>>>> InvertImageHeight >>>>>"},
             {1, "<<<<< InvertImageHeight <<<<< success = 1"},
             {1, "CloseScanDec"},
             {1, "<<<<< DecodeImage <<<<< ret = 0x0"},
             {1, "<<<<< ThreadProc <<<<<"}},
            [] {
              OnePage one;
              one.settings.device.resolution = {300, 200};
              one.lineRecords(2);
              one.lines.writeAnswers = {{0, 0, 0}, {4, 1, -1}};
              one.lines.pageEndAnswer = {3, 1, -1};
              one.runLines();
            });
}

TEST(LogTexts, OfAPageWithoutLinesOnTheBackOfASheet) {
  const Messages messages = runWithLog(kAllLevels, [] {
                              OnePage one;
                              one.page.SetPageNo(2);
                              one.settings.user.duplexType = DUPLEXTYPE_SHORT_EDGE;
                              one.lineRecords(1);
                              one.page.m_rawData.UpdateHeightPixel(3);
                              one.runLines();
                            }).messages();
  EXPECT_EQ(countOf(messages, ">>>>> InvertImageWidth >>>>>"), 1);
  EXPECT_EQ(countOf(messages, "<<<<< InvertImageWidth <<<<< success = 1"), 1);
  EXPECT_EQ(countOfStart(messages, ">>>>> InvertImageHeight"), 0);
  EXPECT_EQ(countOf(messages, "ScanDecWriteStatus = 1"), 1);
  EXPECT_EQ(countOf(messages, "ScanDecPageEnd. result = 0"), 1);
  EXPECT_EQ(countOfStart(messages, "ScanDecData TotalWriteLineCnt"), 0);

  const auto levels = messagesByLevel([] {
    OnePage one;
    one.lineRecords(0);
    one.page.m_rawData.UpdateHeightPixel(3);
    one.runLines();
  });
  expectAtLevel(levels, 2, "scanDecWrite.pLineData == nullptr");
}

TEST(LogTexts, OfLinesThatFail) {
  const Messages closed = runWithLog(kAllLevels, [] {
                            OnePage one;
                            one.lineRecords(1);
                            one.lines.openAnswer = 0;
                            one.runLines();
                          }).messages();
  EXPECT_EQ(countOf(closed, "<<<<< OpenScanDec <<<<< success = 0"), 1);
  EXPECT_EQ(countOf(closed, "<<<<< DecodeImage <<<<< ret = 0x20406001"), 1);
  EXPECT_EQ(countOf(closed, "CloseScanDec"), 0);
  EXPECT_EQ(countOf(closed, "Set status = 0x20406001"), 1);
  EXPECT_EQ(countOf(closed, "Set errPageNo = 7"), 1);

  const Messages failed = runWithLog(kAllLevels, [] {
                            OnePage one;
                            one.lineRecords(1);
                            one.lines.writeAnswers = {{-5, 0, 0}};
                            one.runLines();
                          }).messages();
  EXPECT_EQ(countOf(failed, "ScanDecWrite. result = -5"), 1);
  EXPECT_EQ(countOf(failed, "ScanDecWriteStatus = 3"), 1);
  EXPECT_EQ(countOf(failed, "<<<<< DecodeImage <<<<< ret = 0x1000000"), 1);
}

TEST(LogTexts, OfAWholeJpeg) {
  expectLog({{1, ">>>>> ThreadProc >>>>>"},
             {1, ">>>>> DecodeJpegImage >>>>>"},
             {1, ">>>>> DecodeJpegImage_Page >>>>>"},
             {1, "Start JpegDcode. JpegSize = 6"},
             {1, "End JpegDcode jpgDecStatus = 0"},
             {1,
              "Write Jpeg Decoded Data. resoX = 300, resoY = 200, widthPix = 5, heightPix = 3, colorType =5, "
              "dataType =5"},
             {1, "Invert bmp height"},
             {1, ">>>>> InvertImageHeight >>>>>"},
             {1, "<<<<< InvertImageHeight <<<<< success = 1"},
             {1, "<<<<< DecodeJpegImage_Page <<<<< ret = 0x0"},
             {1, "<<<<< DecodeJpegImage <<<<< ret = 0x0"},
             {1, "<<<<< ThreadProc <<<<<"}},
            [] {
              OnePage one;
              one.jpegBytes();
              one.jpegs.pageBmp = fakes::makeBmp(5, 4, 24, fakes::countingPixels(5, 4, 24));
              one.runJpeg();
            });
}

TEST(LogTexts, OfAJpegInBands) {
  expectLog({{1, ">>>>> ThreadProc >>>>>"},
             {1, ">>>>> DecodeJpegImage >>>>>"},
             {1, ">>>>> DecodeJpegImage_Band >>>>>"},
             {1, "Open JpegDcode. JpegSize = 6"},
             {1, "Open JpegDcode. result status = 0"},
             {1, "Start JpegDcode jpgDecStatus = 0"},
             {1, "jpgSize = 6, widthBytesSize = 15, writtenSize = 0, writeSizeSpan = 4"},
             {2, "Write Jpeg data. size = 4"},
             {2, "ReadBandLineData. readensize = 15, jpgDecStatus = 12"},
             {2, "WriteDataBlock. ret = 0. line cnt = 1"},
             {2, "ReadBandLineData. readensize = 0, jpgDecStatus = 11"},
             {2, "Write Jpeg data. size = 2"},
             {2, "ReadBandLineData. readensize = 15, jpgDecStatus = 0"},
             {2, "WriteDataBlock. ret = 0. line cnt = 2"},
             {1, "<<<<< DecodeJpegImage_Band <<<<< ret = 0x0"},
             {1, "<<<<< DecodeJpegImage <<<<< ret = 0x0"},
             {1, "<<<<< ThreadProc <<<<<"}},
            [] {
              OnePage one;
              one.jpegBytes();
              one.jpegs.decodeMode = 2;
              one.jpegs.bandInfo = {300, 200, 24, 5, 2, 0, 4};
              one.jpegs.bandSteps = {{JPEGDECODE_MORE_LINES, ByteVector(15)},
                                     {JPEGDECODE_NEED_INPUT, {}},
                                     {JPEGDECODE_OK, ByteVector(15)}};
              one.runJpeg();
            });
}

TEST(LogTexts, OfJpegsThatFail) {
  const struct {
    int status;
    const char* text;
  } kRows[] = {{3, "Jpeg Dec error is Err"},
               {4, "Jpeg Dec error is invalid parameter"},
               {5, "Jpeg Dec error is low memory"},
               {6, "Jpeg Dec error is memory proc"},
               {7, "Jpeg Dec error is create stream failed"},
               {8, "Jpeg Dec error is write stream failed"},
               {9, "Jpeg Dec error is not opened"},
               {14, "Jpeg Dec error is write band failed"}};
  const auto levels = messagesByLevel([&] {
    for (const auto& row : kRows) {
      OnePage one;
      one.jpegBytes();
      one.jpegs.pageStatus = static_cast<JPEGDECODESTATUS>(row.status);
      one.runJpeg();
    }
  });
  for (const auto& row : kRows) expectAtLevel(levels, 2, row.text);

  const auto feeding = messagesByLevel([] {
    OnePage one;
    one.jpegBytes();
    one.jpegs.decodeMode = 2;
    one.jpegs.bandInfo = {300, 200, 24, 5, 2, 0, 4};
    one.jpegs.writeBandStatus = JPEGDECODE_WRITE_BAND;
    one.runJpeg();
  });
  expectAtLevel(feeding, 1, "WriteJpegBlockData failed. ret = 0x1040300A");

  const auto tooLarge = messagesByLevel([] {
    OnePage one;
    one.jpegBytes();
    one.jpegs.decodeMode = 2;
    one.jpegs.bandInfo = {300, 200, 24, 0x7FFFFFFF, 0x7FFFFFFF, 0, 4};
    one.runJpeg();
  });
  expectAtLevel(tooLarge, 0, "Write Jpeg Docoded band failed. ret = 809508865");  // 0x30402001
}

TEST(LogTexts, OfAPageThatIsPaddedAndKeepsItsResolution) {
  expectLog({{1, ">>>>> ThreadProc >>>>>"},
             {1, ">>>>> ImageEnhancementProc >>>>>"},
             {1, ">>>>> DetectEndOfPageProc >>>>> detectEndOfPage = 0"},
             {1, "Line data is less than user param. output length = 6, current length = 4"},
             {1, ">>>>> AddImageHeight >>>>> CurrentHeight = 4"},
             {1, ">>>>> InvertImageHeight >>>>>"},
             {1, "<<<<< InvertImageHeight <<<<< success = 1"},
             {1, "widthBytes = 15, fillLineDataSize = 15, whiteData = 0xFF"},
             {1, "Start write white data"},
             {1, "Write white data succeed"},
             {1, ">>>>> InvertImageHeight >>>>>"},
             {1, "<<<<< InvertImageHeight <<<<< success = 1"},
             {1, "<<<<< AddImageHeight <<<<< qsrslt = 0x0"},
             {1, "<<<<< DetectEndOfPageProc <<<<< qsrslt = 0x0"},
             {0, "No Change resolution"},
             {1, "<<<<< ImageEnhancementProc <<<<< qsrslt = 0x0"},
             {1, "<<<<< ThreadProc <<<<<"}},
            [] {
              OnePage one;
              one.decodedBmp(4);
              one.settings.user.detectEndOfPage = 0;
              one.settings.device.scanArea.bottom = 6;
              one.runEnhance();
            });
}

// The line says so whether or not it is so.
TEST(LogTexts, OfAPageThatIsHighEnoughAlready) {
  const auto levels = messagesByLevel([] {
    OnePage one;
    one.decodedBmp(8);
    one.settings.user.detectEndOfPage = 0;
    one.settings.device.scanArea.bottom = 6;
    one.runEnhance();
  });
  expectAtLevel(levels, 1, "Line data is less than user param. output length = 6, current length = 8");
  EXPECT_EQ(countOfStart(levels[2], ">>>>> AddImageHeight"), 0);
}

TEST(LogTexts, OfAnEnhancementThatFailsAndAResolutionThatIsRaised) {
  const auto levels = messagesByLevel([] {
    OnePage one;
    one.decodedBmp(4, 8);
    one.settings.user.resolution = {600, 600};
    one.enhancer.processAnswer = 0x10701002;
    one.runEnhance();
  });
  expectAtLevel(levels, 0, "Image Enhance process failed. imageEnhanceRslt = 0x10701002");
  expectAtLevel(levels, 0, "Change resolution");
  expectAtLevel(levels, 1, ">>>>> DetectEndOfPageProc >>>>> detectEndOfPage = 1");
  EXPECT_EQ(countOfStart(levels[2], "Line data is less"), 0);
  EXPECT_EQ(countOfStart(levels[2], "No Change resolution"), 0);
}

TEST(LogTexts, OfTheManager) {
  const auto levels = messagesByLevel([] {
    fakes::PipelineRun run;
    ASSERT_TRUE(run.initialize());
    CImageData& page = run.newPage();
    page.m_rawData.StartWriteData(300, 300, 1, 0, COLORTYPE_COLOR24BIT, 6, 2);
    const ByteVector line = {1, 2, 3};
    page.m_rawData.WriteLineData(6, 2, line.data(), 3);
    run.manage.WriteImage(&page);
    run.runAll();
  });
  expectAtLevel(levels, 2, ">>>>> DecodeProcess >>>>>");
  expectAtLevel(levels, 2, "<<<<< DecodeProcess <<<<< ret = 0x0");
  expectAtLevel(levels, 2, "ReadEnhancedImage");
  expectAtLevel(levels, 1, "m_cImgEnhanceThread.End() start");
  expectAtLevel(levels, 1, "m_cImgEnhanceThread.End() end");
  EXPECT_EQ(countOf(levels[2], "m_cImgEnhanceThread.End() start"), 1);
  EXPECT_EQ(countOf(levels[2], ">>>>> DecodeProcess >>>>>"), countOf(levels[2], "ReadEnhancedImage"));
}

// The raw store is dumped before the lines are decoded, whatever store the page is in; page by page.
TEST(Dumps, OfThePipeline) {
  constexpr char kDumps[] =
      "LogLevel=-1\nOutDir=0\nWriteForm=0\nDumpPackBits=0\nDumpJpg=0\nDumpPreScanDec=1\nDumpPreImagEnhance=1\n"
      "DumpFinalData=0\n";
  ByteVector raw;
  {
    OnePage one;
    one.lineRecords(2);
    raw.assign(one.page.m_rawData.GetData(), one.page.m_rawData.GetData() + one.page.m_rawData.GetDataSize());
  }
  const Left left = runWithLog(kDumps, [] {
    OnePage one;
    one.lineRecords(2);
    one.runLines();
    one.runEnhance();
    OnePage hundredth;
    hundredth.page.SetPageNo(100);
    hundredth.lineRecords(1);
    hundredth.runLines();
  });
  const ByteVector bmp = [] {
    ByteVector expected = fakes::makeBmp(5, 2, 24, ByteVector(30, 2));
    std::fill(expected.end() - 15, expected.end(), std::uint8_t{1});
    fakes::put32(expected, 42, 7874);  // 200 dpi
    return expected;
  }();
  const std::string folder = std::string(kLogFolder) + "/";
  ASSERT_TRUE(left.has(folder + "DumpPreScanDec_07.bmp"));
  EXPECT_EQ(left.files.at(folder + "DumpPreScanDec_07.bmp"), std::string(raw.begin(), raw.end()));
  ASSERT_TRUE(left.has(folder + "DumpPreImagEnhance_07.bmp"));
  EXPECT_EQ(left.files.at(folder + "DumpPreImagEnhance_07.bmp"), std::string(bmp.begin(), bmp.end()));
  EXPECT_TRUE(left.has(folder + "DumpPreScanDec_100.bmp"));
}

}  // namespace
