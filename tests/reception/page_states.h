// Pages as the read thread can have them.
#pragma once

#include "reception/ImageData.h"

namespace reception_test {

using namespace orvalle_scan_api;

enum class PageState { None, Open, Finished, Discarded, Canceled, Blank };

inline void putInto(CImageData& page, PageState state) {
  const unsigned char byte = 1;
  CImageDataStore& final = page.m_finalData;
  final.StartWriteData(300, 300, 1, 1, COLORTYPE_COLOR24BIT, 5, 2);
  if (state == PageState::Open) page.m_rawData.WriteDataBlock(&byte, 1);
  if (state == PageState::Finished || state == PageState::Discarded) final.WriteDataBlock(&byte, 1);
  if (state == PageState::Finished) final.FinishWriteData(false, 0);
  if (state == PageState::Discarded) final.FinishWriteData(true, 0);
  if (state == PageState::Canceled) final.CancelProc();
  if (state == PageState::Blank) page.SetIsBlankPage(true);
}

}  // namespace reception_test
