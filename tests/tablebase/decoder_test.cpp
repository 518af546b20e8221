// The reader of compressed tables on its own: the header's faults and their
// messages, the checksum variant, the code tables, and blocks written by
// hand to reach overlapping and cut matches, the short copy and corrupt
// streams.
#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>
#include <random>

#include "compressedfiles.h"
#include "tablebase/prefixcode.h"

using namespace tablebase;
using namespace tbtest;

namespace {

Bytes compressedSample() {
    Bytes table(3 * TbBlockSize + 500);
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = std::uint8_t(i / 700 % 4 + (i % 64 < 9 ? 8 : 0));
    return tbcompress::compressTable(table.data(), table.size());
}

std::size_t headerSizeOf(const Bytes& file) { return tbLoadBig32(file.data() + TbHeaderSizeOffset); }

// The same header signed with the textbook CRC table, whose entry 0 is 0.
void signWithUsualCrc(Bytes& file) {
    std::uint32_t table[256];
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t value = i;
        for (int round = 0; round < 8; ++round) value = (value & 1) ? (value >> 1) ^ 0xEDB88320u : value >> 1;
        table[i] = value;
    }
    const std::size_t at = headerSizeOf(file) - TbHeaderChecksumBytes;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < at; ++i) value = (value >> 8) ^ table[(file[i] ^ value) & 255];
    putBig32(file, at, value);
}

// A code of eight 3-bit symbols: two letters, matches at distance 1 with
// length codes 0, 14, 15 and 22, one at distance 2 and one at distance 0.
constexpr int LetterA = 'A', LetterB = 'B';
const int Repeat1 = tbcompress::matchSymbol(0, 0), Repeat15 = tbcompress::matchSymbol(0, 14),
          Repeat16 = tbcompress::matchSymbol(0, 15), Repeat270 = tbcompress::matchSymbol(0, 22),
          Back2 = tbcompress::matchSymbol(1, 0), NoDistance = tbcompress::matchSymbol(2, 0);

struct HandCode {
    HeaderPlan plan;
    tbcompress::PrefixCode code;
    TbDecoder* decoder = nullptr;
    HandCode() {
        for (int symbol : {LetterA, LetterB, Repeat1, Repeat15, Repeat16, Repeat270, Back2, NoDistance})
            plan.codeLengths[std::size_t(symbol)] = 3;
        plan.distances[1] = 2;
        plan.distances[2] = 0;
        code = tbcompress::canonicalCode(plan.codeLengths);
        decoder = parseBytes(buildHeader(plan)).decoder;
    }
    ~HandCode() { tbFreeDecoder(decoder); }

    // Decodes the symbols (each with its extra bits) as a block of `size`.
    int decode(std::initializer_list<std::array<int, 3>> symbols, int size, Bytes& out) const {
        tbcompress::BitWriter writer;
        for (const auto& [symbol, extraBits, extra] : symbols) {
            tbcompress::putSymbol(writer, code, symbol);
            writer.put(std::uint32_t(extra), extraBits);
        }
        writer.flush();
        out.assign(std::size_t(size + TbBlockSlack), 0);
        const int result = tbDecodeBytes(*decoder, writer.bytes.data(), int(writer.bytes.size()), size, out.data());
        out.resize(std::size_t(size));
        return result;
    }
};

std::string text(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

}  // namespace

TEST(TbChecksum, TheVariantTableTakesThePolynomialOnEvenValues) {
    const std::uint8_t zero = 0;
    EXPECT_EQ(tbChecksum(&zero, 1), 0x2D02EF8Du);
    Bytes file = compressedSample();
    const TbHeaderResult sound = parseBytes(file);
    ASSERT_EQ(sound.status, TbHeaderStatus::Ok);
    tbFreeDecoder(sound.decoder);
    signWithUsualCrc(file);
    EXPECT_EQ(parseBytes(file).status, TbHeaderStatus::Broken);
}

