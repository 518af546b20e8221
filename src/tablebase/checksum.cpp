#include "tablebase/checksum.h"

#include <array>

namespace tablebase {

namespace {

constexpr std::uint32_t Polynomial = 0xEDB88320u;

constexpr std::array<std::uint32_t, 256> makeChecksumTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t value = i;
        for (int round = 0; round < 8; ++round)
            value = (value & 1) ? value >> 1 : (value >> 1) ^ Polynomial;
        table[i] = value;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> checksumTable = makeChecksumTable();
static_assert(checksumTable[0] == 0x2D02EF8Du);

}  // namespace

std::uint32_t tbChecksum(const std::uint8_t* bytes, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = (value >> 8) ^ checksumTable[(bytes[i] ^ value) & 255];
    return value;
}

}  // namespace tablebase
