// The interface of the scanner driver core.
//
// A host loads libQsScanCoreApi.so with dlopen, looks up CreateInstance, calls it, and then works through the virtual
// interface below, in this order:
//
//   1. CreateInstance
//   2. Initialize               loads the device-access module
//   3. SelectDevice
//   4. QueryDeviceCapabilities, CheckConnection, IsAdfInserted, GetPushScanParameter as needed; capabilities are asked
//      for once and then answered from a cache until UnInitialize
//   5. StartScanning            returns as soon as the read thread runs
//   6. poll GetScanStatus: XFERREADY -> ReadImageData, use the page, FreeImageData(pageNo); RECEIVING -> poll again;
//      ALLEND and XFERCANCELED end the loop, and the object is ready for a new scan
//   7. AbortScanning at any time after 5 asks the device to stop; the loop of 6 goes on until XFERCANCELED, or until
//      ReadImageData returns 0x01000000
//   8. UnInitialize, then destroy the object through its virtual destructor
//
// Threads: one calling thread at a time. The threads of a scan live below StartScanning and never call the host. While
// a scan runs the device belongs to them: SelectDevice, CheckConnection, QueryDeviceCapabilities, IsAdfInserted and
// GetPushScanParameter are for before and after it.
// Failures are result codes (result_codes.h); nothing is thrown across this boundary.
#pragma once

#include "push_scan.h"
#include "result_codes.h"
#include "scan_image.h"
#include "scan_types.h"
#include "scanner_capability_v1.h"
#include "scanner_parameters.h"
#include "select_device.h"

namespace orvalle_scan_api {

// The order of the operations is the order of their virtual slots and never changes.
class IScanCoreApi {
 public:
  virtual ~IScanCoreApi() = default;

  // Forgets the selected device and loads the device-access module.
  //   0x20100006  the module could not be loaded; every operation that needs it refuses
  virtual QSRSLT Initialize() = 0;

  // Ends a running scan, joins its threads, closes the device and unloads the device-access module. Pages that were
  // handed out are gone afterwards. Harmless when nothing was initialised.
  virtual void UnInitialize() = 0;

  // Not offered: finding devices is the host's business. Writes 0 to *count (unless null) and leaves *list alone.
  //   0x10100011  always, once initialised     0x10100001  not initialised
  virtual QSRSLT EnumerateDevice(_QS_SELECT_DEVICE_INFO** list, int* count) = 0;
  virtual void ReleaseDeviceList() = 0;

  // Stores a copy of the record. May be called before Initialize, which forgets it again.
  //   0x70100013  connectionType is 0, or both names are empty
  virtual QSRSLT SelectDevice(_QS_SELECT_DEVICE_INFO& info) = 0;

  // Copies the stored record out; always 0.
  virtual QSRSLT GetSelectedDevInfo(_QS_SELECT_DEVICE_INFO* info) = 0;

  // Whether the device is open or can be opened.
  virtual bool CheckConnection() = 0;

  // Asks the device once what it can do. generation is the version of the record at capability: 1 fills a
  // tagQS_SCANNER_CAPABILITY_VER1; any other value asks the device, writes nothing and returns 0.
  //   0x10100001  null record                  0x10100009  not initialised
  //   0x10100010  no usable device selected    or the code of the failed query
  virtual QSRSLT QueryDeviceCapabilities(unsigned int generation, void* capability) = 0;

  // The colour profile that was fetched at the start of the running scan (wantColorProfile). The bytes stay owned by
  // the library and are valid until the next scan starts.
  //   0x7010000A  null argument    0x1010000D  no scan, or the device gave no profile
  virtual QSRSLT GetIccProfile(void** data, int* size) = 0;

  // What the device's panel asks for; parameters points to a tagQS_PUSHSCAN_PARAMETERS, generation is only logged.
  // Before Initialize it returns 0 and writes nothing.
  //   0x10100009  preparing failed    0x1010000F  generation not selectable    0x7010000A  null record
  //   or the code of the failed query
  virtual QSRSLT GetPushScanParameter(unsigned int generation, void* parameters) = 0;

  // Whether paper lies in the feeder. Always false with second-generation devices, whose answer is never plain.
  virtual bool IsAdfInserted() = 0;

  // Starts a scan with a copy of the settings. Pages of an earlier scan are gone after this call.
  //   0x10100001  not initialised, or null     0x10100009  preparing failed
  //   or the code of the failed step
  virtual QSRSLT StartScanning(QS_SCANNER_PARAMETERS* parameters) = 0;

  // Waits for the next page, in order, and describes it in *image; its number, from 1, goes to *pageNo. The number
  // advances also when no page could be delivered. The page stays owned by the library until FreeImageData.
  //   0x7010000A  null argument                        0x1010000D  no scan, or all pages have ended before it
  //   0x01000000  cancelled, and no page               or the failure that ended the scan
  virtual QSRSLT ReadImageData(tagQS_SCAN_IMAGEDATA* image, int* pageNo) = 0;

  // Asks the running scan to stop and returns at once. True without a scan.
  virtual bool AbortScanning() = 0;

  // Releases the page. Reading from the device goes on only while few enough pages are held.
  virtual void FreeImageData(int pageNo) = 0;

  // The state of the next page.
  virtual SCANAPISTATUS GetScanStatus() = 0;

  // Always 0; stands for hosts that poll it.
  virtual int GetCurrentReceivedLines(int pageNo) = 0;

  // Forecast of the page format from the settings of the running scan; zeros without one.
  virtual QS_BITMAP_IMAGE_INFO GetScanBitmapImageInfo() = 0;
};

}  // namespace orvalle_scan_api

// Makes an instance; the caller destroys it with delete. Null when out of memory. Loads nothing.
extern "C" orvalle_scan_api::IScanCoreApi* CreateInstance();
