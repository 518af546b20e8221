#pragma once
// Table files for the registry, cache and probe tests: a directory of the
// test's own, plain tables whose bytes follow a known rule (or sparse ones
// of zeros that cost no disk), and a set-up whose report is kept.

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "tablebase/registry.h"

namespace tbtest {

class TableDirectory {
public:
    ~TableDirectory() { std::filesystem::remove_all(path_); }
    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_ = mkdtemp((testing::TempDir() + "/tables_XXXXXX").data());
};

// The byte a test table of `variant` holds at `index`.
inline std::uint8_t testByte(std::uint32_t index, int variant) { return std::uint8_t(index * 7 + index / 8192 + variant); }

inline void writeTable(const std::string& path, std::uint32_t size, int variant = 0, bool sparse = false) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr) << path;
    for (std::uint32_t i = 0; i < size && !sparse; ++i) std::fputc(testByte(i, variant), f);
    ASSERT_EQ(ftruncate(fileno(f), off_t(size)), 0);
    std::fclose(f);
}

// The table of `name` and `side`, of its right size.
inline void writeRow(const TableDirectory& dir, const char* name, int side, int variant = 0, bool sparse = false) {
    writeTable(dir.file(std::string(name) + (side ? ".nbb" : ".nbw")),
               tablebase::tbPositions(tablebase::tbRowId(name), side), variant, sparse);
}

// tbInit, with what it printed on standard error.
inline int initTables(const std::string& pathList, std::string* printed = nullptr, std::int32_t cache = 1048576) {
    testing::internal::CaptureStderr();
    const int men = tablebase::tbInit(pathList.c_str(), cache);
    const std::string text = testing::internal::GetCapturedStderr();
    if (printed) *printed = text;
    return men;
}

}  // namespace tbtest
