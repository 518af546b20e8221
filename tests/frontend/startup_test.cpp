// Start-up as a user meets it: a copy of the engine in a directory of its
// own, with its own morvane.cfg and switches, and the batch runs of -f and -p.

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>

#include "support/engine.h"

namespace {

using testing_support::EngineSandbox;

// Everything start-up writes on standard error, for a sandbox with no tables.
std::string banner(const std::string& hashLine, const std::string& pathList) {
    return "Morvane 4.2\nCopyright (C) Aurelien Moraud\n" + hashLine + "\nTbPath=<" + pathList +
           ">\nInitTb=0\ntype quit to exit\n";
}

const std::string SmallestTables = "Hash=3MB HP=1MB Sst=68";
const std::string Tables21 = "Hash=24MB HP=7MB Sst=68";

}  // namespace

TEST(StartupTranscript, TheFileThenTheSwitchesDecideTablesAndPaths) {
    EngineSandbox box;
    EXPECT_EQ(box.run("quit\n").err, banner(SmallestTables, box.directory()));
    box.writeConfig("HASHTABLE=21\nTABLEBASE=/data/tb\ntablebase=  /more\r\nTABLEBASE=\n");
    EXPECT_EQ(box.run("quit\n").err, banner(Tables21, box.directory() + ";/data/tb;/more"));
    // -d replaces the list; -h counts like the key, a size below 1 ignored.
    box.writeConfig("HASHTABLE=5\n");
    EXPECT_EQ(box.run("quit\n", {"-d/only", "-h21"}).err, banner(Tables21, "/only"));
    EXPECT_EQ(box.run("quit\n", {"bare", "-x9", "-", "-h0", "-hjunk"}).err, banner(SmallestTables, box.directory()));
    // A path that can't fit the list is refused.
    const std::string path = "/" + std::string(109, 'x');
    box.writeConfig("TABLEBASE=" + path + "\nTABLEBASE=" + path + "\nTABLEBASE=" + path + "\n");
    EXPECT_EQ(box.run("quit\n").err, banner(SmallestTables, box.directory() + ";" + path + ";" + path));
}

TEST(StartupTranscript, BadSwitchesAndBadConfigurationLines) {
    EngineSandbox box;
    auto run = box.run("quit\n", {"-t0"});
    EXPECT_EQ(run.out, "temps??\n");
    EXPECT_EQ(run.exitCode, 0);
    // Overlong lines (whose tails are no settings), numbers past any range,
    // NUL bytes, bare keys: nothing may crash start-up.
    std::string config = std::string(126, ';') + "HASHTABLE=21\n" + std::string(5000, 'A') + "HASHTABLE=21\n";
    config += "TB_CACHE_SIZE=99999999999999999999\nRESIGN=-99999999999999\nNULLEVAL=1.5e999\nLOGFILE\nUSE_BOOK=\n";
    config += std::string("HASH\0TABLE=21\n", 14);
    box.writeConfig(config);
    run = box.run("quit\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.err.find(SmallestTables), std::string::npos) << run.err;
}

// A batch run thinks once, prints only its thinking lines and exits;
// a file that can't be played says so.
TEST(StartupTranscript, BatchRunsOfGameFilesAndPositionLists) {
    EngineSandbox box;
    const std::string file = box.directory() + "/batch.txt";
    const auto batch = [&](const char* text, const std::string& option) {
        std::ofstream(file) << text;
        return box.run("", {option + file, "-t1"});
    };
    static const std::regex thinking("( *[0-9]+ +-?[0-9]+ +[0-9]+ +[0-9]+\t[^\n]*\n)+");
    for (const auto& [text, option] : {std::pair{"1. e2e4 e7e5\n", "-f"}, {"b\nre1\npe2\nn\nre8\n", "-p"}}) {
        const auto run = batch(text, option);
        EXPECT_EQ(run.exitCode, 0) << option;
        EXPECT_TRUE(std::regex_match(run.out, thinking)) << run.out;
    }
    EXPECT_EQ(batch("f2f3 e7e5 g2g4 d8h4\n", "-f").out, "");  // the game is over: no think
    for (const char* option : {"-f", "-p"}) {
        const auto run = batch("e2e4 e7e5 e1e3\nb\nre1\n", option);  // an illegal move; no black king
        EXPECT_EQ(run.out, "fichier??\n") << option;
        EXPECT_EQ(run.exitCode, 1) << option;
    }
}
