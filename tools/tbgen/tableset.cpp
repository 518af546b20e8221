// Reading values out of finished tables, and the table files themselves.

#include "tbgen/tableset.h"

#include <cstdio>
#include <string>

#include "tablebase/index.h"
#include "tbgen/values.h"

namespace tbgen {

int lookupScore(const TableSet& tables, const Exit& exit, const int* squares, int stm, int epSquare) {
    if (exit.map.rowId == 0) return 0;
    const auto row = tables.rows.find(exit.map.rowId);
    if (row == tables.rows.end()) return NoScore;
    const std::vector<std::int8_t>& bytes = row->second[tableSide(exit.map, stm)];
    const std::uint32_t index = tableIndex(exit.map, exit.material, squares, stm, epSquare);
    return index < bytes.size() ? scoreOfByte(bytes[index]) : NoScore;
}

std::string tableFileName(const char* dir, int rowId, int side) {
    std::string name = dir;
    if (!name.empty() && name.back() != '/') name += '/';
    return name + tablebase::tbRowName(rowId) + (side == 0 ? ".nbw" : ".nbb");
}

bool readRow(const char* dir, int rowId, TableSet& tables) {
    std::array<std::vector<std::int8_t>, 2> sides;
    for (int side = 0; side < 2; ++side) {
        std::FILE* file = std::fopen(tableFileName(dir, rowId, side).c_str(), "rb");
        if (file == nullptr) return false;
        sides[side].resize(tablebase::tbPositions(rowId, side));
        const std::size_t read = std::fread(sides[side].data(), 1, sides[side].size(), file);
        const bool whole = read == sides[side].size() && std::fgetc(file) == EOF;
        std::fclose(file);
        if (!whole) return false;
    }
    tables.rows[rowId] = std::move(sides);
    return true;
}

bool writeRow(const char* dir, int rowId, const TableSet& tables) {
    const auto& sides = tables.rows.at(rowId);
    for (int side = 0; side < 2; ++side) {
        const std::string name = tableFileName(dir, rowId, side);
        std::FILE* file = std::fopen(name.c_str(), "wb");
        if (file == nullptr) return false;
        const bool written = std::fwrite(sides[side].data(), 1, sides[side].size(), file) == sides[side].size();
        if (std::fclose(file) != 0 || !written) return false;
    }
    return true;
}

}  // namespace tbgen
