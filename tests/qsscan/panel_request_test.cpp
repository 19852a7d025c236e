#include "apps/qsscan/panel_request.h"

#include <gtest/gtest.h>

#include <map>

#include "fake_scan_core.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;
using Options = std::map<std::string, std::string>;

PanelRecord pressed(std::int32_t event = 3) {
  PanelRecord record{};
  record.event = {true, event};
  return record;
}

Options optionsOf(const PanelWish& wish) {
  Options options;
  for (const OptionValue& value : wish.options) EXPECT_TRUE(options.emplace(value.option, value.value).second);
  return options;
}

TEST(PanelRequest, NoButtonIsASentenceAndNull) {
  EXPECT_EQ(panelText(PanelRecord{}), "No button has been pressed.\n");
  const auto json = panelJson(PanelRecord{});
  for (const auto& [key, value] : json.items()) EXPECT_TRUE(value.is_null()) << key;
}

TEST(PanelRequest, AButtonAloneChangesNothing) {
  const PanelWish wish = wishOfPanel(pressed(), qsscan_test::officeCapability());
  EXPECT_TRUE(wish.options.empty());
  EXPECT_TRUE(wish.leftOut.empty());
  EXPECT_EQ(panelJson(pressed())["button"], "file");
  EXPECT_NE(panelText(pressed()).find("Resolution (dpi):      not given\n"), std::string::npos) << panelText(pressed());
}

struct WishRow {
  const char* name;
  void (*fill)(PanelRecord&, Capability&);
  Options options;
  std::vector<std::string> leftOut;  // parts of the sentences
};
void PrintTo(const WishRow& row, std::ostream* out) { *out << row.name; }
class PanelWishes : public testing::TestWithParam<WishRow> {};

TEST_P(PanelWishes, BecomeOptionsOrSentences) {
  PanelRecord record = pressed();
  Capability capability = qsscan_test::officeCapability();
  GetParam().fill(record, capability);
  const PanelWish wish = wishOfPanel(record, capability);
  EXPECT_EQ(optionsOf(wish), GetParam().options);
  ASSERT_EQ(wish.leftOut.size(), GetParam().leftOut.size()) << testing::PrintToString(wish.leftOut);
  for (std::size_t i = 0; i < wish.leftOut.size(); ++i) {
    EXPECT_NE(wish.leftOut[i].find(GetParam().leftOut[i]), std::string::npos) << wish.leftOut[i];
  }
}