TEST(TbHeader, EachFaultGetsItsKind) {
    const Bytes sample = compressedSample();
    const std::size_t headerSize = headerSizeOf(sample);
    struct Case {
        const char* what;
        std::function<void(Bytes&)> change;
        TbHeaderStatus status;
    };
    const Case cases[] = {
        {"shorter than the fixed fields", [](Bytes& f) { f.resize(TbFixedHeaderBytes - 1); }, TbHeaderStatus::ReadError},
        {"last NUL of the signature", [](Bytes& f) { f[TbSignatureBytes - 1] = 1; }, TbHeaderStatus::ReadError},
        {"signature before magic", [](Bytes& f) { f[0] ^= 1, f[TbMagicOffset] ^= 1; }, TbHeaderStatus::ReadError},
        {"block bits 17", [](Bytes& f) { f[TbBlockBitsOffset] = 17; }, TbHeaderStatus::Broken},
        {"header size 83", [](Bytes& f) { putBig32(f, TbHeaderSizeOffset, 83); }, TbHeaderStatus::Broken},
        {"23 distances", [](Bytes& f) { f[TbDistanceCountOffset] = 23; }, TbHeaderStatus::Broken},
        {"magic", [](Bytes& f) { f[TbMagicOffset + 3] = 0xF6; }, TbHeaderStatus::Broken},
        {"a byte under the checksum", [&](Bytes& f) { f[headerSize - 6] ^= 0x10; }, TbHeaderStatus::Broken},
        {"header cut short", [&](Bytes& f) { f.resize(headerSize - 1); }, TbHeaderStatus::OutOfMemory},
        {"header size past the file", [](Bytes& f) { putBig32(f, TbHeaderSizeOffset, 0x7FFFFFFF); },
         TbHeaderStatus::OutOfMemory},
        {"untouched", [](Bytes&) {}, TbHeaderStatus::Ok},
    };
    for (const Case& c : cases) {
        Bytes file = sample;
        c.change(file);
        const TbHeaderResult result = parseBytes(file);
        EXPECT_EQ(result.status, c.status) << c.what;
        tbFreeDecoder(result.decoder);
    }
}

// Headers laid out by hand, checksum intact, so that only the field under
// test is wrong.
TEST(TbHeader, FieldsAndCodesAreCheckedBeforeTheBlockSize) {
    HeaderPlan plan;
    plan.codeLengths[0] = plan.codeLengths[1] = 1;
    const TbHeaderResult sound = parseBytes(buildHeader(plan));
    ASSERT_EQ(sound.status, TbHeaderStatus::Ok);
    EXPECT_EQ(sound.decoder->lastBlockSize, 1);
    EXPECT_EQ(sound.decoder->blockOffset[1] - sound.decoder->blockOffset[0], 1u);
    tbFreeDecoder(sound.decoder);

    plan.blockBits = 12;
    const TbHeaderResult small = parseBytes(buildHeader(plan));
    EXPECT_EQ(small.status, TbHeaderStatus::UnsupportedBlockSize);
    EXPECT_EQ(small.blockSize, 4096);

    plan.codeLengths[1] = 2;  // incomplete, whatever the block size
    EXPECT_EQ(parseBytes(buildHeader(plan)).status, TbHeaderStatus::Broken);

    HeaderPlan noBlocks;
    noBlocks.blockSizes.clear();
    EXPECT_EQ(parseBytes(buildHeader(noBlocks)).status, TbHeaderStatus::Broken);

    // Code lengths that run into the header's checksum.
    HeaderPlan full;
    for (int s = 0; s < TbSymbolCount; ++s) full.codeLengths[std::size_t(s)] = 10;
    Bytes cut = buildHeader(full);
    cut.erase(cut.end() - TbHeaderChecksumBytes - 2, cut.end() - TbHeaderChecksumBytes);
    putBig32(cut, TbHeaderSizeOffset, std::uint32_t(cut.size()));
    signHeader(cut);
    EXPECT_EQ(parseBytes(cut).status, TbHeaderStatus::Broken);
}

// The message goes to standard output, which a death test doesn't match:
// the child sends it to standard error instead.
TEST(TbHeaderDeathTest, FaultsEndTheProgramWithTheirMessages) {
    const auto readHeader = [](Bytes file) {
        dup2(2, 1);
        tbReadHeader(openBytes(file), "/tb/kqk.nbw.emd");
    };
    Bytes sample = compressedSample();
    Bytes shortFile(sample.begin(), sample.begin() + 40);
    EXPECT_EXIT(readHeader(shortFile), testing::ExitedWithCode(1), "^\\*\\*\\* Unable to read /tb/kqk.nbw.emd - read error\n$");
    Bytes broken = sample;
    broken[TbDistanceCountOffset] = 0;
    EXPECT_EXIT(readHeader(broken), testing::ExitedWithCode(1), "^\\*\\*\\* Unable to read /tb/kqk.nbw.emd - file broken\n$");
    Bytes cut(sample.begin(), sample.begin() + std::ptrdiff_t(headerSizeOf(sample)) - 1);
    EXPECT_EXIT(readHeader(cut), testing::ExitedWithCode(1), "^\\*\\*\\* Unable to read /tb/kqk.nbw.emd - out of memory\n$");
    HeaderPlan plan;
    plan.blockBits = 14;
    EXPECT_EXIT(readHeader(buildHeader(plan)), testing::ExitedWithCode(1), "^\\*\\*\\* /tb/kqk.nbw.emd: Unsupported block size 16384\n$");
}

