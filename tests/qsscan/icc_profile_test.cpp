#include "apps/qsscan/icc_profile.h"

#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <cstdio>
#include <cstdlib>
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
// After <cstdio>, which it needs.
#include <jpeglib.h>

#include "apps/qsscan/document_writer.h"
#include "made_page.h"
#include "made_profile.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using namespace qsscan_test;
using Bytes = std::vector<std::uint8_t>;

TEST(IccProfile, TellsGreyFromColour) {
  EXPECT_EQ(readIccProfile(colorProfile())->channels, 3);
  EXPECT_EQ(readIccProfile(greyProfile())->channels, 1);
  EXPECT_EQ(readIccProfile(colorProfile())->bytes, colorProfile());
}

TEST(IccProfile, WhatIsNoProfileIsRefused) {
  EXPECT_FALSE(readIccProfile({}));
  EXPECT_FALSE(readIccProfile(Bytes(500, 7)));
  EXPECT_FALSE(readIccProfile(savedProfile(cmsCreateLab4Profile(nullptr)))) << "pages are no Lab";
  Bytes cut = colorProfile();
  for (cut.resize(131); !cut.empty(); cut.pop_back()) EXPECT_FALSE(readIccProfile(cut)) << cut.size();
}

std::string write(const TemporaryFolder& folder, Format format, const std::vector<Page>& pages) {
  WriterOptions options;
  options.scratchDir = folder.file("");
  const std::string name = folder.file("document");
  std::FILE* stream = std::fopen(name.c_str(), "wb");
  const auto writer = makeWriter(format, stream, options);
  for (const Page& page : pages) writer->addPage(page);
  writer->finish();
  std::fclose(stream);
  return name;
}

Bytes profileOfPng(const std::string& name) {
  std::FILE* stream = std::fopen(name.c_str(), "rb");
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, stream);
  png_read_info(png, info);
  png_charp label = nullptr;
  int method = 0;
  png_bytep bytes = nullptr;
  png_uint_32 size = 0;
  Bytes profile;
  if (png_get_iCCP(png, info, &label, &method, &bytes, &size) != 0) profile.assign(bytes, bytes + size);
  png_destroy_read_struct(&png, &info, nullptr);
  std::fclose(stream);
  return profile;
}

Bytes profileOfJpeg(const std::string& name) {
  std::FILE* stream = std::fopen(name.c_str(), "rb");
  jpeg_decompress_struct info;
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&info);
  jpeg_stdio_src(&info, stream);
  jpeg_save_markers(&info, JPEG_APP0 + 2, 0xFFFF);
  jpeg_read_header(&info, TRUE);
  JOCTET* bytes = nullptr;
  unsigned size = 0;
  Bytes profile;
  if (jpeg_read_icc_profile(&info, &bytes, &size) != 0) profile.assign(bytes, bytes + size);
  std::free(bytes);
  jpeg_destroy_decompress(&info);
  std::fclose(stream);
  return profile;
}

Bytes profileOfTiff(const std::string& name) {
  TIFF* tiff = TIFFOpen(name.c_str(), "r");
  std::uint32_t size = 0;
  void* bytes = nullptr;
  Bytes profile;
  if (TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &bytes) == 1) {
    profile.assign(static_cast<std::uint8_t*>(bytes), static_cast<std::uint8_t*>(bytes) + size);
  }
  TIFFClose(tiff);
  return profile;
}

Page pageWith(int depth, const std::shared_ptr<const IccProfile>& profile) {
  Page page = makePage(37, 11, depth);
  page.profile = profile;
  return page;
}

std::shared_ptr<const IccProfile> shared(const Bytes& bytes) {
  return std::make_shared<const IccProfile>(readIccProfile(bytes).value());
}

TEST(IccProfile, StandsInEveryFormatThatHoldsOne) {
  for (const int depth : {8, 24}) {
    SCOPED_TRACE(depth);
    const Bytes expected = depth == 24 ? colorProfile() : greyProfile();
    const Page page = pageWith(depth, shared(expected));
    const TemporaryFolder folder;
    EXPECT_EQ(profileOfPng(write(folder, Format::kPng, {page})), expected);
    EXPECT_EQ(profileOfJpeg(write(folder, Format::kJpeg, {page})), expected);
    EXPECT_EQ(profileOfTiff(write(folder, Format::kTiff, {page})), expected);
  }
}

TEST(IccProfile, OfOtherPagesIsLeftOut) {
  const TemporaryFolder folder;
  for (const int depth : {1, 8}) {
    const Page page = pageWith(depth, shared(colorProfile()));
    EXPECT_TRUE(profileOfPng(write(folder, Format::kPng, {page})).empty());
    EXPECT_TRUE(profileOfJpeg(write(folder, Format::kJpeg, {page})).empty());
    EXPECT_TRUE(profileOfTiff(write(folder, Format::kTiff, {page})).empty());
  }
}

TEST(IccProfile, StandsOnceInAPdfWhateverItsPages) {
  const TemporaryFolder folder;
  const auto profile = shared(colorProfile());
  const std::string name =
      write(folder, Format::kPdf,
            {pageWith(24, profile), pageWith(24, profile), pageWith(8, profile), pageWith(24, nullptr)});
  QPDF pdf;
  pdf.processFile(name.c_str());
  std::vector<QPDFObjectHandle> spaces;
  for (auto& helper : QPDFPageDocumentHelper(pdf).getAllPages()) {
    spaces.push_back(helper.getImages().begin()->second.getDict().getKey("/ColorSpace"));
  }
  ASSERT_EQ(spaces.size(), 4u);
  ASSERT_TRUE(spaces[0].isArray());
  EXPECT_EQ(spaces[0].getArrayItem(0).getName(), "/ICCBased");
  EXPECT_EQ(spaces[0].getObjGen(), spaces[1].getObjGen());
  auto stream = spaces[0].getArrayItem(1);
  EXPECT_EQ(stream.getDict().getKey("/N").getIntValue(), 3);
  EXPECT_EQ(stream.getDict().getKey("/Alternate").getName(), "/DeviceRGB");
  const auto data = stream.getStreamData(qpdf_dl_generalized);
  EXPECT_EQ(Bytes(data->getBuffer(), data->getBuffer() + data->getSize()), colorProfile());
  EXPECT_EQ(spaces[2].getName(), "/DeviceGray");
  EXPECT_EQ(spaces[3].getName(), "/DeviceRGB");
}

}  // namespace