INSTANTIATE_TEST_SUITE_P(
    PanelRequest, PanelWishes,
    testing::Values(WishRow{"Mode",
                            [](PanelRecord& r, Capability&) {
                              r.colorType = {true, COLORTYPE_TRUEGRAY};
                            },
                            {{"mode", "gray"}},
                            {}},
                    WishRow{"PaletteIsColor",
                            [](PanelRecord& r, Capability&) {
                              r.colorType = {true, COLORTYPE_COLOR256};
                            },
                            {{"mode", "color"}},
                            {}},
                    WishRow{"ModeThatIsNotOffered",
                            [](PanelRecord& r, Capability& c) {
                              c.colorType = {1, 0, 0, 0, 0};
                              r.colorType = {true, COLORTYPE_COLOR24BIT};
                            },
                            {},
                            {"the mode color"}},
                    WishRow{"Resolution",
                            [](PanelRecord& r, Capability&) { r.resolution = {true, true, false, false, 200, 200}; },
                            {{"resolution", "200"}},
                            {}},
                    WishRow{"ResolutionByItself",
                            [](PanelRecord& r, Capability&) { r.resolution = {true, true, true, true, 0, 0}; },
                            {},
                            {}},
                    WishRow{"ResolutionThatIsNotOffered",
                            [](PanelRecord& r, Capability&) { r.resolution = {true, true, false, false, 250, 250}; },
                            {},
                            {"250 dpi"}},
                    WishRow{"BothSides",
                            [](PanelRecord& r, Capability&) {
                              r.duplex = {true, DUPLEXTYPE_SHORT_EDGE};
                            },
                            {{"duplex", "true"}, {"binding", "short"}},
                            {}},
                    WishRow{"OneSide",
                            [](PanelRecord& r, Capability&) {
                              r.duplex = {true, DUPLEXTYPE_SIMPLEX};
                            },
                            {},
                            {}},
                    WishRow{"Paper",
                            [](PanelRecord& r, Capability&) {
                              r.paperType = {true, PAPERTYPE_JISB5};
                            },
                            {{"page-size", "jis-b5"}},
                            {}},
                    WishRow{"PaperWithoutAName",
                            [](PanelRecord& r, Capability&) {
                              r.paperType = {true, PAPERTYPE_215X345};
                            },
                            {{"page-size", "215x345"}},
                            {}},
                    WishRow{"PaperThatLies",
                            [](PanelRecord& r, Capability&) {
                              r.paperType = {true, PAPERTYPE_A5};
                              r.orient = {true, true, 0};
                            },
                            {{"page-size", "210.0x148.0"}},
                            {}},
                    WishRow{"PaperThatDoesNotFitLying",
                            [](PanelRecord& r, Capability&) {
                              r.paperType = {true, PAPERTYPE_A4};
                              r.orient = {true, true, 0};
                            },
                            {{"page-size", "a4"}},
                            {"landscape"}},
                    WishRow{"PaperByItself",
                            [](PanelRecord& r, Capability&) {
                              r.paperType = {true, PAPERTYPE_AUTO};
                            },
                            {{"page-size", "auto"}},
                            {}},
                    WishRow{"CropThatTheDeviceCannot",
                            [](PanelRecord& r, Capability& c) {
                              c.autoPaperSize = 1;
                              r.autoCrop = {true, true};
                              r.paperType = {true, PAPERTYPE_A4};
                            },
                            {{"page-size", "a4"}},
                            {"the size of the pages"}},
                    WishRow{"AngleOfTheFirstGeneration",
                            [](PanelRecord& r, Capability&) {
                              r.orient = {true, false, 9000};
                            },
                            {{"rotate", "90"}},
                            {}},
                    WishRow{"AngleOfTheSecondGeneration",
                            [](PanelRecord& r, Capability&) {
                              r.orient = {true, false, 90};
                            },
                            {{"rotate", "90"}},
                            {}},
                    WishRow{"Levels",
                            [](PanelRecord& r, Capability&) {
                              r.brightness = {true, 0};
                              r.contrast = {true, 100};
                            },
                            {{"brightness", "-50"}, {"contrast", "50"}},
                            {}},
                    WishRow{"LevelOfAnotherScale",
                            [](PanelRecord& r, Capability&) {
                              r.brightness = {true, 254};
                            },
                            {},
                            {"a brightness of 254"}},
                    WishRow{"Features",
                            [](PanelRecord& r, Capability& c) {
                              c.autoDeskew = c.blankRemoval.cap = 2;
                              r.deskew = r.blankPageRemove = {true, true};
                            },
                            {{"deskew", "true"}, {"skip-blank", "true"}},
                            {}},
                    WishRow{"FeaturesThatAreOff",
                            [](PanelRecord& r, Capability& c) {
                              c.autoDeskew = 2;
                              r.deskew = r.blankPageRemove = {true, false};
                              r.removeBleedThrough = {true, false};
                            },
                            {},
                            {}},
                    WishRow{"FeaturesThatTheDeviceCannot",
                            [](PanelRecord& r, Capability&) {
                              r.deskew = r.blankPageRemove = r.removeBleedThrough = {true, true};
                            },
                            {},
                            {"to straighten pages", "blank pages", "from the back"}},
                    WishRow{"Background",
                            [](PanelRecord& r, Capability& c) {
                              c.backgroundRemoval.color24bit = {2, 255};
                              r.removeBackground = {true, true, true, 77};
                            },
                            {{"remove-background", "77"}},
                            {}},
                    WishRow{"BackgroundInAModeWithoutIt",
                            [](PanelRecord& r, Capability& c) {
                              c.backgroundRemoval.color24bit = {2, 255};
                              r.colorType = {true, COLORTYPE_BLACKANDWHITE};
                              r.removeBackground = {true, true, true, 77};
                            },
                            {{"mode", "mono"}},
                            {"remove the background"}},
                    WishRow{"Format",
                            [](PanelRecord& r, Capability&) { r.fileType.valid = true, r.fileType.format = 6; },
                            {{"format", "pdf"}},
                            {}},
                    WishRow{"FormatThatIsNotWritten",
                            [](PanelRecord& r, Capability&) { r.fileType.valid = true, r.fileType.format = 8; },
                            {},
                            {"xps"}},
                    WishRow{"FormatThatNobodyKnows",
                            [](PanelRecord& r, Capability&) { r.fileType.valid = true, r.fileType.format = 99; },
                            {},
                            {}},
                    WishRow{"Mail", [](PanelRecord& r, Capability&) { r.event.value = 2; }, {}, {"e-mail"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(PanelRequest, ValuesOutsideTheirListsAreNotToldAsSomethingElse) {
  PanelRecord record = pressed(7);
  record.colorType = {true, 77};
  record.paperType = {true, 25};
  record.fileType.valid = true;
  record.fileType.format = -1;
  const auto json = panelJson(record);
  EXPECT_TRUE(json["button"].is_null());
  EXPECT_EQ(json["mode"], "unknown");
  EXPECT_TRUE(json["pageSize"].is_null());
  EXPECT_TRUE(json["format"].is_null());
  EXPECT_TRUE(wishOfPanel(record, qsscan_test::officeCapability()).options.empty());
}

}  // namespace
