#pragma once
// The writing side of the compressed format's bit streams: values go out
// top bit first, bytes in order, the last byte padded with zeros.

#include <cstdint>
#include <vector>

namespace tbcompress {

struct BitWriter {
    std::vector<std::uint8_t> bytes;
    std::uint64_t pendingBits = 0;  // not yet a whole byte, in the low `pendingCount` bits
    int pendingCount = 0;

    // Appends the low `count` bits of `value` (count 0 to 32).
    void put(std::uint32_t value, int count) {
        if (count == 0) return;
        pendingBits = (pendingBits << count) | (value & ((std::uint64_t(1) << count) - 1));
        pendingCount += count;
        while (pendingCount >= 8) {
            pendingCount -= 8;
            bytes.push_back(std::uint8_t(pendingBits >> pendingCount));
        }
    }

    void flush() {
        if (pendingCount > 0) bytes.push_back(std::uint8_t(pendingBits << (8 - pendingCount)));
        pendingCount = 0;
        pendingBits = 0;
    }

    std::uint64_t bitCount() const { return 8 * std::uint64_t(bytes.size()) + std::uint64_t(pendingCount); }
};

}  // namespace tbcompress
