#pragma once
// Whole table files in and out, for the tools that compress and measure.

#include <cstdint>
#include <cstdio>
#include <vector>

namespace tbcompress {

inline bool readTableFile(const char* name, std::vector<std::uint8_t>& bytes) {
    std::FILE* file = std::fopen(name, "rb");
    if (!file) return false;
    std::uint8_t chunk[1 << 16];
    std::size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) bytes.insert(bytes.end(), chunk, chunk + got);
    const bool ok = !std::ferror(file);
    std::fclose(file);
    return ok;
}

inline bool writeTableFile(const char* name, const std::vector<std::uint8_t>& bytes) {
    std::FILE* file = std::fopen(name, "wb");
    if (!file) return false;
    const bool ok = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && ok;
}

}  // namespace tbcompress
