// King safety, told for the king of the colour D under attack from the other
// side, and run for both kings. Squares are named as for a White king, which
// BoardView mirrors for the Black one.

#include "eval/king.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>

#include "board/tables.h"
#include "eval/boardview.h"

namespace eval {

using namespace board;

namespace {

// A pawn cover is worth more on the files where a castled king stands.
constexpr int shelterFileWeight[8] = {0, 37, 17, 8, 8, 17, 37, 0};
// Less attacking material than 13 pawns can't trouble a king.
constexpr int AttackMaterial = 6240;
constexpr int OpenMiddleFile = 25;
constexpr int OpenOuterFile = 60;
constexpr int NoAttackerPawn = 16;
constexpr int HeavyOnOpenFile = 4;
constexpr int MaxHeavyOnFile = 2;
constexpr int OwnPawnCover = 4;
constexpr int EnemyPawnStorm = 3;
constexpr int ShelterScale = 3;
// A pawn counts by how much closer than this it stands to the king.
constexpr int ShelterReach = 7;
constexpr int MatingPattern = 182;
constexpr int KingsideFirstFile = 5;   // file f
constexpr int QueensideLastFile = 2;   // file c

const position::SearchBoard& sb() { return position::searchBoard; }

template <Color A>
int heavyOnFileBy(int file, const position::NodeState& node) {
    using S = board::Side<A>;
    if (node.pawnFiles[S::them] & (1 << file)) return 0;
    int heavy = 0;
    for (const int slot : {SlotQueen, SlotRookA, SlotRookH}) {
        const int square = sb().pieceSquare[S::id(slot)];
        heavy += square != NoSquare && fileOf(square) == file;
    }
    return std::min(heavy, MaxHeavyOnFile);
}

// Squares of each colour's pawns, one bit per square, so that a shelter walk
// up a file is a mask and one bit scan.
struct PawnSquares {
    std::uint64_t bits[2];
};

PawnSquares pawnSquares() {
    PawnSquares pawns{};
    for (int slot = SlotPawnA; slot <= SlotPawnH; ++slot) {
        for (const Color c : {White, Black}) {
            const int id = idBase(c) + slot;
            const int square = sb().pieceSquare[id];
            if (square != NoSquare && sb().pieceType[id] == pawnTypeOf(c)) pawns.bits[c] |= squareBit(square);
        }
    }
    return pawns;
}

constexpr std::uint64_t FileAMask = 0x0101010101010101ull;

// The squares that a shelter walk from `square` visits on `file`: from one
// rank in front of the king up to the enemy's second rank.
template <Color D>
constexpr std::uint64_t walkSquares(int square, int file) {
    const int rank = rankOf(square);  // White's king stands below rank 7 here
    const std::uint64_t ranks = D == White ? (~std::uint64_t(0) << (8 * (rank + 1))) & ~(std::uint64_t(0xff) << 56)
                                           : ((std::uint64_t(1) << (8 * rank)) - 1) & ~std::uint64_t(0xff);
    return ranks & (FileAMask << file);
}

// The first square of the walk among `pawns`: the nearest to the king.
template <Color D>
int firstOnWalk(std::uint64_t pawns) {
    return D == White ? __builtin_ctzll(pawns) : 63 - __builtin_clzll(pawns);
}

// Own pawns close in front of the king help, enemy pawns close in front of
// it storm it. A king deep in enemy land has no shelter to speak of.
template <Color D>
int shelterOf(int square, const PawnSquares& pawns) {
    using S = board::Side<D>;
    if (S::relRank(square) >= rankOf(A7)) return 0;
    const int kingFile = fileOf(square);
    int sum = 0;
    for (int file = std::max(kingFile - 1, 0); file <= std::min(kingFile + 1, 7); ++file) {
        const std::uint64_t walk = walkSquares<D>(square, file);
        if (const std::uint64_t own = pawns.bits[D] & walk)
            sum += OwnPawnCover * (ShelterReach - kingDistance[square][firstOnWalk<D>(own)]);
        if (const std::uint64_t enemy = pawns.bits[S::them] & walk)
            sum -= EnemyPawnStorm * (ShelterReach - kingDistance[square][firstOnWalk<D>(enemy)]);
        sum += shelterFileWeight[file];
    }
    return ShelterScale * sum;
}

// Known mating nets against the king of D, told for a Black king attacked by
// White (the view of the attacker A). A wing whose right was lost without
// castling is skipped: the king didn't go there.
template <Color A>
int matingPatterns(int king, int centre, const position::NodeState& node) {
    using S = board::Side<A>;
    using V = BoardView<A>;
    using D = board::Side<S::them>;
    if (D::relRank(king) > rankOf(A2)) return 0;
    const bool queenOn = sb().pieceSquare[S::id(SlotQueen)] != NoSquare;
    int patterns = 0;
    if (node.castleState[D::shortIndex] != CastleLost && fileOf(centre) >= KingsideFirstFile) {
        if (queenOn && !V::enemySlotOn(pawnSlotOf(G7), G7) &&
            (V::ownPawn(F6) || V::own(Bishop, F6) || V::ownPawn(H6) || V::own(Bishop, H6)))
            ++patterns;
        if (V::ownSlotOn(SlotQueen, H6) && !V::enemyPawn(G7)) {
            const int kingSquare = S::rel(king);  // in the attacker's view, like the squares
            if (V::own(Knight, G5) &&
                (kingSquare == H8 || (kingSquare == G8 && V::enemySlotOn(SlotRookH, F8))))
                ++patterns;
            if (V::own(Knight, F5) && !V::enemyPawn(G6) && (kingSquare == G8 || kingSquare == H8)) ++patterns;
        }
    }
    if (node.castleState[D::longIndex] != CastleLost && fileOf(centre) <= QueensideLastFile) {
        if (queenOn && !V::enemySlotOn(pawnSlotOf(B7), B7) && (V::ownPawn(C6) || V::own(Bishop, C6)))
            ++patterns;
    }
    return MatingPattern * patterns;
}

// exposure - shelter of the king of D, or 0 if the attacker lacks the
// material to attack.
template <Color D>
int kingDanger(const position::NodeState& node, const PawnSquares& pawns) {
    using S = board::Side<D>;
    constexpr Color A = S::them;
    if (node.materialTotal[A] <= AttackMaterial) return 0;
    const int king = sb().pieceSquare[S::id(SlotKing)];
    // A king on the rim is judged from one file inward.
    const int centre = fileOf(king) == 0 ? king + 1 : fileOf(king) == 7 ? king - 1 : king;
    const int centreFile = fileOf(centre);

    int exposure = 0;
    for (int file = centreFile - 1; file <= centreFile + 1; ++file) {
        const int fileBit = 1 << file;
        if (node.pawnFiles[D] & fileBit) continue;
        exposure += file == centreFile ? OpenMiddleFile : OpenOuterFile;
        if (!(node.pawnFiles[A] & fileBit)) exposure += NoAttackerPawn;
        exposure += HeavyOnOpenFile * heavyOnFileBy<A>(file, node);
    }
    exposure += matingPatterns<A>(king, centre, node);

    // A king that may still castle is judged by the best place it can go.
    int shelter = shelterOf<D>(centre, pawns);
    if (node.castleState[S::shortIndex] == CastleRight) shelter = std::max(shelter, shelterOf<D>(S::rel(G1), pawns));
    if (node.castleState[S::longIndex] == CastleRight) shelter = std::max(shelter, shelterOf<D>(S::rel(C1), pawns));
    return exposure - shelter;
}

}  // namespace

// Each king's danger counts against its own side.
int evaluateKingSafety(const position::NodeState& node) {
    if (node.materialTotal[White] <= AttackMaterial && node.materialTotal[Black] <= AttackMaterial) return 0;
    const PawnSquares pawns = pawnSquares();
    return kingDanger<Black>(node, pawns) - kingDanger<White>(node, pawns);
}

int heavyOnFile(int file, Color attacker, const position::NodeState& node) {
    return attacker == White ? heavyOnFileBy<White>(file, node) : heavyOnFileBy<Black>(file, node);
}

int kingShelter(int square, Color defender) {
    const PawnSquares pawns = pawnSquares();
    return defender == White ? shelterOf<White>(square, pawns) : shelterOf<Black>(square, pawns);
}

}  // namespace eval
