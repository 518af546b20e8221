// The line reader and the normal form that every command goes through.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "frontend/commandloop.h"

namespace {

std::string normalised(const char* text) {
    char line[frontend::CommandLineSize];
    std::snprintf(line, sizeof line, "%s", text);
    frontend::normaliseCommand(line);
    return line;
}

TEST(NormaliseCommand, FoldsToUpperCase) {
    EXPECT_EQ(normalised("e2e4"), "E2E4");
    EXPECT_EQ(normalised("protover 2"), "PROTOVER 2");
    EXPECT_EQ(normalised(""), "");
    // Bytes outside ASCII pass unchanged whatever the locale.
    EXPECT_EQ(normalised("ping \xe9t\xe9"), "PING \xe9T\xe9");
}

TEST(NormaliseCommand, FenPathAndUciTailsKeepTheirCase) {
    EXPECT_EQ(normalised("setboard rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"),
              "SETBOARD rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
    EXPECT_EQ(normalised("egtpath nalimov /home/Tb"), "EGTPATH nalimov /home/Tb");
    EXPECT_EQ(normalised("POSITION fen 8/8/k7/8/8/8/8/K7 b - - moves a6b6"),
              "position fen 8/8/k7/8/8/8/8/K7 b - - moves a6b6");
    EXPECT_EQ(normalised("SetOption name NalimovPath value /Tb"), "setoption name NalimovPath value /Tb");
    // Only the opening word is tested, so a longer word gets the same form.
    EXPECT_EQ(normalised("setboardX q"), "SETBOARDX q");
    // "option" alone isn't among them: the xboard answer is upper-cased.
    EXPECT_EQ(normalised("option Use Book=0"), "OPTION USE BOOK=0");
}

// Reads every line that readCommandLine gives from `input`.
std::vector<std::string> lines(const std::string& input) {
    std::FILE* file = std::tmpfile();
    std::fwrite(input.data(), 1, input.size(), file);
    std::rewind(file);
    std::vector<std::string> result;
    char buffer[frontend::CommandLineSize];
    while (frontend::readCommandLine(file, buffer, frontend::CommandLineSize)) result.emplace_back(buffer);
    std::fclose(file);
    return result;
}

TEST(ReadCommandLine, SplitsAtLineFeedsAndDropsCarriageReturnsBeforeThem) {
    EXPECT_EQ(lines(""), std::vector<std::string>{});
    EXPECT_EQ(lines("\n"), std::vector<std::string>{""});
    EXPECT_EQ(lines("a\r\nb\n\nc"), (std::vector<std::string>{"a", "b", "", "c"}));
    // A CR not followed by a line feed is text.
    EXPECT_EQ(lines("a\rb\n"), std::vector<std::string>{"a\rb"});
}

TEST(ReadCommandLine, LongLinesArriveIn2699CharacterPieces) {
    const std::string full(2699, 'a');
    EXPECT_EQ(lines(full + "\n" + "b\n"), (std::vector<std::string>{full, "b"}));
    EXPECT_EQ(lines(full + "\r\nb\n"), (std::vector<std::string>{full, "b"}));
    EXPECT_EQ(lines(full), std::vector<std::string>{full});
    const std::string doubled = full + full + "tail";
    EXPECT_EQ(lines(doubled + "\n"), (std::vector<std::string>{full, full, "tail"}));
}

}  // namespace
