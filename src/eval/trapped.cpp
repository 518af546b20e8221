// Trapped-piece patterns, told from White's side on White's squares and run
// for Black through the mirror. Each pattern tests its rare first condition
// first, so a normal position pays one load and one comparison for it.

#include "eval/trapped.h"

#include "board/types.h"
#include "eval/boardview.h"

namespace eval {

using namespace board;

namespace {

constexpr int TrappedBishop = 475;
constexpr int TrappedPiece = 120;

// Only the original bishops count here; the case is the bishop's square.
template <Color C>
int trappedBishops() {
    using V = BoardView<C>;
    int trapped = 0;
    switch (V::ownSlotSquare(SlotBishopF)) {
    case H7:  // taken a pawn on h7 and shut in by g6
        trapped += V::enemyPawn(G6) &&
                   (V::enemySlotOn(pawnSlotOf(F7), F7) || V::enemy(Bishop, F7) || V::enemy(King, F7) ||
                    V::enemy(Knight, E7));
        break;
    case B3:
        trapped += V::ownPawn(A2) && V::ownPawn(C2) && V::enemyPawn(B5) && V::enemyPawn(C4);
        break;
    case H3:
        trapped += V::ownPawn(G2) && V::enemyPawn(G4) && (V::enemyPawn(F5) || V::enemyPawn(H5));
        break;
    default:
        break;
    }
    switch (V::ownSlotSquare(SlotBishopC)) {
    case A7:
        trapped += V::enemyPawn(B6) &&
                   (V::enemySlotOn(pawnSlotOf(C7), C7) || V::enemy(Bishop, C7) || V::enemy(King, C7) ||
                    V::enemy(Knight, D7));
        break;
    case G3:
        trapped += V::ownPawn(F2) && V::ownPawn(H2) && V::enemyPawn(F4) && V::enemyPawn(G5);
        break;
    case H4:
        trapped += V::ownPawn(G3) && V::enemyPawn(G5) && (V::enemyPawn(F6) || V::enemyPawn(H6));
        break;
    default:
        break;
    }
    return -board::Side<C>::sign * TrappedBishop * trapped;
}

// Any knight of the colour, promoted ones too: these read type and colour on
// the square. The last two rows are the enemy's rook shut in by our knight.
template <Color C>
int trappedKnightsAndRooks() {
    using V = BoardView<C>;
    int caught = 0;
    if (V::own(Knight, H7) && V::enemyPawn(G7) && (V::enemyPawn(F6) || V::enemyPawn(H6))) ++caught;
    if (V::own(Knight, A7) && V::enemyPawn(B7) && (V::enemyPawn(C6) || V::enemyPawn(A6))) ++caught;
    if (V::own(Knight, A4) && V::ownPawn(C3) && V::ownPawn(B2) && (V::enemyPawn(B6) || V::enemyPawn(D6)) &&
        (V::enemyPawn(A7) || V::enemyPawn(C7)))
        ++caught;
    if (V::own(Knight, G7) && V::enemySlotOn(pawnSlotOf(F7), F7) && V::enemyPawn(G6)) ++caught;
    if (V::own(Knight, B7) && V::enemySlotOn(pawnSlotOf(C7), C7) && V::enemyPawn(B6)) ++caught;
    if (V::own(Knight, F7) && V::enemyPawn(G7) && V::enemyPawn(C7) && V::enemyPawn(F6)) ++caught;
    if (V::own(Knight, C7) && V::enemyPawn(B7) && V::enemyPawn(F7) && V::enemyPawn(C6)) ++caught;
    if (V::own(Knight, H6) && V::enemyPawn(G6) && V::enemyPawn(H5)) ++caught;
    if (V::own(Knight, A6) && V::enemyPawn(B6) && V::enemyPawn(A5)) ++caught;
    if (V::own(Knight, A8) && V::enemyPawn(A7)) ++caught;
    if (V::own(Knight, H8) && V::enemyPawn(H7)) ++caught;

    int catches = 0;
    if (V::enemy(Rook, A7) && V::own(Knight, B6) && V::enemyPawn(A6) && V::enemyPawn(B7)) ++catches;
    if (V::enemy(Rook, H7) && V::own(Knight, G6) && V::enemyPawn(H6) && V::enemyPawn(G7)) ++catches;
    return board::Side<C>::sign * TrappedPiece * (catches - caught);
}

}  // namespace

// Each pattern that holds costs the trapped piece's owner its score.
void evaluateTrappedPieces(const position::NodeState& node, EvalTerms& terms) {
    terms.positional += trappedBishops<White>() + trappedBishops<Black>() + trappedKnightsAndRooks<White>() +
                        trappedKnightsAndRooks<Black>();
}

}  // namespace eval
