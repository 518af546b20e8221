// Pawn structure terms and their cache. The structure is read off the 16
// pawn slots into small per-file arrays; every test after that compares small
// integers and reads no board square.

#include "eval/pawns.h"

#include <algorithm>
#include <cstdlib>

#include "eval/boardview.h"
#include "eval/pawnhash.h"

namespace eval {

using board::Color;

namespace {

constexpr int passedRankBonus[8] = {0, 27, 39, 77, 107, 204, 408, 0};
constexpr int connectedRankBonus[8] = {0, 21, 24, 36, 87, 144, 258, 0};
// A passer on a rook's file is worth the most.
constexpr int passedFilePenalty[8] = {0, 27, 54, 80, 80, 54, 27, 0};

constexpr int BackwardPenalty = 96;
constexpr int DoubledPenalty = 68;  // each pawn beyond the first on a file
constexpr int IsolatedPenalty = 53;

// An uncatchable passer against a bare king: four fifths of a queen less a
// pawn, less a little for each step still to go.
constexpr int UncatchableBase = 5136;
constexpr int UncatchableStepCost = 42;

// Above every real measure (at most 6 ranks to go times 8, plus 3).
constexpr int NoPasserMeasure = 56;
constexpr int LastRank = 7;

int passedBonus(int r) { return passedRankBonus[r] * 13 / 10; }
int connectedPasserBonus(int r) { return connectedRankBonus[r] * 11 / 5; }

// One side's pawns by file, in that side's own view (rank 0 is its back
// rank): front[f] is the relative rank of the most advanced pawn, rear[f]
// seven minus the relative rank of the rearmost one. 0 means no pawn, which
// can't be confused with a real value since pawns stand on ranks 1 to 6.
struct FileArrays {
    int front[8];
    int rear[8];
    int count;
};

struct Structure {
    FileArrays side[2];
    std::uint64_t attacks[2];
};

// One pass over the side's pawn slots. A promoted piece has left the pawn
// type and drops out. A pawn on its first or last rank can only come from a
// set-up; it is skipped so that every square derived from a pawn (stop
// square, attacks) stays on the board.
template<Color C>
void scanPawns(Structure& s) {
    using S = board::Side<C>;
    const position::SearchBoard& sb = position::searchBoard;
    FileArrays& files = s.side[C];
    for (int id = S::id(board::SlotPawnA); id <= S::id(board::SlotPawnH); ++id) {
        const int sq = sb.pieceSquare[id];
        if (sq == board::NoSquare || sb.pieceType[id] != S::pawnType) continue;
        const int r = S::relRank(sq);
        if (r < 1 || r >= LastRank) continue;
        const int f = board::fileOf(sq);
        files.front[f] = std::max(files.front[f], r);
        files.rear[f] = std::max(files.rear[f], LastRank - r);
        if (f > 0) s.attacks[C] |= squareBit(sq + S::up - 1);
        if (f < 7) s.attacks[C] |= squareBit(sq + S::up + 1);
        ++files.count;
    }
}

// Doubled, isolated and backward pawns of C, as a positive penalty. An
// isolated file is never also tested for a backward pawn. The stop-square
// test compares the arrays as they stand, so an empty enemy file takes part
// with its 0.
template<Color C>
int structurePenalty(const Structure& s) {
    const FileArrays& own = s.side[C];
    const FileArrays& their = s.side[board::Side<C>::them];
    int doubled = own.count;
    int isolated = 0;
    int backward = 0;
    for (int f = 0; f < 8; ++f) {
        if (own.front[f] == 0) continue;
        --doubled;
        const bool left = f > 0;
        const bool right = f < 7;
        if (!(left && own.front[f - 1] != 0) && !(right && own.front[f + 1] != 0)) {
            // More than one pawn when the rearmost isn't the most advanced.
            isolated += (own.rear[f] ^ LastRank) != own.front[f] ? 2 : 1;
            continue;
        }
        const int x = own.rear[f];
        const bool behindNeighbours = (!left || x > own.rear[f - 1]) && (!right || x > own.rear[f + 1]);
        const bool stopSquareHeld = x == their.front[f] + 1 || (left && x == their.front[f - 1] + 2) ||
                                    (right && x == their.front[f + 1] + 2);
        if (behindNeighbours && stopSquareHeld) ++backward;
    }
    return BackwardPenalty * backward + DoubledPenalty * doubled + IsolatedPenalty * isolated;
}

struct PasserResult {
    int score;  // passed and connected bonuses, uncatchable bonus
    int best;   // square of the best passer, 0 for none
};

// Passed and connected pawns of C, looking at the most advanced pawn of each
// file and at the file to its left. The most dangerous passer is the one with
// the fewest ranks to go, then the one nearer the edge; a tie keeps the file
// nearer a. A passer the enemy king can't reach earns the uncatchable bonus
// if the enemy has nothing but pawns.
template<Color C>
PasserResult passedPawns(const Structure& s, const position::NodeState& node, int blackToMove) {
    using S = board::Side<C>;
    constexpr Color Them = S::them;
    const FileArrays& own = s.side[C];
    const FileArrays& their = s.side[Them];
    const int enemyKing = position::searchBoard.pieceSquare[S::enemyId(board::SlotKing)];
    const int kingRank = S::relRank(enemyKing);
    const int kingFile = board::fileOf(enemyKing);
    // The defending king moves first when its side is to move: one step more.
    const int defenderFirst = (blackToMove != 0) == (Them == board::Black) ? 1 : 0;

    PasserResult result{0, 0};
    int bestMeasure = NoPasserMeasure;
    int uncatchableRank = 0;
    for (int f = 0; f < 8; ++f) {
        const int r = own.front[f];
        const int leftFront = f > 0 ? own.front[f - 1] : 0;
        const bool connected = r != 0 && leftFront != 0 && std::abs(leftFront - r) <= 1;
        const bool passed = r != 0 && their.rear[f] < r && (f == 0 || their.rear[f - 1] <= r) &&
                            (f == 7 || their.rear[f + 1] <= r);
        if (!passed) {
            if (connected) result.score += connectedRankBonus[std::max(leftFront, r)];
            continue;
        }
        result.score += passedBonus(r) - passedFilePenalty[f];
        if (connected) result.score += connectedPasserBonus(std::max(leftFront, r));

        const int steps = LastRank - r + defenderFirst;
        if (kingRank < r - defenderFirst || std::abs(kingFile - f) > steps)
            uncatchableRank = std::max(uncatchableRank, r);

        const int measure = 8 * (LastRank - r) + std::min(f, 7 - f);
        if (measure < bestMeasure) {
            bestMeasure = measure;
            result.best = S::rel(board::makeSquare(f, r));
        }
    }
    if (uncatchableRank != 0 && node.pieceCount[Them] == 0)
        result.score += (UncatchableBase - UncatchableStepCost * (LastRank - uncatchableRank) -
                         passedBonus(uncatchableRank)) * 4 / 5;
    return result;
}

// The packed fields of an entry.
int packedField(std::uint32_t packed, int shift, std::uint32_t mask) { return int((packed >> shift) & mask); }

// Whether an entry with this pawn key still holds for C's piece situation.
// The uncatchable bonus against C's pawns-only side depends on the square of
// C's king, so then that square must match too; with pieces on the board any
// count will do, since only "none" changes the result.
bool piecesMatch(const PawnHashEntry& e, const position::NodeState& node, Color c) {
    const int piecesShift = c == board::White ? PackedWhitePiecesShift : PackedBlackPiecesShift;
    const int kingShift = c == board::White ? PackedWhiteKingShift : PackedBlackKingShift;
    const int stored = packedField(e.packed, piecesShift, 15);
    if (node.pieceCount[c] > 0) return stored != 0;
    const int king = position::searchBoard.pieceSquare[board::idBase(c) + board::SlotKing];
    return stored == 0 && packedField(e.packed, kingShift, 63) == king;
}

std::uint32_t packEntry(const position::NodeState& node, const EvalTerms& terms) {
    const position::SearchBoard& sb = position::searchBoard;
    const auto field = [](int value, std::uint32_t mask, int shift) { return (std::uint32_t(value) & mask) << shift; };
    return field(sb.pieceSquare[board::WhiteKingId], 63, PackedWhiteKingShift) |
           field(sb.pieceSquare[board::BlackKingId], 63, PackedBlackKingShift) |
           field(terms.bestWhitePasser, 63, PackedWhitePasserShift) |
           field(terms.bestBlackPasser, 63, PackedBlackPasserShift) |
           field(node.pieceCount[board::White], 15, PackedWhitePiecesShift) |
           field(node.pieceCount[board::Black], 15, PackedBlackPiecesShift);
}

}  // namespace

int computePawns(const position::NodeState& node, int blackToMove, EvalTerms& terms) {
    Structure s{};
    scanPawns<board::White>(s);
    scanPawns<board::Black>(s);
    const PasserResult white = passedPawns<board::White>(s, node, blackToMove);
    const PasserResult black = passedPawns<board::Black>(s, node, blackToMove);
    terms.bestWhitePasser = white.best;
    terms.bestBlackPasser = black.best;
    terms.whitePawnAttacks = s.attacks[board::White];
    terms.blackPawnAttacks = s.attacks[board::Black];
    return white.score - black.score - structurePenalty<board::White>(s) + structurePenalty<board::Black>(s);
}

// Most calls end with the probe. The stored score is the raw structure
// score; what the ending terms do to a node's copy never comes back here.
int evaluatePawns(const position::NodeState& node, int blackToMove, EvalTerms& terms) {
    ++pawnHashProbes;
    const std::uint32_t keyHigh = node.pawnKey[1];
    const std::uint16_t keyMid = std::uint16_t(node.pawnKey[0] >> 16);
    PawnHashEntry* e = pawnHashSlot(node, blackToMove);
    if (e != nullptr && e->keyHigh == keyHigh && e->keyMid == keyMid && piecesMatch(*e, node, board::White) &&
        piecesMatch(*e, node, board::Black)) {
        terms.bestWhitePasser = packedField(e->packed, PackedWhitePasserShift, 63);
        terms.bestBlackPasser = packedField(e->packed, PackedBlackPasserShift, 63);
        terms.whitePawnAttacks = e->whiteAttacks;
        terms.blackPawnAttacks = e->blackAttacks;
        ++pawnHashHits;
        return e->score;
    }
    const int score = computePawns(node, blackToMove, terms);
    if (e != nullptr) {
        e->keyHigh = keyHigh;
        e->keyMid = keyMid;
        e->score = std::int16_t(score);
        e->packed = packEntry(node, terms);
        e->whiteAttacks = terms.whitePawnAttacks;
        e->blackAttacks = terms.blackPawnAttacks;
    }
    return score;
}

}  // namespace eval
