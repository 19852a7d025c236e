#include "protocol/capability.h"

namespace vscan::gen1 {
namespace {

// The block from its first byte to its last. What a profile does not set has the value that hosts assume for a device
// whose block ends before it. Fields called "reserved" and their offset are read by no host that we know of.
constexpr CapabilityField kFields[] = {
    // no tag  key  bytes  places  signed  initial
    {0, "version", 1, 1, false, 11},
    {0, "reserved1", 1, 1, false, 0},
    {0, "colorType", 1, 1, false, 31},  // bit 0 mono, 1 error diffusion, 2 grey, 3 palette, 4 colour
    {0, "reserved3", 2, 1, false, 0},
    {0, "reserved5", 2, 1, false, 0},
    {0, "reserved7", 2, 1, false, 0},
    {0, "reserved9", 2, 1, false, 0},
    {0, "reserved11", 1, 1, false, 4},
    {0, "reserved12", 1, 1, false, 1},
    {0, "flatbedPositionX", 1, 1, false, 1},  // 1 left or top, 2 in the middle, 3 right or bottom
    {0, "flatbedPositionY", 1, 1, false, 1},
    {0, "adfPositionX", 1, 1, false, 2},
    {0, "adfPositionY", 1, 1, false, 1},
    {0, "scanFunc", 1, 1, false, 8},   // bit 0 edges, 1 document size, 2 corners, 3 deskew in the feeder, 4 on the bed
    {0, "longPaper", 1, 1, false, 0},  // 1: up to 863 mm
    {0, "multifeed", 1, 1, false, 0},
    {0, "carrierSheet", 1, 1, false, 0},
    {0, "reserved21", 1, 4, false, 0},
    {0, "reserved25", 1, 1, false, 1},
    {0, "removeBackground", 1, 1, false, 1},  // 1: for mono scans
    {0, "flatbedMaxX", 2, 1, false, 2100},    // tenths of a millimetre; 0 = no bed
    {0, "flatbedMaxY", 2, 1, false, 3496},
    {0, "adfMaxX", 2, 1, false, 2100},  // 0 = no feeder
    {0, "adfMaxY", 2, 1, false, 3496},
    {0, "duplexMaxX", 2, 1, false, 2100},  // 0 = one side only
    {0, "duplexMaxY", 2, 1, false, 3496},
    {0, "adfMinX", 2, 1, false, 1440},
    {0, "adfMinY", 2, 1, false, 1440},
    {0, "duplexMinX", 2, 1, false, 1440},
    {0, "duplexMinY", 2, 1, false, 1440},
    {0, "marginX", 2, 1, false, 30},  // left and right of every source
    {0, "marginY", 2, 1, false, 30},  // top and bottom
    {0, "landscape", 1, 1, false, 0},
    {0, "cardPositionX", 1, 1, false, 2},
    {0, "cardPositionY", 1, 1, false, 1},
    {0, "flatbedOpticalX", 2, 1, false, 1200},  // dots per inch
    {0, "flatbedOpticalY", 2, 1, false, 2400},
    {0, "adfOpticalX", 2, 1, false, 1200},
    {0, "adfOpticalY", 2, 1, false, 2400},
    {0, "duplexOpticalX", 2, 1, false, 1200},
    {0, "duplexOpticalY", 2, 1, false, 2400},
    {0, "reserved66", 1, 1, false, 15},
    {0, "adfStackCapacity", 2, 1, false, 50},
    {0, "reserved69", 1, 3, false, 0},
    {0, "reserved72", 1, 1, false, 0},
};

}  // namespace

std::span<const CapabilityField> capabilityFields() { return kFields; }

}  // namespace vscan::gen1
