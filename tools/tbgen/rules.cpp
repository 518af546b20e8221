// Attack masks and rays for the few men of a table, and the legal moves of a
// position. Squares are bits of a 64-bit word here because with five men on
// the board a test of a slider's line is one mask and one comparison.

#include "tbgen/rules.h"

#include <initializer_list>

namespace tbgen {

namespace {

std::uint64_t kingSteps[64], knightSteps[64], pawnCaptures[2][64];
// Rays 0-3 run along ranks and files, 4-7 along diagonals.
std::int8_t rays[8][64][8];
std::uint8_t rayLength[8][64];
constexpr int OrthogonalRays = 4;

// Squares strictly between two squares on one line, and the kind of line
// (0 none, 1 rank or file, 2 diagonal).
std::uint64_t between[64][64];
std::uint8_t lineKindOf[64][64];
constexpr int LineStraight = 1, LineDiagonal = 2;
bool initialised = false;

constexpr int rayFile[8] = {0, 0, 1, -1, 1, 1, -1, -1};
constexpr int rayRank[8] = {1, -1, 0, 0, 1, -1, 1, -1};

bool onBoard(int file, int rank) { return file >= 0 && file < 8 && rank >= 0 && rank < 8; }

std::uint64_t stepMask(int sq, const int (*steps)[2], int count) {
    std::uint64_t mask = 0;
    for (int i = 0; i < count; ++i) {
        const int file = board::fileOf(sq) + steps[i][0], rank = board::rankOf(sq) + steps[i][1];
        if (onBoard(file, rank)) mask |= bit(board::makeSquare(file, rank));
    }
    return mask;
}

std::uint64_t occupancy(const Material& material, const int* squares) {
    std::uint64_t occupied = 0;
    for (int m = 0; m < material.count; ++m) occupied |= bit(squares[m]);
    return occupied;
}

int manOn(const Material& material, const int* squares, int sq) {
    for (int m = 0; m < material.count; ++m)
        if (squares[m] == sq) return m;
    return NoMan;
}

}  // namespace

bool manAttacks(Man man, int from, int target, std::uint64_t occupied) {
    switch (man.type) {
        case board::King: return kingSteps[from] & bit(target);
        case board::Knight: return knightSteps[from] & bit(target);
        case board::WhitePawn:
        case board::BlackPawn: return pawnCaptures[man.colour][from] & bit(target);
        default: {
            const int kind = lineKindOf[from][target];
            if (kind == 0 || (between[from][target] & occupied)) return false;
            return man.type == board::Queen || (man.type == board::Rook) == (kind == LineStraight);
        }
    }
}

std::uint64_t pieceReach(int type, int sq, std::uint64_t occupied) {
    if (type == board::King) return kingSteps[sq];
    if (type == board::Knight) return knightSteps[sq];
    const int first = type == board::Bishop ? OrthogonalRays : 0;
    const int last = type == board::Rook ? OrthogonalRays : 8;
    std::uint64_t reach = 0;
    for (int ray = first; ray < last; ++ray)
        for (int i = 0; i < rayLength[ray][sq]; ++i) {
            const int to = rays[ray][sq][i];
            reach |= bit(to);
            if (occupied & bit(to)) break;
        }
    return reach;
}

std::uint64_t sliderLines(const Material& material, const int* squares, int target, int by) {
    std::uint64_t lines = 0;
    for (int m = 0; m < material.count; ++m) {
        const Man man = material.men[m];
        if (man.colour != by || man.type < board::Queen || man.type > board::Bishop) continue;
        const int kind = lineKindOf[target][squares[m]];
        if (kind != 0 && (man.type == board::Queen || (man.type == board::Rook) == (kind == LineStraight)))
            lines |= between[target][squares[m]];
    }
    return lines;
}

void initRules() {
    if (initialised) return;
    constexpr int kingDeltas[8][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {1, -1}, {-1, 1}, {-1, -1}};
    constexpr int knightDeltas[8][2] = {{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};
    constexpr int whiteCaptures[2][2] = {{-1, 1}, {1, 1}};
    constexpr int blackCaptures[2][2] = {{-1, -1}, {1, -1}};
    for (int sq = 0; sq < 64; ++sq) {
        kingSteps[sq] = stepMask(sq, kingDeltas, 8);
        knightSteps[sq] = stepMask(sq, knightDeltas, 8);
        pawnCaptures[board::White][sq] = stepMask(sq, whiteCaptures, 2);
        pawnCaptures[board::Black][sq] = stepMask(sq, blackCaptures, 2);
        for (int ray = 0; ray < 8; ++ray) {
            std::uint64_t passed = 0;
            int length = 0;
            for (int file = board::fileOf(sq) + rayFile[ray], rank = board::rankOf(sq) + rayRank[ray];
                 onBoard(file, rank); file += rayFile[ray], rank += rayRank[ray]) {
                const int to = board::makeSquare(file, rank);
                rays[ray][sq][length++] = std::int8_t(to);
                between[sq][to] = passed;
                lineKindOf[sq][to] = ray < OrthogonalRays ? LineStraight : LineDiagonal;
                passed |= bit(to);
            }
            rayLength[ray][sq] = std::uint8_t(length);
        }
    }
    initialised = true;
}

bool isAttacked(const Material& material, const int* squares, std::uint64_t occupied, int target, int by,
                int ignored) {
    for (int m = 0; m < material.count; ++m)
        if (m != ignored && material.men[m].colour == by && manAttacks(material.men[m], squares[m], target, occupied))
            return true;
    return false;
}

bool isLegal(const Material& material, const int* squares, int stm) {
    std::uint64_t occupied = 0;
    for (int m = 0; m < material.count; ++m) {
        const int sq = squares[m];
        if (occupied & bit(sq)) return false;
        occupied |= bit(sq);
        const int type = material.men[m].type;
        if ((type == board::WhitePawn || type == board::BlackPawn) && (sq < board::A2 || sq > board::H7))
            return false;
    }
    return !isAttacked(material, squares, occupied, squares[material.king[stm ^ 1]], stm);
}

bool inCheck(const Material& material, const int* squares, int stm) {
    return isAttacked(material, squares, occupancy(material, squares), squares[material.king[stm]], stm ^ 1);
}

bool isDoubleStepWithCapturer(const Material& material, const int* squares, int man, int from, int to) {
    const int colour = material.men[man].colour;
    const int ownPawn = colour == board::White ? board::WhitePawn : board::BlackPawn;
    if (material.men[man].type != ownPawn || to - from != (colour == board::White ? 16 : -16)) return false;
    const int enemyPawn = colour == board::White ? board::BlackPawn : board::WhitePawn;
    for (int m = 0; m < material.count; ++m)
        if (material.men[m].type == enemyPawn && board::rankOf(squares[m]) == board::rankOf(to) &&
            (board::fileOf(squares[m]) - board::fileOf(to) == 1 || board::fileOf(to) - board::fileOf(squares[m]) == 1))
            return true;
    return false;
}

int doubleSteppers(const Material& material, const int* squares, int stm, int* men) {
    const std::uint64_t occupied = occupancy(material, squares);
    const int pawnType = stm == board::White ? board::BlackPawn : board::WhitePawn;
    int count = 0;
    for (int man = 0; man < material.count; ++man) {
        if (material.men[man].type != pawnType) continue;
        const int to = squares[man], passed = passedSquare(material.men[man], to), from = 2 * passed - to;
        if (board::rankOf(to) == (stm == board::White ? 4 : 3) && !(occupied & (bit(passed) | bit(from))) &&
            isDoubleStepWithCapturer(material, squares, man, from, to))
            men[count++] = man;
    }
    return count;
}

int generateMoves(const Material& material, const int* squares, int stm, int epSquare, GenMove* out) {
    const std::uint64_t occupied = occupancy(material, squares);
    std::uint64_t own = 0;
    for (int m = 0; m < material.count; ++m)
        if (material.men[m].colour == stm) own |= bit(squares[m]);
    const std::uint64_t enemyKing = bit(squares[material.king[stm ^ 1]]);
    const int ownKing = material.king[stm];
    // Out of check, a man off every line from its king to an enemy slider
    // can't expose the king: its moves need no test.
    const bool checked = isAttacked(material, squares, occupied, squares[ownKing], stm ^ 1);
    const std::uint64_t pinLines = sliderLines(material, squares, squares[ownKing], stm ^ 1);
    int count = 0;
    int after[MaxMen];
    for (int m = 0; m < material.count; ++m) after[m] = squares[m];

    // Kept only if the mover's king is safe once the move is made.
    auto add = [&](int man, int to, int captured, int promotion, bool enPassant) {
        const int from = squares[man];
        after[man] = to;
        const std::uint64_t taken = captured == NoMan ? 0 : bit(squares[captured]);
        const std::uint64_t occupiedAfter = (occupied & ~bit(from) & ~taken) | bit(to);
        const bool safe = (man != ownKing && !checked && !enPassant && !(pinLines & bit(from))) ||
                          !isAttacked(material, after, occupiedAfter, after[ownKing], stm ^ 1, captured);
        after[man] = from;
        if (safe)
            out[count++] = GenMove{std::int8_t(man), std::int8_t(from), std::int8_t(to), std::int8_t(captured),
                                   std::int8_t(promotion), enPassant};
    };
    auto addPawnMove = [&](int man, int to, int captured) {
        if (to < board::A2 || to > board::H7)
            for (int type : {board::Queen, board::Rook, board::Bishop, board::Knight}) add(man, to, captured, type, false);
        else
            add(man, to, captured, board::NoType, false);
    };
    auto addTargets = [&](int man, std::uint64_t targets) {
        for (targets &= ~own & ~enemyKing; targets; targets &= targets - 1) {
            const int to = __builtin_ctzll(targets);
            add(man, to, (occupied & bit(to)) ? manOn(material, squares, to) : NoMan, board::NoType, false);
        }
    };

    for (int man = 0; man < material.count; ++man) {
        const Man piece = material.men[man];
        if (piece.colour != stm) continue;
        const int from = squares[man];
        if (piece.type != board::WhitePawn && piece.type != board::BlackPawn) {
            addTargets(man, pieceReach(piece.type, from, occupied));
            continue;
        }
        const int up = piece.colour == board::White ? 8 : -8;
        const int relativeRank = piece.colour == board::White ? board::rankOf(from) : 7 - board::rankOf(from);
        if (!(occupied & bit(from + up))) {
            addPawnMove(man, from + up, NoMan);
            if (relativeRank == 1 && !(occupied & bit(from + 2 * up))) add(man, from + 2 * up, NoMan, board::NoType, false);
        }
        for (std::uint64_t hits = pawnCaptures[stm][from] & occupied & ~own & ~enemyKing; hits; hits &= hits - 1) {
            const int to = __builtin_ctzll(hits);
            addPawnMove(man, to, manOn(material, squares, to));
        }
        const int passer = epSquare >= 0 ? manOn(material, squares, epSquare - up) : NoMan;
        if (passer != NoMan && (pawnCaptures[stm][from] & bit(epSquare))) add(man, epSquare, passer, board::NoType, true);
    }
    return count;
}

}  // namespace tbgen
