#pragma once
// The checksum that guards a compressed table's header and, in the writer,
// each block. A 32-bit CRC over the polynomial 0xEDB88320 whose table takes
// the polynomial on even values instead of odd ones: entry 0 is 0x2D02EF8D.
// The running value starts at 0 and is not inverted at the end. Files of
// the format carry this variant; a standard CRC-32 doesn't match them.

#include <cstddef>
#include <cstdint>

namespace tablebase {

std::uint32_t tbChecksum(const std::uint8_t* bytes, std::size_t count);

}  // namespace tablebase
