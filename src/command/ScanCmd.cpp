#include "command/ScanCmd.h"

#include "foundation/qvtcl/TTime.h"
#include "foundation/trace.h"

namespace orvalle_scan_api {
namespace {

// The device gets this pause between Q and QDI.
constexpr unsigned long kPauseBeforeQDIMs = 100;
constexpr std::int16_t kLastVersionClosedAfterQuery = 0x102;

}  // namespace

CScanCmd::~CScanCmd() {
  query_.FreeQcmdResponseData();
  query_.FreeQDIcmdResponseData();
  v1_.FreeResCmdData();
  v2_.FreeResCmdData();
  if (device_ != nullptr) access_.CloseDevice();
}

bool CScanCmd::SelectCommandVersion(SCANCMD_GENERATION generation) {
  Trace trace("SelectCommandVersion");
  if (generation_ == SCANCMD_GENERATION_UNKNOWN) generation_ = generation;
  return trace.result(generation_ == generation);
}

bool CScanCmd::GetConnectionStatus() {
  Trace trace("GetConnectionStatus");
  return trace.result(OpenDeviceIfNecessary());
}

QSRSLT CScanCmd::SetScanParam(_SCANCMD_SCANPARAM* param) {
  Trace trace("SetScanParam");
  paramSet_ = param != nullptr;
  if (param == nullptr) return trace.result(QSRSLT_CMD_BAD_ARGUMENT);
  param_ = *param;
  return trace.result(QSRSLT_SUCCESS);
}

QSRSLT CScanCmd::QueryDeviceCapability(_SCANCMD_DEVICECAP_INFO* info, bool query) {
  Trace trace("QueryDeviceCapability");
  if (info == nullptr) return trace.result(QSRSLT_CMD_BAD_ARGUMENT);
  if (query) return trace.result(queryDevice(info));
  *info = query_.GetDeviceCapInfo();
  return trace.result(info->data != nullptr ? QSRSLT_SUCCESS : QSRSLT_CMD_NO_CAPABILITY);
}

QSRSLT CScanCmd::queryDevice(_SCANCMD_DEVICECAP_INFO* info) {
  if (!OpenDeviceIfNecessary()) return QSRSLT_CMD_NOT_OPENED;
  g_ScanDevApiLog.WriteLog(1, "Q Command START");
  if (const QSRSLT result = query_.ExeQcmd(info); result != 0) return result;
  generation_ = info->generation;
  switch (generation_) {
    case SCANCMD_GENERATION_2ND: {
      g_ScanDevApiLog.WriteLog(1, "Command Generation is 2nd Generation");
      query_.FreeQcmdResponseData();
      g_ScanDevApiLog.WriteLog(1, "QDI Command START");
      qvtcl::CTTime().Sleep_ms(kPauseBeforeQDIMs);
      const QSRSLT result = query_.ExeQDIcmd(info);
      if (info->version <= kLastVersionClosedAfterQuery) access_.CloseDevice();
      return result;
    }
    case SCANCMD_GENERATION_1ST:
      g_ScanDevApiLog.WriteLog(1, "Command Generation is 1st Generation");
      access_.CloseDevice();
      return QSRSLT_SUCCESS;
    default:
      return QSRSLT_CMD_NO_GENERATION;
  }
}

bool CScanCmd::OpenDeviceIfNecessary() {
  if (device_ == nullptr) {
    g_ScanDevApiLog.WriteLog(0, "IDeviceAccess instance does not exist.");
    return false;
  }
  if (device_->IsOpen()) {
    access_.SetPointerToDeviceAccess(device_);
    return true;
  }
  return access_.OpenDevice(device_, identifier_);
}

// The frame that the operations share: open, then the command of the known generation.
QSRSLT CScanCmd::run(const char* operation, const Command& first, const Command& second) {
  Trace trace(operation);
  if (!OpenDeviceIfNecessary()) return trace.result(QSRSLT_CMD_NOT_OPENED);
  if (generation_ != SCANCMD_GENERATION_1ST && generation_ != SCANCMD_GENERATION_2ND) {
    return trace.result(QSRSLT_CMD_NO_GENERATION);
  }
  const Command& command = generation_ == SCANCMD_GENERATION_1ST ? first : second;
  if (command.startMessage == nullptr) return trace.result(QSRSLT_CMD_NOT_OFFERED);
  g_ScanDevApiLog.WriteLog(1, "%s", command.startMessage);
  return trace.result(command.execute());
}

QSRSLT CScanCmd::query(const char* operation, const _SCANCMD_RESPONSE_INFO* response, const Command& first,
                       const Command& second) {
  if (response != nullptr) return run(operation, first, second);
  Trace trace(operation);
  return trace.result(QSRSLT_CMD_BAD_ARGUMENT);
}

QSRSLT CScanCmd::CheckDocument(SCANCMD_PAPERSOURCE_TYPE source) {
  return run("CheckDocument", {"D Command START", [&] { return v1_.ExeDcmd(source); }},
             {"CKD Command START", [&] { return v2_.ExeCKDcmd(source); }});
}

QSRSLT CScanCmd::SelectPaperSource(SCANCMD_PAPERSOURCE_TYPE source) {
  return run("SelectPaperSource", {"S Command START", [&] { return v1_.ExeScmd(source); }}, {});
}

QSRSLT CScanCmd::GetPushScanParameter(_SCANCMD_RESPONSE_INFO* response) {
  return query("GetPushScanParameter", response, {"K Command START", [&] { return v1_.ExeKcmd(response); }},
               {"GKP Command START", [&] { return v2_.ExeGKPcmd(response); }});
}

QSRSLT CScanCmd::QueryDeviceScanParameter(_SCANCMD_RESPONSE_INFO* response) {
  return query("QueryDeviceScanParameter", response,
               {"I Command START", [&] { return v1_.ExeIcmd(response, &param_); }},
               {"SSP Command START", [&] { return v2_.ExeSSPcmd(response, &param_); }});
}

QSRSLT CScanCmd::GetPaletteTable(_SCANCMD_RESPONSE_INFO* response) {
  return query("GetPaletteTable", response, {"P Command START", [&] { return v1_.ExePcmd(response); }},
               {"GCT Command START", [&] { return v2_.ExeGCTcmd(response); }});
}

QSRSLT CScanCmd::GetColorProfile(_SCANCMD_RESPONSE_INFO* response) {
  return query("GetColorProfile", response, {}, {"GCP Command START", [&] { return v2_.ExeGCPcmd(response); }});
}

QSRSLT CScanCmd::GetDocumentSizeOnPaperSource(_SCANCMD_RESPONSE_INFO* response) {
  return query("GetDocumentSizeOnPaperSource", response,
               {"E Command START", [&] { return v1_.ExeEcmd(response, &param_); }},
               {"GDS Command START", [&] { return v2_.ExeGDScmd(response); }});
}

QSRSLT CScanCmd::StartScanning() {
  // The stored record is asked for before the device is touched.
  if (!paramSet_) {
    Trace trace("StartScanning");
    return trace.result(QSRSLT_CMD_NO_SCAN_PARAM);
  }
  return run("StartScanning", {"X Command START", [&] { return v1_.ExeXcmd(&param_); }},
             {"XSC Command START", [&] { return v2_.ExeXSCcmd(&param_); }});
}

QSRSLT CScanCmd::AbortScanning(SCANCMD_EJECTION_TYPE ejection) {
  // The first generation always ejects in its own way: its command has no place for the wish.
  return run("AbortScanning", {"R Command START", [&] { return v1_.ExeRcmd(); }},
             {"ABT Command START", [&] { return v2_.ExeABTcmd(ejection); }});
}

}  // namespace orvalle_scan_api
