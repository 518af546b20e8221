// Coordinate move text in and out, as interfaces and users type it.
#include <gtest/gtest.h>

#include <string>

#include "board/movetext.h"

using namespace board;

namespace {

Move parse(const char* text, int side = White) {
    std::string buffer(text);
    return parseCoordinateMove(buffer.data(), side);
}

std::string format(Move m) {
    char text[8];
    formatCoordinateMove(m, text);
    return text;
}

}  // namespace

TEST(CoordinateMove, PlainPromotionEnPassantAndCastlingTexts) {
    EXPECT_EQ(parse("e2e4"), 1804);
    EXPECT_EQ(parse("E2E4 and more text"), 1804);
    const Move queen = makeMove(E7, E8, SpecialPromoteQueen);
    for (const char* t : {"e7e8q", "E7E8Q", "e7e8=q", "e7e8d"}) EXPECT_EQ(parse(t), queen) << t;
    EXPECT_EQ(parse("e7e8t"), makeMove(E7, E8, SpecialPromoteRook));
    EXPECT_EQ(parse("e7e8f"), makeMove(E7, E8, SpecialPromoteBishop));
    EXPECT_EQ(parse("e7e8c"), makeMove(E7, E8, SpecialPromoteKnight));
    EXPECT_EQ(parse("e7e8k"), makeMove(E7, E8));
    EXPECT_EQ(parse("e7e8 q"), makeMove(E7, E8));
    EXPECT_EQ(parse("e5d6ep"), makeMove(E5, D6, SpecialEnPassant));
    EXPECT_EQ(parse("O-O", White), WhiteShortCastle);
    EXPECT_EQ(parse("0-0", Black), BlackShortCastle);
    EXPECT_EQ(parse("o-o-o", White), WhiteLongCastle);
    EXPECT_EQ(parse("O-O+", White), WhiteShortCastle);
}

TEST(CoordinateMove, RejectsMalformedText) {
    for (const char* t : {"i2e4", "e9e4", "e2e", "", "e2", "e0e4", "22e4", "e2-e4", "O-X", "O"})
        EXPECT_EQ(parse(t), NoMove) << t;
}

TEST(CoordinateMove, FormatRoundTrips) {
    EXPECT_EQ(format(makeMove(E7, E8, SpecialPromoteKnight)), "e7e8N");
    EXPECT_EQ(format(BlackLongCastle), "e8c8");
    EXPECT_EQ(format(makeMove(E5, D6, SpecialEnPassant) | CaptureMark), "e5d6");
    for (int from = 0; from < 64; ++from)
        for (int to = 0; to < 64; ++to) EXPECT_EQ(parse(format(makeMove(from, to)).c_str()), makeMove(from, to));
    for (int special = SpecialPromoteQueen; special <= SpecialPromoteKnight; ++special)
        EXPECT_EQ(parse(format(makeMove(B2, A1, special)).c_str()), makeMove(B2, A1, special));
}
