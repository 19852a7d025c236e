// A growable byte block with the description of the image in it: one stage's form of a page.
//
// A store holds line records, a JPEG stream or a BMP. Which it is never follows from the compress code alone, since an
// uncompressed line record carries the code of a BMP: the question is IsBmp().
//
// Line record: three 32-bit words in host order - first (data kind), second (compress code), bytes of the line - and
// the line.
//
// Status: 0 nothing written, 1 writing, 2 finished, 3 finished and discarded, 4 cancelled. StartWriteData does not
// reset it: a store is used once per page.
//
// Threads: one thread at a time works on a store. GetStatus, IsWriteDataFinished and IsEmpty may be asked by any
// thread; who has seen the status finished may read the rest until the page is freed.
//
// The members have the layout of PAGE_STORE_VIEW, through which the enhancement module reads them.
#pragma once

#include <atomic>
#include <cstdint>

#include "modules/page_store_view.h"
#include "result_codes.h"
#include "scan_image.h"

namespace orvalle_scan_api {

enum IMAGEDATASTATUS : std::int32_t {
  IMAGEDATA_EMPTY = 0,
  IMAGEDATA_WRITING = 1,
  IMAGEDATA_FINISHED = 2,
  IMAGEDATA_DISCARDED = 3,
  IMAGEDATA_CANCELED = 4,
};

// Bits per pixel of a colour type; 24 for a value that is none.
int bitsOfColorType(COLORTYPE colorType);

class CImageDataStore {
 public:
  CImageDataStore() = default;
  ~CImageDataStore();
  CImageDataStore(const CImageDataStore&) = delete;
  CImageDataStore& operator=(const CImageDataStore&) = delete;

  // Frees any block and sets the description. Status is left alone.
  void StartWriteData(int resX, int resY, int width, int height, COLORTYPE colorType, std::uint32_t dataType,
                      std::uint32_t compressType);

  // Appends a copy and sets status 1. A failure leaves the block as it was:
  //   0x70402003 null data (and the status is left alone)
  //   0x30402001 no memory, or a block that would pass 4 GiB
  QSRSLT WriteDataBlock(const unsigned char* data, unsigned int size);
  QSRSLT WriteJpegBlock(const unsigned char* data, unsigned int size) { return WriteDataBlock(data, size); }
  // Appends a line record and counts it in the height. Null is allowed for a line of 0 bytes. Codes as above.
  QSRSLT WriteLineData(int first, int second, const unsigned char* line, unsigned int size);
  // Appends size bytes of the value. Codes as above.
  QSRSLT WriteFill(unsigned char value, std::uint64_t size);
  // As WriteDataBlock into an empty store, for the bytes of a BMP: its first lines in memory, as many as the store's
  // height tells, are turned round on the way, and the height stands in its header. Any other data is copied as it is.
  QSRSLT WriteBmpUpsideDown(const unsigned char* data, unsigned int size);

  // Room for size bytes behind the data, in this store's block until the next write; status 1. Null when there is no
  // memory. What is filled of it from its start becomes data with TakeFilled.
  unsigned char* MakeRoom(std::uint64_t size);
  void TakeFilled(std::uint64_t size) { m_dataSize += static_cast<std::uint32_t>(size); }

  // The next line record; at the end null, the values 0 and the cursor back at the start. A record that does not lie
  // inside the block is the end. Any null argument: null.
  unsigned char* ReadLineData(int* first, int* second, unsigned int* size);
  // The next line of the BMP (code 2); at the end null, *size 0 and the cursor back at the start.
  unsigned char* ReadLineData(unsigned int* size);

  // Gives back unused memory, takes a height above 0, corrects the height in a JPEG's or BMP's header, and sets status
  // 2, or frees the block and sets 3. Nothing when the status is 2 or 3 already.
  void FinishWriteData(bool discard, int height);
  // Frees the block.
  void DeleteData();
  // Frees the block and sets status 4.
  void CancelProc();

