#pragma once
// Book files that tests write: records built from keys and entries, and a
// private working directory that holds both book names, so that neither the
// default book beside the test binary nor another test's files are seen.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "book/bookfile.h"

namespace booktest {

inline std::string keyOf(const board::Game& g = board::game) {
    char key[board::BoardTextSize];
    board::boardText(g, key);
    return key;
}

inline std::uint16_t moveOf(const char* coordinate) {
    std::string text(coordinate);
    return std::uint16_t(board::parseCoordinateMove(text.data(), board::White));
}

inline book::BookRecord makeRecord(const std::string& key, std::initializer_list<book::BookEntry> entries) {
    book::BookRecord r{};
    key.copy(r.key, sizeof r.key - 1);
    int i = 0;
    for (const book::BookEntry& e : entries) r.entry[i++] = e;
    return r;
}

inline std::string bytesOf(const std::vector<book::BookRecord>& records) {
    return std::string(reinterpret_cast<const char*>(records.data()), records.size() * sizeof(book::BookRecord));
}

// Pearson's statistic of `counts` against expected `shares`; at the 0.999
// level it stays below 10.8 for two outcomes and 13.8 for three.
inline double chiSquare(const std::vector<int>& counts, const std::vector<double>& shares) {
    double total = 0, sum = 0;
    for (int c : counts) total += c;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double expected = total * shares[i];
        sum += (counts[i] - expected) * (counts[i] - expected) / expected;
    }
    return sum;
}

inline void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// A fresh directory that is both the book directory and the working
// directory for the test's length.
class BookDirectory : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/morvane-book-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
        previous_ = std::filesystem::current_path();
        std::filesystem::current_path(dir_);
        book::setBookDirectory((dir_ + "/").c_str());
        board::resetGame(board::game);
        board::rescanMoves(board::game);
    }
    void TearDown() override {
        std::filesystem::current_path(previous_);
        book::setBookDirectory("");
        std::filesystem::remove_all(dir_);
    }
    std::string mainBook() const { return dir_ + "/" + book::MainBookName; }
    std::string spareBook() const { return dir_ + "/" + book::SpareBookName; }

    std::string dir_;
    std::filesystem::path previous_;
};

}  // namespace booktest