TEST(TbCodeTables, InvalidCodesGetTheirErrors) {
    const auto build = [](std::vector<std::uint8_t> lengths) {
        lengths.resize(64, 0);
        std::int16_t table[TbSmallTableSize];
        return tbBuildDecodeTable(table, lengths.data(), 64, TbSmallTableBits);
    };
    EXPECT_EQ(build({}), TbCodeOk);
    EXPECT_EQ(build({0, 0, 1}), TbCodeOk);
    EXPECT_EQ(build({0, 0, 2}), TbLoneSymbolLength);
    EXPECT_EQ(build({1, 32}), TbLengthTooLong);
    EXPECT_EQ(build({1, 2}), TbCodeOddCount);
    EXPECT_EQ(build({1, 1, 1, 1}), TbCodeNotClosed);
    EXPECT_EQ(build({1, 2, 3, 3}), TbCodeOk);

    // Small form: width 1, 127 ones, then a zero whose run passes 128.
    tbcompress::BitWriter small;
    small.put(0, 1);
    small.put(1, TbSmallWidthBits);
    for (int i = 0; i < 127; ++i) small.put(1, 1);
    small.put(0, 1);
    small.put(1, TbZeroRunBits);
    small.flush();
    std::uint8_t lengths[TbSymbolCount];
    TbBitReader reader;
    tbStartReader(reader, small.bytes.data(), small.bytes.size());
    EXPECT_EQ(tbReadCodeLengths(reader, lengths, TbSmallFormCount), TbZeroRunTooLong);

    // Large form: a one-symbol repeat code writes 34 lengths a step; the
    // 31st step passes 1024.
    std::uint8_t smallLengths[TbSmallFormCount] = {};
    smallLengths[0] = smallLengths[TbRepeatSymbolBase + 1] = 1;
    smallLengths[TbSmallSymbolCount + TbPlainRepeatLimit] = 1;
    tbcompress::BitWriter large;
    large.put(0, 1);
    tbcompress::writeSmallForm(large, smallLengths);
    for (int i = 0; i < 31; ++i) large.put(1, 1);
    large.flush();
    tbStartReader(reader, large.bytes.data(), large.bytes.size());
    EXPECT_EQ(tbReadCodeLengths(reader, lengths, TbSymbolCount), TbRepeatTooLong);
}

// Codes of every length from 1 to 31 go through the tree behind the direct
// entries; each symbol reads back, and the lengths survive the large form.
TEST(TbCodeTables, CodesLongerThanTheDirectTableWalkTheTree) {
    std::vector<std::uint8_t> lengths(TbSymbolCount, 0);
    for (int length = 1; length <= TbMaxCodeLength; ++length) lengths[std::size_t(length * 32)] = std::uint8_t(length);
    lengths[5] = TbMaxCodeLength;
    const tbcompress::PrefixCode code = tbcompress::canonicalCode(lengths);
    tbcompress::BitWriter writer;
    tbcompress::writeLargeForm(writer, lengths);
    for (int length = 1; length <= TbMaxCodeLength; ++length) tbcompress::putSymbol(writer, code, length * 32);
    tbcompress::putSymbol(writer, code, 5);
    writer.flush();

    TbBitReader reader;
    tbStartReader(reader, writer.bytes.data(), writer.bytes.size());
    std::uint8_t read[TbSymbolCount];
    ASSERT_EQ(tbReadCodeLengths(reader, read, TbSymbolCount), TbCodeOk);
    EXPECT_EQ(std::vector<std::uint8_t>(read, read + TbSymbolCount), lengths);
    std::int16_t table[tbDecodeTableSize(TbMainTableBits, TbSymbolCount)];
    ASSERT_EQ(tbBuildDecodeTable(table, read, TbSymbolCount, TbMainTableBits), TbCodeOk);
    for (int length = 1; length <= TbMaxCodeLength; ++length)
        EXPECT_EQ(tbDecodeSymbol(reader, table, TbMainTableBits), length * 32) << length;
    EXPECT_EQ(tbDecodeSymbol(reader, table, TbMainTableBits), 5);
    EXPECT_FALSE(tbReaderOverran(reader));
}