  // Adopts a block from malloc; status 2.
  void SetDataMemAddress(unsigned char* data, unsigned int size);
  // Hands block and description over, without a copy; the target's status becomes 2, this store is left empty. False
  // for a null target.
  bool MoveDataBlockTo(CImageDataStore* target);

  // Work on the BMP in the store; false, with nothing done, when there is none.
  bool InvertImageWidth();
  bool InvertImageHeight();
  // Cuts the BMP to its first lines in memory; nothing unless newHeight is at least 1 and below the height. Always 0.
  int TrimImageHeight(int newHeight);
  // Sets the height in the BMP's header and in the description.
  bool SetImageHeight(int height);
  // Makes the bytes agree with the BMP's height: lines that were promised and never written are appended in white,
  // bytes behind the last line are given up. Nothing for data that is no BMP. Codes as of WriteDataBlock.
  QSRSLT CompleteBmp();

  bool IsBmp() const;
  bool IsJpeg() const;
  bool IsPackBits() const;
  bool IsNoComp() const;  // neither JPEG nor PackBits
  bool IsEmpty() const { return block() == nullptr; }
  bool IsWriteDataFinished() const;  // status 2 or 3

  unsigned char* GetData() const { return block(); }
  std::uint32_t GetDataSize() const { return m_dataSize; }
  std::uint32_t GetBuffSize() const { return m_buffSize; }
  int GetResolutionX() const { return m_resolutionX; }
  int GetResolutionY() const { return m_resolutionY; }
  int GetWidthPixel() const { return m_widthPixel; }
  int GetHeightPixel() const { return m_heightPixel; }
  COLORTYPE GetColorType() const { return m_colorType; }
  std::uint32_t GetDataType() const { return m_dataType; }
  std::uint32_t GetCompressType() const { return m_compressType; }
  std::int32_t GetStatus() const { return m_status.load(std::memory_order_acquire); }
  int GetBitPerPixel() const { return bitsOfColorType(m_colorType); }
  // Bytes of one line by the description's width and colour depth.
  std::uint64_t GetWidthBytes() const;
  // The pixels of a BMP; otherwise the whole block.
  unsigned char* GetPixelDataPtr(unsigned int* size) const;
  tagQS_SCAN_IMAGEDATA GetImageData() const;

  void UpdateHeightPixel(int height) { m_heightPixel = height; }
  void UpdateWidthPixel(int width) { m_widthPixel = width; }
  void UpdateColorType(COLORTYPE colorType) { m_colorType = colorType; }
  void UpdateDataType(std::uint32_t dataType) { m_dataType = dataType; }
  void UpdateCompressType(std::uint32_t compressType) { m_compressType = compressType; }

  // The growth rule: bytes to allocate for a write of addSize bytes. Above 32 bits means that it cannot be.
  std::uint64_t CalcReallocBuffSize(std::uint32_t buffSize, std::uint32_t usedSize, std::uint32_t addSize) const;

 private:
  struct Layout;  // asserts that the members lie as modules see them

  unsigned char* block() const { return m_data.load(std::memory_order_acquire); }
  void setBlock(unsigned char* data) { m_data.store(data, std::memory_order_release); }
  bool ReallocDataBlockBuffer(std::uint32_t newSize);
  void correctHeightInHeader();

  std::atomic<unsigned char*> m_data{nullptr};  // from malloc, owned
  std::uint32_t m_dataSize = 0;                 // bytes in use
  std::uint32_t m_buffSize = 0;                 // bytes allocated
  std::int32_t m_resolutionX = 0;               // dots per inch
  std::int32_t m_resolutionY = 0;
  std::int32_t m_widthPixel = 0;
  std::int32_t m_heightPixel = 0;  // counts up as line records arrive
  COLORTYPE m_colorType = COLORTYPE_COLOR24BIT;
  std::uint32_t m_dataType = 0;
  std::uint32_t m_compressType = 0;
  std::atomic<std::int32_t> m_status{IMAGEDATA_EMPTY};
  std::size_t m_readPos = 0;  // cursor of ReadLineData as an offset; 0 is the start
};

}  // namespace orvalle_scan_api
