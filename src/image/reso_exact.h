// Horizontal work of the exact ratios: one line of bytes in, one line out.
//
// Threads: reentrant.
#pragma once

#include <cstddef>
#include <cstdint>

struct ExactLine {
  const std::uint8_t* source;
  std::size_t sourceBytes;
  std::uint8_t* dest;
  std::size_t outBytes;
};

// One-bit lines by the code of the writer: 0 two to one, 1 to 3 one to two, three, four, anything else as they are.
// Returns the bytes written.
std::size_t writeExact2Bit(int writer, const ExactLine& line);

// Eight-bit lines, every pixel `factor` times, or every factor-th pixel.
void write8BitX_1toN(const ExactLine& line, std::size_t factor);
void write8BitX_Nto1(const ExactLine& line, std::size_t factor);
