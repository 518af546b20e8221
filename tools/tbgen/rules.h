#pragma once
// The rules of chess for a handful of men, as the table generator needs
// them: attacks, legality, the legal moves of a position and the moves that
// could have led to it. A position is a material (which men exist) and one
// square per man; there is no castling, and en passant exists only where the
// caller names the square passed over.

#include <cstdint>

#include "board/types.h"

namespace tbgen {

constexpr int MaxMen = 5;
constexpr int NoMan = -1;

// One man of a material: board::PieceType (pawns by colour) and colour.
struct Man {
    std::int8_t type;
    std::int8_t colour;
};

// The men of an ending, kings included, in a fixed order.
struct Material {
    int count = 0;
    Man men[MaxMen]{};
    int king[2] = {NoMan, NoMan};  // the man of each colour's king
};

// A move of one man. `captured` is the man taken (NoMan if none);
// `promotion` the new type or board::NoType.
struct GenMove {
    std::int8_t man;
    std::int8_t from;
    std::int8_t to;
    std::int8_t captured;
    std::int8_t promotion;
    bool enPassant;
};

constexpr std::uint64_t bit(int sq) { return std::uint64_t(1) << sq; }

// Fills the attack and ray tables; later calls do nothing.
void initRules();

// Whether `target` is attacked by a man of colour `by`, the man `ignored`
// (a captured one, or NoMan) left out.
bool isAttacked(const Material& material, const int* squares, std::uint64_t occupied, int target, int by,
                int ignored = NoMan);

// The squares a king, knight, bishop, rook or queen on `sq` reaches, up to
// and including the first man on each line. Moves are symmetric, so these
// are also the squares it can have come from.
std::uint64_t pieceReach(int type, int sq, std::uint64_t occupied);
// Whether one man on `from` attacks `target`, the board occupied as given.
bool manAttacks(Man man, int from, int target, std::uint64_t occupied);
// The squares between `target` and every slider of colour `by` on a line
// with it, whatever stands there: a man leaving one of them may open a line.
std::uint64_t sliderLines(const Material& material, const int* squares, int target, int by);

// Whether the squares form a position with `stm` to move: distinct squares,
// no pawn on its first or last rank, the side not to move not in check.
bool isLegal(const Material& material, const int* squares, int stm);
// Whether the side to move is in check.
bool inCheck(const Material& material, const int* squares, int stm);

// The legal moves of a legal position; `epSquare` is the square passed
// over by a double step just made, or -1. Returns the count.
constexpr int MaxGenMoves = 128;
int generateMoves(const Material& material, const int* squares, int stm, int epSquare, GenMove* out);

// Whether the move of `man` from `from` to `to` is a pawn's double step that
// ends beside an enemy pawn, which may then take it en passant.
bool isDoubleStepWithCapturer(const Material& material, const int* squares, int man, int from, int to);

// The pawns of the side not to move that may just have stepped twice past
// an enemy pawn: the position then exists once more, with an en passant
// right. Fills `men` and returns their count.
int doubleSteppers(const Material& material, const int* squares, int stm, int* men);
// The square a pawn standing on `sq` after a double step passed over.
inline int passedSquare(const Man& pawn, int sq) { return pawn.colour == board::White ? sq - 8 : sq + 8; }

// The legal positions with the other side to move from which a move that
// neither captures nor promotes leads to this one, the man moved back.
// A double step is undone only when it leaves no en passant right, since a
// double step next to an enemy pawn leads to a position of its own.
// Calls `visit(man, from)` for each; `from` is the man's earlier square.
template <class Visit>
void forEachUnmove(const Material& material, const int* squares, int stm, Visit&& visit);

template <class Visit>
void forEachUnmove(const Material& material, const int* squares, int stm, Visit&& visit) {
    const int mover = stm ^ 1;
    std::uint64_t occupied = 0;
    for (int m = 0; m < material.count; ++m) occupied |= bit(squares[m]);
    int earlier[MaxMen];
    for (int m = 0; m < material.count; ++m) earlier[m] = squares[m];

    // The side now to move must not have been in check before the move.
    // Unless it is in check now, or the man stood on a line from its king
    // to a slider, only the man itself can have given that check.
    const int king = squares[material.king[stm]];
    const bool checked = isAttacked(material, squares, occupied, king, mover);
    const std::uint64_t lines = sliderLines(material, squares, king, mover);
    auto tryFrom = [&](int man, int from) {
        const std::uint64_t before = (occupied & ~bit(squares[man])) | bit(from);
        bool attacked;
        if (!checked && !(lines & bit(squares[man]))) {
            attacked = manAttacks(material.men[man], from, king, before);
        } else {
            earlier[man] = from;
            attacked = isAttacked(material, earlier, before, king, mover);
            earlier[man] = squares[man];
        }
        if (!attacked) visit(man, from);
    };
    auto stepsBack = [&](int man, std::uint64_t steps) {
        for (std::uint64_t free = steps & ~occupied; free; free &= free - 1) tryFrom(man, __builtin_ctzll(free));
    };

    for (int man = 0; man < material.count; ++man) {
        const Man piece = material.men[man];
        if (piece.colour != mover) continue;
        const int to = squares[man];
        if (piece.type != board::WhitePawn && piece.type != board::BlackPawn) {
            stepsBack(man, pieceReach(piece.type, to, occupied));
            continue;
        }
        // A pawn: one step or two back toward its own side.
        const int back = piece.colour == board::White ? -8 : 8;
        const int relativeRank = piece.colour == board::White ? board::rankOf(to) : 7 - board::rankOf(to);
        if (relativeRank < 2 || (occupied & bit(to + back))) continue;
        tryFrom(man, to + back);
        if (relativeRank == 3 && !(occupied & bit(to + 2 * back)) &&
            !isDoubleStepWithCapturer(material, squares, man, to + 2 * back, to))
            tryFrom(man, to + 2 * back);
    }
}

}  // namespace tbgen
