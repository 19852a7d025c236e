// Pixel values of a one-bit image, 0 to 10 and beyond, back to bits: below 5 is a clear bit.
#pragma once

#include <cstddef>
#include <cstdint>

// count values from a fresh byte on; the bits behind the last one are set.
void packResoBits(const std::uint8_t* values, std::size_t count, std::uint8_t* dest);

// The rest of a line that an enlarging writer made in groups of pixels, behind `before` values that are packed already.
// Kept: whether a new byte starts is asked once for all of them, by the number of whole groups plus the pixels before:
// where that is a multiple of 8 every one of them starts a new byte, otherwise none does and they clear bits of the
// byte before. Pinned by QvChangeReso_test "The rest of a one-bit line".
void packResoRest(const std::uint8_t* values, std::size_t count, std::size_t groups, std::size_t before,
                  std::uint8_t* dest);

// Bytes that the two may touch.
std::size_t packedResoBytes(std::size_t count, std::size_t groups, std::size_t before);
