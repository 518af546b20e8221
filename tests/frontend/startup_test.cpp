// Start-up as a user meets it: a copy of the engine in a directory of its
// own, with its own morvane.cfg, switches and log.

#include <gtest/gtest.h>

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
    for (const char* argument : {"-f/no/such/game", "-p/no/such/list"}) {
        run = box.run("quit\n", {argument});
        EXPECT_EQ(run.out, "fichier??\n") << argument;
        EXPECT_EQ(run.exitCode, 1) << argument;
    }
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

TEST(StartupTranscript, LogFileRecordsGamesBesideTheProgram) {
    EngineSandbox box;
    box.run("new\nforce\ne2e4\nquit\n");
    EXPECT_EQ(box.readFile("morvane.log"), "");  // no LOGFILE, no log
    box.writeConfig("LOGFILE=1\n");
    const std::string game = "new\nforce\ne2e4\ne7e5\ng1f3\nb8c6\nresult 1-0 {White mates}\nquit\n";
    EXPECT_EQ(box.run(game).exitCode, 0);
    EXPECT_EQ(box.run(game).exitCode, 0);  // appended, not replaced
    const std::string oneGame =
        "\\[Event \"Computer chess game\"\\]\n\\[Date \"[0-9]{4}\\.[0-9]{2}\\.[0-9]{2}\"\\]\n"
        "1\\.   e4 \\(\\{\\}\\)\n1\\.\\.\\. e5 \\(\\{\\}\\)\n2\\.   Nf3 \\(\\{\\}\\)\n2\\.\\.\\. Nc6 \\(\\{\\}\\)\n"
        "1-0 \\{WHITE MATES\\}\n";
    const std::string log = box.readFile("morvane.log");
    EXPECT_TRUE(std::regex_match(log, std::regex(oneGame + oneGame))) << log;
}
