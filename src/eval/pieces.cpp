// Piece placement terms. Each is written once for White on White's squares
// and run for Black through EvalSide's mirror and sign.

#include "eval/pieces.h"

#include <cstdlib>
#include <initializer_list>

#include "board/tables.h"
#include "board/types.h"
#include "eval/boardview.h"

namespace eval {

using namespace board;

namespace {

constexpr int UndevelopedPiece = 32;
constexpr int QueenKingsWeight = 12;
constexpr int QueenKingsNeutralSum = 7;
constexpr int RookHalfOpenFile = 30;
constexpr int RookOpenFile = 60;
constexpr int BishopPairBase = 71;
constexpr int XrayBonus = 45;
constexpr int HeavyOnSeventh = 32;
constexpr int HeavyOnEighth = 64;
constexpr int OutpostSixth = 96;
constexpr int OutpostFifth = 25;
constexpr int BishopKingDistance = 8;
constexpr int KnightKingDistance = 10;

// Outposts count only on the centre files.
constexpr int OutpostFirstFile = 2;  // file c
constexpr int OutpostLastFile = 5;   // file f

const position::SearchBoard& sb() { return position::searchBoard; }
int squareOf(int id) { return position::searchBoard.pieceSquare[id]; }

// A rook that hasn't moved with its king, bishop or knight still beside it
// blocks its own development: one penalty for each piece still at home.
template <Color C>
int development() {
    using V = BoardView<C>;
    int undeveloped = 0;
    const int king = V::ownSlotSquare(SlotKing);
    const int rookH = V::ownSlotSquare(SlotRookH);
    if (rookH == G1 || rookH == H1) {
        undeveloped += king == F1 || king == G1;
        undeveloped += V::ownSlotOn(SlotBishopF, F1);
        undeveloped += V::ownSlotOn(SlotKnightG, G1);
    }
    const int rookA = V::ownSlotSquare(SlotRookA);
    if (rookA == A1 || rookA == B1) {
        undeveloped += king == B1 || king == C1;
        undeveloped += V::ownSlotOn(SlotBishopC, C1);
        undeveloped += V::ownSlotOn(SlotKnightB, B1);
    }
    return -board::Side<C>::sign * UndevelopedPiece * undeveloped;
}

// The queen is rewarded for standing close to both kings at once.
template <Color C>
int queenBetweenKings() {
    using S = board::Side<C>;
    const int queen = squareOf(S::id(SlotQueen));
    if (queen == NoSquare) return 0;
    const int sum = kingDistance[queen][squareOf(WhiteKingId)] + kingDistance[queen][squareOf(BlackKingId)];
    return -S::sign * QueenKingsWeight * (sum - QueenKingsNeutralSum);
}

// Only the two original rooks; a pawn of its own on the file, even behind
// the rook, takes the bonus away.
template <Color C>
int rookFiles(const position::NodeState& node) {
    using S = board::Side<C>;
    const int own = node.pawnFiles[C];
    const int enemy = node.pawnFiles[S::them];
    int score = 0;
    for (const int slot : {SlotRookH, SlotRookA}) {
        const int square = squareOf(S::id(slot));
        if (square == NoSquare) continue;
        const int fileBit = 1 << fileOf(square);
        if (own & fileBit) continue;
        score += (enemy & fileBit) ? RookHalfOpenFile : RookOpenFile;
    }
    return S::sign * score;
}

template <Color C>
bool hasBishopPair() {
    using S = board::Side<C>;
    return squareOf(S::id(SlotBishopC)) != NoSquare && squareOf(S::id(SlotBishopF)) != NoSquare;
}

// Whether at most one man stands between `from` and the king on a line of
// the piece's kind. Pins and discovered checks count alike.
bool xrayReaches(int from, int king, int line) {
    if (from == NoSquare) return false;
    const int step = rayStep[from][king];
    if (lineKind[std::abs(step)] != line) return false;
    const std::int32_t* boardPiece = sb().boardPiece;
    int square = from + step;
    while (square != king && boardPiece[square] == NoPiece) square += step;
    if (square == king) return true;
    square += step;
    while (square != king && boardPiece[square] == NoPiece) square += step;
    return square == king;
}

template <Color C>
int xrays() {
    using S = board::Side<C>;
    const int king = squareOf(S::enemyId(SlotKing));
    const int hits = xrayReaches(squareOf(S::id(SlotBishopF)), king, LineDiagonal) +
                     xrayReaches(squareOf(S::id(SlotBishopC)), king, LineDiagonal) +
                     xrayReaches(squareOf(S::id(SlotRookH)), king, LineOrthogonal) +
                     xrayReaches(squareOf(S::id(SlotRookA)), king, LineOrthogonal);
    return S::sign * XrayBonus * hits;
}

template <Color C>
int heavyOnLastRanks() {
    using S = board::Side<C>;
    int score = 0;
    for (const int slot : {SlotRookA, SlotRookH, SlotQueen}) {
        const int square = squareOf(S::id(slot));
        if (square == NoSquare) continue;
        const int rank = S::relRank(square);
        if (rank == rankOf(A7)) score += HeavyOnSeventh;
        if (rank == rankOf(A8)) score += HeavyOnEighth;
    }
    return S::sign * score;
}

// A minor piece on a centre file, guarded by a pawn of its own and out of
// reach of enemy pawns; on the fifth rank an enemy pawn two ranks up could
// still come to drive it away. The pawn masks say both at one bit each.
template <Color C>
int outposts(const EvalTerms& terms) {
    using S = board::Side<C>;
    const std::uint64_t ownAttacks = S::isWhite ? terms.whitePawnAttacks : terms.blackPawnAttacks;
    const std::uint64_t enemyAttacks = S::isWhite ? terms.blackPawnAttacks : terms.whitePawnAttacks;
    int score = 0;
    for (const int slot : {SlotKnightB, SlotKnightG, SlotBishopC, SlotBishopF}) {
        const int square = squareOf(S::id(slot));
        if (square == NoSquare) continue;
        const int file = fileOf(square);
        if (file < OutpostFirstFile || file > OutpostLastFile) continue;
        if (!(ownAttacks & squareBit(square)) || (enemyAttacks & squareBit(square))) continue;
        const int rank = S::relRank(square);
        if (rank == rankOf(A6))
            score += OutpostSixth;
        else if (rank == rankOf(A5) && !(enemyAttacks & squareBit(square + S::up)))
            score += OutpostFifth;
    }
    return S::sign * score;
}

// Minor pieces far from their own king leave it without defenders.
template <Color C>
int minorKingDistance() {
    using S = board::Side<C>;
    const int king = squareOf(S::id(SlotKing));
    int distance = 0;
    for (const int slot : {SlotBishopC, SlotBishopF}) {
        const int square = squareOf(S::id(slot));
        if (square != NoSquare) distance += BishopKingDistance * kingDistance[square][king];
    }
    for (const int slot : {SlotKnightB, SlotKnightG}) {
        const int square = squareOf(S::id(slot));
        if (square != NoSquare) distance += KnightKingDistance * kingDistance[square][king];
    }
    return -S::sign * distance;
}

}  // namespace

// Pieces left at home beside an unmoved rook, and a queen between the kings.
void evaluateDevelopment(const position::NodeState& node, EvalTerms& terms) {
    terms.positional += development<White>() + development<Black>() + queenBetweenKings<White>() +
                        queenBetweenKings<Black>();
}

// Open files for the original rooks: 60, half-open 30.
void evaluateRookFiles(const position::NodeState& node, EvalTerms& terms) {
    terms.positional += rookFiles<White>(node) + rookFiles<Black>(node);
}

// Distances go to proximity, which takes no extra weight.
void evaluateMinorKingDistance(const position::NodeState& node, EvalTerms& terms) {
    terms.proximity += minorKingDistance<White>() + minorKingDistance<Black>();
}

// The pair gains as pawns leave the board: 110 with all sixteen, 142 with none.
void evaluateBishopPair(const position::NodeState& node, EvalTerms& terms) {
    const int pawns = node.pawnCount[0] + node.pawnCount[1];
    const int pair = 2 * (BishopPairBase - pawns);
    terms.positional += (hasBishopPair<White>() - hasBishopPair<Black>()) * pair;
}

// Original bishops and rooks lined up on the enemy king through at most one
// man; queens are left out.
void evaluateXrays(const position::NodeState& node, EvalTerms& terms) {
    terms.positional += xrays<White>() + xrays<Black>();
}

// Original rooks and queen on the enemy's last two ranks, once the board has
// thinned out.
void evaluateHeavyOnLastRanks(const position::NodeState& node, EvalTerms& terms) {
    terms.positional += heavyOnLastRanks<White>() + heavyOnLastRanks<Black>();
}

void evaluateOutposts(const position::NodeState& node, EvalTerms& terms) {
    terms.positional += outposts<White>(terms) + outposts<Black>(terms);
}

}  // namespace eval
