#include "reception/ImageData.h"

namespace orvalle_scan_api {

tagQS_SCAN_IMAGEDATA CImageData::GetFinalImage() {
  tagQS_SCAN_IMAGEDATA image{};
  if (GetIsBlankPage()) {
    image.isBlankPage = true;
    return image;
  }
  const std::lock_guard<std::mutex> lock(m_ownerMutex);
  // A store that a worker may still write to, or that is about to be freed, is not looked at.
  const bool readable = m_finalData.IsWriteDataFinished() && (m_isSettled || !m_isFreeAsked);
  image = readable ? m_finalData.GetImageData() : CImageDataStore().GetImageData();
  image.pageScanIsTerminated = m_pageScanIsTerminated;
  image.imageEnhanceTerminated = m_imageEnhanceTerminated;
  return image;
}

void CImageData::FreeImageDatas() {
  m_jpegData.DeleteData();
  m_rawData.DeleteData();
  m_decodedData.DeleteData();
  m_finalData.DeleteData();
}

bool CImageData::IsEmpty() const {
  return m_jpegData.IsEmpty() && m_rawData.IsEmpty() && m_decodedData.IsEmpty() && m_finalData.IsEmpty();
}

bool CImageData::HandOverToDecoder() {
  const std::lock_guard<std::mutex> lock(m_ownerMutex);
  if (m_isHandedOver || m_isSettled) return false;
  m_isHandedOver = true;
  return true;
}

bool CImageData::IsHandedOver() const {
  const std::lock_guard<std::mutex> lock(m_ownerMutex);
  return m_isHandedOver;
}

void CImageData::Settle() {
  const std::lock_guard<std::mutex> lock(m_ownerMutex);
  if (!m_isSettled && m_isFreeAsked) FreeImageDatas();
  m_isSettled = true;
}

bool CImageData::IsSettled() const {
  const std::lock_guard<std::mutex> lock(m_ownerMutex);
  return m_isSettled;
}

void CImageData::FreeWhenSettled() {
  const std::lock_guard<std::mutex> lock(m_ownerMutex);
  m_isFreeAsked = true;
  if (m_isSettled) FreeImageDatas();
}

}  // namespace orvalle_scan_api