TEST(TbDecodeBlock, MatchesRepeatForwardAndStopAtTheBlockEnd) {
    HandCode hand;
    ASSERT_NE(hand.decoder, nullptr);
    Bytes out;
    // Distance 1, length 300: code 22 with 8 extra bits of 30.
    EXPECT_EQ(hand.decode({{LetterA, 0, 0}, {Repeat270, 8, 30}}, 301, out), 1);
    EXPECT_EQ(text(out), std::string(301, 'A'));
    EXPECT_EQ(hand.decode({{LetterA, 0, 0}, {Repeat270, 8, 30}}, 100, out), 1);
    EXPECT_EQ(text(out), std::string(100, 'A'));
    // Length code 14 is 15 bytes with no extra bits; code 15 with a 1 is 17.
    EXPECT_EQ(hand.decode({{LetterA, 0, 0}, {Repeat15, 0, 0}, {LetterB, 0, 0}, {Repeat16, 1, 1}}, 34, out), 1);
    EXPECT_EQ(text(out), std::string(16, 'A') + std::string(18, 'B'));
    // The short copy writes four bytes and moves on by one; at the block
    // end its overrun stays in the slack.
    EXPECT_EQ(hand.decode({{LetterA, 0, 0}, {LetterB, 0, 0}, {Back2, 0, 0}, {LetterB, 0, 0}, {Repeat1, 0, 0}}, 5, out), 1);
    EXPECT_EQ(text(out), "ABABB");
    EXPECT_EQ(hand.decode({{LetterA, 0, 0}, {LetterB, 0, 0}, {Back2, 0, 0}}, 3, out), 1);
    EXPECT_EQ(text(out), "ABA");
}

TEST(TbDecodeBlock, CorruptStreamsFailTheBlock) {
    HandCode hand;
    Bytes out;
    EXPECT_EQ(hand.decode({{Repeat1, 0, 0}}, 4, out), 0);                   // before the start
    EXPECT_EQ(hand.decode({{LetterA, 0, 0}, {Back2, 0, 0}}, 4, out), 0);    // likewise
    EXPECT_EQ(hand.decode({{LetterA, 0, 0}, {NoDistance, 0, 0}}, 4, out), 0);
    EXPECT_EQ(hand.decode({{LetterA, 0, 0}, {LetterB, 0, 0}}, 40, out), 0);  // stream runs out
    // As many bytes as the block holds: stored, not decoded.
    const Bytes stored{'x', 'y', 'z'};
    out.assign(3 + TbBlockSlack, 0);
    EXPECT_EQ(tbDecodeBytes(*hand.decoder, stored.data(), 3, 3, out.data()), 1);
    EXPECT_EQ(text(Bytes(out.begin(), out.begin() + 3)), "xyz");
}

// Flipped bytes in the blocks: each block decodes or fails, and nothing is
// touched outside its bytes and its output (checked under AddressSanitizer).
TEST(TbDecodeBlock, DamagedFilesNeverReadOrWriteOutOfBounds) {
    const Bytes sample = compressedSample();
    const std::size_t headerSize = headerSizeOf(sample);
    std::mt19937 random(5);
    int failed = 0;
    for (int trial = 0; trial < 200; ++trial) {
        Bytes file = sample;
        for (int flip = 0; flip < 1 + trial % 4; ++flip)
            file[headerSize + random() % (file.size() - headerSize)] ^= std::uint8_t(1 + random() % 255);
        if (trial % 10 == 0) file.resize(file.size() - 1 - random() % 50);
        failed += decodeWholeFile(file).empty();
    }
    EXPECT_GT(failed, 0);

    std::FILE* stream = openBytes(sample);
    TbDecoder* decoder = tbReadHeader(stream, "sample");
    Bytes out(TbBlockSize + TbBlockSlack);
    EXPECT_EQ(tbDecodeBlock(*decoder, stream, decoder->blockCount, out.data()), 0);
    EXPECT_EQ(tbDecodeBlock(*decoder, stream, -1, out.data()), 0);
    tbFreeDecodeContext();
    EXPECT_EQ(tbDecodeBlock(*decoder, stream, 0, out.data()), 0);
    tbAllocateDecodeContext();
    EXPECT_EQ(tbDecodeBlock(*decoder, stream, 0, out.data()), 1);
    tbFreeDecoder(decoder);
    std::fclose(stream);
}
