// Every result code of the library, by name.
//
// The top hexadecimal digit tells the kind:
//   0  success, or cancellation (0x01000000), which a caller treats apart from failure
//   1  function failure or wrong calling order      2  a companion module could not be loaded or opened
//   3  out of memory or a missing object            4  connection failure
//   5  error reported by the device                 6  unexpected data from the device
//   7  bad argument
// Then come three digits for the module - 010 interface and scan process, 021 command layer, 024 device status,
// 030 capabilities, 040 page reception and pipeline, 060 grey conversion, 070 enhancement - and the number.
#pragma once

#include "scan_types.h"

namespace orvalle_scan_api {

inline constexpr QSRSLT QSRSLT_SUCCESS = 0x00000000;
inline constexpr QSRSLT QSRSLT_CANCELED = 0x01000000;  // by the user or by the device's stop key

// Interface and scan process.
inline constexpr QSRSLT QSRSLT_NOT_INITIALIZED = 0x10100001;  // or a scan is running, or a null argument
inline constexpr QSRSLT QSRSLT_CAPS_NOT_READY = 0x10100008;   // the capability object is not initialised
inline constexpr QSRSLT QSRSLT_NOT_PREPARED = 0x10100009;     // no device selected, or preparing failed
inline constexpr QSRSLT QSRSLT_NO_ACTUAL_PARAM = 0x1010000B;  // the device's actual parameters could not be read
inline constexpr QSRSLT QSRSLT_SCAN_GENERATION = 0x1010000C;  // the command generation could not be selected (scan)
inline constexpr QSRSLT QSRSLT_WRONG_STATE = 0x1010000D;      // no scan process, no scan running, or no such page
inline constexpr QSRSLT QSRSLT_NO_READ_THREAD = 0x1010000E;   // the read thread could not be created
inline constexpr QSRSLT QSRSLT_PUSH_GENERATION = 0x1010000F;  // the generation could not be selected (panel)
inline constexpr QSRSLT QSRSLT_NO_SCAN_COMMAND = 0x10100010;  // the command object could not be made
inline constexpr QSRSLT QSRSLT_NO_ENUMERATION = 0x10100011;   // enumeration is not offered here
inline constexpr QSRSLT QSRSLT_DEVICE_ACCESS_NOT_LOADED = 0x20100006;
inline constexpr QSRSLT QSRSLT_NO_CAPS_OBJECT = 0x30100002;
inline constexpr QSRSLT QSRSLT_NULL_CAPS = 0x30100007;
inline constexpr QSRSLT QSRSLT_NULL_DEVICE_ACCESS = 0x70100003;
inline constexpr QSRSLT QSRSLT_NULL_SCAN_COMMAND = 0x70100004;
inline constexpr QSRSLT QSRSLT_NULL_ARGUMENT = 0x7010000A;
inline constexpr QSRSLT QSRSLT_NULL_CAPABILITY = 0x70100012;
inline constexpr QSRSLT QSRSLT_EMPTY_DEVICE = 0x70100013;

// Command layer.
inline constexpr QSRSLT QSRSLT_CMD_NO_GENERATION = 0x10210021;     // the command generation is not known
inline constexpr QSRSLT QSRSLT_CMD_NOT_OFFERED = 0x10210022;       // the operation does not exist in this generation
inline constexpr QSRSLT QSRSLT_CMD_NO_SCAN_PARAM = 0x10210024;     // scan start without a scan parameter
inline constexpr QSRSLT QSRSLT_CMD_TOO_LARGE = 0x10210032;         // response larger than the receive buffer
inline constexpr QSRSLT QSRSLT_CMD_EMPTY = 0x10210034;             // a command string came out empty
inline constexpr QSRSLT QSRSLT_CMD_TOO_SHORT = 0x10210041;         // response too short
inline constexpr QSRSLT QSRSLT_CMD_NO_CAPABILITY = 0x10210042;     // capability data asked for before any query
inline constexpr QSRSLT QSRSLT_CMD_WRONG_SIGNATURE = 0x10210043;   // wrong signature on a response
inline constexpr QSRSLT QSRSLT_CMD_NO_DEVICE_ACCESS = 0x40210011;  // no device-access object
inline constexpr QSRSLT QSRSLT_CMD_NOT_OPENED = 0x40210012;        // the device could not be opened
inline constexpr QSRSLT QSRSLT_CMD_BAD_ARGUMENT = 0x70210002;
inline constexpr QSRSLT QSRSLT_DEVICE_STATUS = 0x10240000;    // plus the device's non-zero result byte
inline constexpr QSRSLT QSRSLT_DOCUMENT_STATUS = 0x00202000;  // plus the document status byte, generation 2

// Capabilities.
inline constexpr QSRSLT QSRSLT_CAPS_NOT_INITIALIZED = 0x10300001;
inline constexpr QSRSLT QSRSLT_CAPS_EMPTY = 0x1030000A;  // the device returned an empty capability response

// Page reception and pipeline. The digit after 040 is the class: 1 read thread, 2 page store, 3 JPEG decode,
// 4 decode manager, 5 enhancement manager, 6 line decode.
inline constexpr QSRSLT QSRSLT_READ_THREAD_NOT_STARTED = 0x10401001;
inline constexpr QSRSLT QSRSLT_DEVICE_STOPPED = 0x1040100B;  // the device stopped with an error status
inline constexpr QSRSLT QSRSLT_JPEG_ERROR = 0x10403003;
inline constexpr QSRSLT QSRSLT_JPEG_STREAM_CREATE = 0x10403007;
inline constexpr QSRSLT QSRSLT_JPEG_STREAM_WRITE = 0x10403008;
inline constexpr QSRSLT QSRSLT_JPEG_NOT_OPENED = 0x10403009;
inline constexpr QSRSLT QSRSLT_JPEG_BAND_WRITE = 0x1040300A;
inline constexpr QSRSLT QSRSLT_JPEG_NO_DECODER = 0x1040300B;
inline constexpr QSRSLT QSRSLT_WORKER_NOT_STARTED = 0x10404001;
inline constexpr QSRSLT QSRSLT_DECODE_NOT_QUEUED = 0x10404003;
inline constexpr QSRSLT QSRSLT_ENHANCE_NOT_QUEUED = 0x10405003;
inline constexpr QSRSLT QSRSLT_ENHANCE_NULL = 0x10405005;
inline constexpr QSRSLT QSRSLT_JPEG_NOT_LOADED = 0x20403001;
inline constexpr QSRSLT QSRSLT_ENHANCE_NOT_LOADED = 0x20405004;
inline constexpr QSRSLT QSRSLT_LINE_DECODER_NOT_OPENED = 0x20406001;
inline constexpr QSRSLT QSRSLT_NO_ESCAPE_BUFFER = 0x30401006;
inline constexpr QSRSLT QSRSLT_NO_PAGE_MEMORY = 0x30402001;
inline constexpr QSRSLT QSRSLT_JPEG_LOW_MEMORY = 0x30403005;
inline constexpr QSRSLT QSRSLT_JPEG_MEMORY_PROC = 0x30403006;
inline constexpr QSRSLT QSRSLT_PAGE_NOT_HANDED_OVER = 0x30404002;
inline constexpr QSRSLT QSRSLT_LINE_DECODER_REFUSED = 0x30406003;
inline constexpr QSRSLT QSRSLT_NO_LINE_DECODER = 0x30406007;
inline constexpr QSRSLT QSRSLT_RECEIVE_TIME_OUT = 0x40401005;
inline constexpr QSRSLT QSRSLT_DEVICE_READ_TIME_OUT = 0x40500031;  // lastResult of a device-access object
inline constexpr QSRSLT QSRSLT_UNKNOWN_DATA = 0x6040100F;
inline constexpr QSRSLT QSRSLT_READ_NULL_DEVICE_ACCESS = 0x70401002;
inline constexpr QSRSLT QSRSLT_READ_NULL_SCAN_COMMAND = 0x70401009;
inline constexpr QSRSLT QSRSLT_NULL_DATA = 0x70402003;
inline constexpr QSRSLT QSRSLT_JPEG_BAD_PARAMETER = 0x70403004;
inline constexpr QSRSLT QSRSLT_LINE_DECODER_WROTE_NOTHING = 0x70406007;

// Grey conversion and enhancement.
inline constexpr QSRSLT QSRSLT_GRAY_NO_MEMORY = 0x30601002;
inline constexpr QSRSLT QSRSLT_GRAY_NULL_IMAGE = 0x70601001;
inline constexpr QSRSLT QSRSLT_ENHANCE_STOPPED = 0x10701002;
inline constexpr QSRSLT QSRSLT_CHANGE_RESO_INIT = 0x10703001;
inline constexpr QSRSLT QSRSLT_CHANGE_RESO_START = 0x10703002;
inline constexpr QSRSLT QSRSLT_PADDED_PAGE_NOT_TURNED = 0x30703004;

// Errors that the device reports while scanning: 0x50000001 to 0x50000016, and this one for every other device code.
inline constexpr QSRSLT QSRSLT_DEVICE_ERROR_OTHER = 0x500000FF;

}  // namespace orvalle_scan_api
