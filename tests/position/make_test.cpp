// Make and unmake over whole trees: the board comes back bit for bit, and
// every field that make keeps incrementally equals what the driver's fresh
// set-up computes for the same position.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "board/movetext.h"
#include "eval/setup.h"
#include "position/attacks.h"
#include "position/make.h"
#include "position/movegen.h"
#include "position/phase.h"
#include "support/roots.h"

namespace {

using namespace board;
using namespace position;
using board::Side;

struct TreeCheck {
    std::int32_t rootPstWhite[6][64];
    std::int32_t rootPstBlack[7][64];
    int failures = 0;
    std::string firstFailure;

    void fail(const std::string& what, Move m) {
        if (failures++ == 0) {
            char text[8];
            formatCoordinateMove(m, text);
            firstFailure = what + " after " + text;
        }
    }

    // The driver's path on the position now on searchBoard: a Position,
    // keys, setupEvaluation, buildNodeState, setPromotedMask; pstScore summed
    // with the root's tables, since the set-up blends its own.
    NodeState fresh(const NodeState& node) {
        Position p{};
        std::memcpy(p.pieceSquare, searchBoard.pieceSquare, sizeof p.pieceSquare);
        std::memcpy(p.boardPiece, searchBoard.boardPiece, sizeof p.boardPiece);
        std::memcpy(p.pieceType, searchBoard.pieceType, sizeof p.pieceType);
        for (int i = 0; i < 4; ++i) p.castleState[i] = node.castleState[i];
        computeKeys(p);
        eval::setupEvaluation(p);
        std::memcpy(pstWhite, rootPstWhite, sizeof rootPstWhite);
        std::memcpy(pstBlack, rootPstBlack, sizeof rootPstBlack);
        const SearchBoard kept = searchBoard;
        NodeState f;
        buildNodeState(f, p);
        setPromotedMask(f, p);
        if (std::memcmp(&kept, &searchBoard, sizeof kept) != 0) fail("board arrays differ from a fresh set-up", 0);
        searchBoard = kept;
        f.pstScore = 0;
        for (int id = 0; id < 32; ++id) {
            const int sq = p.pieceSquare[id];
            if (sq != NoSquare) f.pstScore += id < 16 ? pstWhite[p.pieceType[id]][sq] : -pstBlack[p.pieceType[id]][sq];
        }
        return f;
    }

    void compare(const NodeState& parent, const NodeState& node, Move m, int captured) {
        const NodeState f = fresh(node);
        if (std::memcmp(f.hashKey, node.hashKey, 8) != 0) fail("hashKey", m);
        if (std::memcmp(f.pawnKey, node.pawnKey, 8) != 0) fail("pawnKey", m);
        if (std::memcmp(f.pieceCount, node.pieceCount, 8) != 0) fail("pieceCount/pawnCount", m);
        if (std::memcmp(f.materialTotal, node.materialTotal, 4) != 0) fail("materialTotal", m);
        if (f.materialBalance != node.materialBalance) fail("materialBalance", m);
        if (f.pstScore != node.pstScore) fail("pstScore", m);
        if (std::memcmp(f.pawnFiles, node.pawnFiles, 2) != 0) fail("pawnFiles", m);
        if (f.promotedMask != node.promotedMask) fail("promotedMask", m);
        const bool rephased = captured != NoPiece || isPromotion(m);
        if (node.phaseClass != (rephased ? shortPhaseClass(f) : parent.phaseClass)) fail("phaseClass", m);
    }

    // The capture generator lists exactly the captures and queen promotions
    // of the full generator, without marks.
    template <Color C>
    void compareCaptures(const Move* all, const Move* captures) {
        using S = Side<C>;
        int expected = 0, found = 0;
        for (const Move* w = all; *w; ++w) {
            const int target = searchBoard.boardPiece[moveTo(*w)];
            const bool takes = (target != NoPiece && !S::owns(target)) || moveSpecial(*w) == SpecialEnPassant;
            if (isPromotion(*w) ? moveSpecial(*w) == SpecialPromoteQueen : takes) ++expected;
        }
        for (const Move* w = captures; *w; ++w) {
            ++found;
            bool listed = false;
            for (const Move* a = all; *a; ++a) listed |= ((*a ^ *w) & FromToSpecialMask) == 0;
            if (!listed || (*w & CaptureMark)) fail("capture generator word", *w);
        }
        if (found != expected) fail("capture generator count", 0);
    }

    template <Color C>
    void walk(const NodeState& parent, Move parentMove, int depth) {
        constexpr Color them = Side<C>::them;
        Move list[MoveListSize], captures[MoveListSize];
        generateAll<C>(list, moveFrom(parentMove), moveTo(parentMove), checkerOf<C>(), parent, MoveListSize);
        generateCaptures<C>(captures, moveFrom(parentMove), moveTo(parentMove), MoveListSize);
        compareCaptures<C>(list, captures);
        for (const Move* m = list; *m && failures == 0; ++m) {
            if (searchBoard.boardPiece[moveTo(*m)] == Side<them>::kingId) {
                fail("a king capture in a legal position", *m);
                break;
            }
            const SearchBoard before = searchBoard;
            NodeState node = parent;
            const int captured = makeMoveOf<C>(node, *m);
            if (!leavesKingAttacked<C>(*m)) {
                compare(parent, node, *m, captured);
                if (depth > 1) walk<them>(node, *m, depth - 1);
            }
            unmakeMoveOf<C>(*m, captured);
            if (std::memcmp(&before, &searchBoard, sizeof before) != 0) fail("searchBoard not restored", *m);
        }
    }

    void run(const char* fen, int depth) {
        const NodeState root = rootNode(fen);
        std::memcpy(rootPstWhite, pstWhite, sizeof rootPstWhite);
        std::memcpy(rootPstBlack, pstBlack, sizeof rootPstBlack);
        const NodeState f = fresh(root);
        if (std::memcmp(&f.hashKey, &root.hashKey, 8) != 0 || f.pstScore != root.pstScore) fail("root", 0);
        if (game.sideToMove == White) walk<White>(root, NoMove, depth);
        else walk<Black>(root, NoMove, depth);
        EXPECT_EQ(failures, 0) << fen << ": " << firstFailure;
    }
};

TEST(MakeUnmake, IncrementalFieldsMatchAFreshSetUpOverWholeTrees) {
    const struct {
        const char* fen;
        int depth;
    } cases[] = {
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 3},
        {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 3},
        {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 4},
        {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 3},
        {"r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ -", 3},
        {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -", 3},
        {"n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -", 4},
        {"1q2k3/8/8/8/8/8/8/QQ2K3 b - -", 3},  // a queen in a pawn slot
        {"r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", 3},
    };
    for (const auto& c : cases) {
        TreeCheck check;
        check.run(c.fen, c.depth);
    }
}

}  // namespace
