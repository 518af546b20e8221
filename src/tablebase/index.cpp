// The index rule. The tables it needs are built once; each of the 220
// tables then gets a plan, read off its ending's letters, that says which
// men form the group, which become digits and what range each digit has.
// The routine that follows a plan has no loop over squares and allocates
// nothing: it runs at every probe.

#include "tablebase/index.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "board/types.h"

namespace tablebase {

std::uint8_t squareIndex[TbClassCount][64][64];
std::uint8_t squareCount[TbClassCount][64];
std::int16_t kingPairPawn[64][64];
std::int16_t kingPairPlain[64][64];
TbBaseForm pawnForm;
TbBaseForm plainForm;

namespace {

using board::fileOf;
using board::rankOf;

// What a position outside the rule gets: above every table's size.
constexpr std::uint32_t NoIndex = 0xffffffffu;

// En passant: the capture digit's values, and the digit ranges behind the
// king pair in the region's numbering.
constexpr std::uint32_t CaptureDigits = 14;
constexpr std::uint32_t PieceCaptureRange = 58 * CaptureDigits;  // 812
constexpr std::uint32_t PawnCaptureRange = 44 * CaptureDigits;   // 616

// The first king of a plain pair, in square order: a1-d1-d4 and inside it.
constexpr int triangle[10] = {board::A1, board::B1, board::C1, board::D1, board::B2,
                              board::C2, board::D2, board::C3, board::D3, board::D4};

std::uint8_t pawnPairKings[TbPawnPairs][2];
std::uint8_t plainPairKings[TbPlainPairs][2];

// Open to a man of `cls` beside the king on `anchor`: pawns never stand on
// the edge ranks, and no man gives the waiting king a check that a legal
// position can't have (pawn, knight or touching piece).
bool allowed(int cls, int anchor, int square) {
    if (square == anchor) return false;
    const int df = std::abs(fileOf(square) - fileOf(anchor));
    const int dr = std::abs(rankOf(square) - rankOf(anchor));
    switch (cls) {
    case TbWaitingPawn:
        return rankOf(square) != 0 && rankOf(square) != 7;
    case TbMovingPawn:
        if (rankOf(square) == 0 || rankOf(square) == 7) return false;
        return !(anchor == square + 7 && fileOf(square) > 0) && !(anchor == square + 9 && fileOf(square) < 7);
    case TbKnightClass:
        return !((df == 1 && dr == 2) || (df == 2 && dr == 1));
    case TbBishopClass:
        return !(df == 1 && dr == 1);
    case TbRookClass:
        return df + dr != 1;
    default:
        return std::max(df, dr) != 1;
    }
}

bool kingsApart(int a, int b) {
    return std::max(std::abs(fileOf(a) - fileOf(b)), std::abs(rankOf(a) - rankOf(b))) > 1;
}

// Squares open to `cls` for this pair of kings: the mover's king takes one.
std::uint32_t openCount(int cls, int mover, int waiter) {
    return squareCount[cls][waiter] - (squareIndex[cls][waiter][mover] != TbNoSquare);
}

// The number of a man's square among those open to it.
std::uint32_t openIndex(int cls, int mover, int waiter, int square) {
    return squareIndex[cls][waiter][square] - (squareIndex[cls][waiter][mover] != TbNoSquare && mover < square);
}

void buildSquares() {
    for (int cls = 0; cls < TbClassCount; ++cls)
        for (int anchor = 0; anchor < 64; ++anchor) {
            int count = 0;
            for (int square = 0; square < 64; ++square)
                squareIndex[cls][anchor][square] = allowed(cls, anchor, square) ? std::uint8_t(count++) : TbNoSquare;
            squareCount[cls][anchor] = std::uint8_t(count);
        }
}

void buildKingPairs() {
    int number = 0;
    for (int m = 0; m < 64; ++m)
        for (int o = 0; o < 64; ++o) {
            kingPairPawn[m][o] = TbNoPair;
            if (fileOf(m) > 3 || !kingsApart(m, o)) continue;
            pawnPairKings[number][0] = std::uint8_t(m);
            pawnPairKings[number][1] = std::uint8_t(o);
            kingPairPawn[m][o] = std::int16_t(number++);
        }
    for (auto& row : kingPairPlain) std::fill(std::begin(row), std::end(row), TbNoPair);
    number = 0;
    for (int m : triangle)
        for (int o = 0; o < 64; ++o) {
            if (!kingsApart(m, o)) continue;
            if (fileOf(m) == rankOf(m) && fileOf(o) < rankOf(o)) continue;
            plainPairKings[number][0] = std::uint8_t(m);
            plainPairKings[number][1] = std::uint8_t(o);
            kingPairPlain[m][o] = std::int16_t(number++);
        }
}

// Running sums over the pairs in their numbering order: where a pair's
// positions start for one man, or for two (unordered if of one class).
void buildBases(TbBaseForm& form, const std::uint8_t (*pairs)[2], int pairCount) {
    std::memset(&form, 0, sizeof form);
    for (int pair = 0; pair < pairCount; ++pair) {
        const int m = pairs[pair][0], o = pairs[pair][1];
        for (int c1 = 0; c1 < TbClassCount; ++c1) {
            const std::uint32_t n1 = openCount(c1, m, o);
            form.singleBase[c1][pair] = form.singleTotal[c1];
            form.singleTotal[c1] += n1;
            for (int c2 = 0; c2 < TbClassCount; ++c2) {
                const std::uint32_t n2 = openCount(c2, m, o);
                form.pairBase[c1][c2][pair] = form.pairTotal[c1][c2];
                form.pairTotal[c1][c2] += c1 == c2 ? n1 * (n1 - 1) / 2 : n1 * n2;
            }
        }
    }
}

// ------------------------------------------------------------ plans

enum DigitKind : std::uint8_t { PieceDigit, PiecePairDigit, PawnDigit, PawnPairDigit };

enum EpKind : std::uint8_t {
    NoEp,
    EpPawnPawn,          // kpkp
    EpPiecePawnFirst,    // kXpkp, first side captures
    EpPiecePawnSecond,   // kXpkp, second side captures
    EpTwoPawnsFirst,     // kppkp, first side captures
    EpTwoPawnsSecond,    // kppkp, second side captures
};

// A man other than a king: which list and place hold its square.
struct Man {
    std::uint8_t list;
    std::uint8_t place;
    bool pawn;
    bool inGroup;
};

struct Digit {
    DigitKind kind;
    std::uint8_t man[2];  // into Plan::men
    std::uint32_t range;
};

struct Plan {
    bool pawnRow;
    std::uint8_t mover;  // 0 first side, 1 second side
    bool flip;           // the group's lookups see the board from the mover
    std::uint8_t manCount;
    Man men[3];          // the group first, then the digits' men
    std::uint8_t groupSize;
    std::uint8_t groupClass[2];
    std::uint8_t digitCount;
    Digit digits[3];
    EpKind ep;
    std::int8_t firstPawn[2], secondPawn, piece;  // the men an en passant index reads
    std::uint32_t ordinary;                       // positions before the en passant region
    std::uint32_t size;
};

Plan plans[TbRowCount][2];
bool built = false;

int letterClass(char letter) {
    switch (letter) {
    case 'n': return TbKnightClass;
    case 'b': return TbBishopClass;
    case 'r': return TbRookClass;
    case 'q': return TbQueenClass;
    default: return TbMovingPawn;
    }
}

int letterPlace(char letter) {
    switch (letter) {
    case 'q': return TbQueenPlace;
    case 'r': return TbRookPlace;
    case 'b': return TbBishopPlace;
    case 'n': return TbKnightPlace;
    default: return TbPawnPlace;
    }
}

// Reads the plan of one table off its name, such as "kqrkn".
Plan makePlan(const char* name, int side) {
    Plan plan{};
    struct Letter {
        char letter;
        Man man;
    } letters[3];
    int count = 0, placesUsed[2][TbListSize] = {};
    int list = -1;
    for (const char* c = name; *c != '\0'; ++c) {
        if (*c == 'k') {
            ++list;
            continue;
        }
        const int place = letterPlace(*c);
        const int at = place + placesUsed[list][place]++;
        letters[count++] = {*c, Man{std::uint8_t(list), std::uint8_t(at), *c == 'p', false}};
    }
    plan.mover = std::uint8_t(side);
    for (int k = 0; k < count; ++k) plan.pawnRow |= letters[k].man.pawn;

    // The group: the mover's men, else the waiter's pawns.
    bool moverHasMen = false;
    for (int k = 0; k < count; ++k) moverHasMen |= letters[k].man.list == side;
    for (int k = 0; k < count; ++k) {
        Man& man = letters[k].man;
        if (moverHasMen ? man.list == side : man.pawn) {
            man.inGroup = true;
            plan.groupClass[plan.groupSize++] = std::uint8_t(moverHasMen ? letterClass(letters[k].letter) : TbWaitingPawn);
            plan.men[plan.manCount++] = man;
        }
    }
    bool groupOfPawns = plan.groupSize > 0;
    int groupPawns = 0, outsidePawns = 0;
    for (int k = 0; k < plan.manCount; ++k) {
        groupOfPawns &= plan.men[k].pawn;
        groupPawns += plan.men[k].pawn;
    }
    for (int k = 0; k < count; ++k) outsidePawns += letters[k].man.pawn && !letters[k].man.inGroup;
    plan.flip = plan.pawnRow && side == 1 && groupOfPawns;

    // The digits: other pieces in name order, then pawns.
    const std::uint32_t blocked = 2 + plan.groupSize + outsidePawns;
    int pieceDigits = 0;
    for (int pass = 0; pass < 2; ++pass)
        for (int k = 0; k < count; ++k) {
            const Man man = letters[k].man;
            if (man.inGroup || man.pawn != (pass == 1)) continue;
            const std::uint8_t at = plan.manCount;
            plan.men[plan.manCount++] = man;
            Digit* last = plan.digitCount > 0 ? &plan.digits[plan.digitCount - 1] : nullptr;
            const bool sameAsLast = last != nullptr && k > 0 && letters[k - 1].letter == letters[k].letter &&
                                    letters[k - 1].man.list == man.list && !letters[k - 1].man.inGroup;
            if (sameAsLast) {
                // Two of one kind make one digit over their unordered squares.
                const std::uint32_t r = man.pawn ? 48 - groupPawns : 64 - blocked;
                *last = Digit{man.pawn ? PawnPairDigit : PiecePairDigit, {last->man[0], at}, r * (r - 1) / 2};
            } else if (man.pawn) {
                plan.digits[plan.digitCount++] = Digit{PawnDigit, {at, at}, std::uint32_t(48 - groupPawns)};
            } else {
                plan.digits[plan.digitCount++] = Digit{PieceDigit, {at, at}, 64 - blocked - pieceDigits++};
            }
        }

    const TbBaseForm& form = plan.pawnRow ? pawnForm : plainForm;
    std::uint32_t size = plan.groupSize == 0   ? (plan.pawnRow ? TbPawnPairs : TbPlainPairs)
                         : plan.groupSize == 1 ? form.singleTotal[plan.groupClass[0]]
                                               : form.pairTotal[plan.groupClass[0]][plan.groupClass[1]];
    for (int d = 0; d < plan.digitCount; ++d) size *= plan.digits[d].range;
    plan.ordinary = size;

    // En passant: rows with a pawn on each side.
    plan.firstPawn[0] = plan.firstPawn[1] = plan.secondPawn = plan.piece = -1;
    int firstPawns = 0;
    for (int k = 0; k < plan.manCount; ++k) {
        const Man& man = plan.men[k];
        if (man.pawn && man.list == 0) plan.firstPawn[firstPawns++] = std::int8_t(k);
        else if (man.pawn) plan.secondPawn = std::int8_t(k);
        else if (man.list == 0) plan.piece = std::int8_t(k);
    }
    plan.ep = NoEp;
    std::uint32_t epSize = 0;
    if (firstPawns > 0 && plan.secondPawn >= 0) {
        if (firstPawns == 2) {
            plan.ep = side == 0 ? EpTwoPawnsFirst : EpTwoPawnsSecond;
            epSize = TbPawnPairs * PawnCaptureRange;
        } else if (plan.piece >= 0) {
            plan.ep = side == 0 ? EpPiecePawnFirst : EpPiecePawnSecond;
            epSize = side == 0 ? pawnForm.singleTotal[letterClass(letters[0].letter)] * CaptureDigits
                               : TbPawnPairs * PieceCaptureRange;
        } else {
            plan.ep = EpPawnPawn;
            epSize = TbPawnPairs * CaptureDigits;
        }
    }
    plan.size = size + epSize;
    return plan;
}

// ------------------------------------------------------------ the routine

int transposed(int square) { return (square >> 3) | ((square & 7) << 3); }

int countBelow(const int* squares, int count, int square) {
    int below = 0;
    for (int k = 0; k < count; ++k) below += squares[k] < square;
    return below;
}

// The capture digit: which pawn takes, and towards which side.
std::uint32_t captureDigit(int capturer, int target, bool upwards) {
    const bool left = upwards ? target == capturer + 7 : target == capturer - 9;
    return left && fileOf(capturer) != 0 ? fileOf(capturer) - 1 : fileOf(capturer) + 7;
}

bool capturesUp(int pawn, int target) {
    return (target == pawn + 7 && fileOf(pawn) > 0) || (target == pawn + 9 && fileOf(pawn) < 7);
}

// The region after a double step: the stepped pawn is fixed by `e`, so
// the capturing pawn and the other men are numbered.
std::uint32_t enPassantIndex(const Plan& plan, int m, int o, const int* s, int e) {
    const std::uint32_t pair = std::uint32_t(kingPairPawn[m][o]);
    if (pair >= TbPawnPairs) return NoIndex;
    switch (plan.ep) {
    case EpPawnPawn: {
        const bool first = plan.mover == 0;
        const int capturer = s[first ? plan.firstPawn[0] : plan.secondPawn];
        return pair * CaptureDigits + captureDigit(capturer, e, first);
    }
    case EpPiecePawnFirst: {
        const int cls = plan.groupClass[0];
        const std::uint32_t piece = pawnForm.singleBase[cls][pair] + openIndex(cls, m, o, s[plan.piece]);
        return piece * CaptureDigits + captureDigit(s[plan.firstPawn[0]], e, true);
    }
    case EpPiecePawnSecond: {
        const int capturer = s[plan.secondPawn];
        const int others[6] = {m, o, s[plan.firstPawn[0]], capturer, e, e - 8};
        const std::uint32_t piece = s[plan.piece] - countBelow(others, 6, s[plan.piece]);
        return pair * PieceCaptureRange + piece * CaptureDigits + captureDigit(capturer, e, false);
    }
    default: {
        const bool first = plan.ep == EpTwoPawnsFirst;
        const int a = s[plan.firstPawn[0]], b = s[plan.firstPawn[1]];
        int capturer, other;
        if (first) {
            capturer = capturesUp(std::min(a, b), e) ? std::min(a, b) : std::max(a, b);
            other = capturer == a ? b : a;
        } else {
            capturer = s[plan.secondPawn];
            other = a == e + 8 ? b : a;
        }
        const int fixed[4] = {capturer, e, e - 8, e + 8};
        const std::uint32_t pawn = other - 8 - countBelow(fixed, 4, other);
        return pair * PawnCaptureRange + pawn * CaptureDigits + captureDigit(capturer, e, first);
    }
    }
}

std::uint32_t indexWith(const Plan& plan, const std::int32_t* first, const std::int32_t* second, int epSquare,
                        int swapped) {
    const std::int32_t* lists[2] = {first, second};
    const int moverKing = lists[plan.mover][0], waiterKing = lists[plan.mover ^ 1][0];
    if (unsigned(moverKing) > 63 || unsigned(waiterKing) > 63) return NoIndex;

    // Fold the board: the mover's king to files a-d; in a plain row also to
    // ranks 1-4 and then into the triangle below the long diagonal. Both
    // kings on the diagonal stay as they are, whatever the other men do.
    int x = fileOf(moverKing) >= 4 ? 7 : 0;
    if (plan.pawnRow) x ^= swapped ? 56 : 0;
    else if (rankOf(moverKing) >= 4) x ^= 56;
    bool transpose = false;
    if (!plan.pawnRow) {
        const int m = moverKing ^ x, o = waiterKing ^ x;
        transpose = fileOf(m) < rankOf(m) || (fileOf(m) == rankOf(m) && fileOf(o) < rankOf(o));
    }
    auto fold = [&](int square) { return transpose ? transposed(square ^ x) : square ^ x; };
    const int m = fold(moverKing), o = fold(waiterKing);
    int s[3];
    for (int k = 0; k < plan.manCount; ++k) {
        const int square = lists[plan.men[k].list][plan.men[k].place];
        if (unsigned(square) > 63) return NoIndex;
        s[k] = fold(square);
    }
    if (plan.ep != NoEp && unsigned(epSquare) <= 63) {
        const std::uint32_t region = enPassantIndex(plan, m, o, s, epSquare ^ x);
        return region == NoIndex ? NoIndex : plan.ordinary + region;
    }

    // The group, numbered in the mover's frame.
    const int flip = plan.flip ? 56 : 0;
    const int mf = m ^ flip, of = o ^ flip;
    const TbBaseForm& form = plan.pawnRow ? pawnForm : plainForm;
    const std::uint32_t pair = std::uint32_t(plan.pawnRow ? kingPairPawn[mf][of] : kingPairPlain[mf][of]);
    if (pair >= TbPawnPairs) return NoIndex;
    std::uint32_t index = pair;
    if (plan.groupSize == 1) {
        const int cls = plan.groupClass[0];
        index = form.singleBase[cls][pair] + openIndex(cls, mf, of, s[0] ^ flip);
    } else if (plan.groupSize == 2) {
        const int c1 = plan.groupClass[0], c2 = plan.groupClass[1];
        const std::uint32_t i1 = openIndex(c1, mf, of, s[0] ^ flip), i2 = openIndex(c2, mf, of, s[1] ^ flip);
        if (c1 == c2) {
            const std::uint32_t hi = std::max(i1, i2), lo = std::min(i1, i2);
            index = form.pairBase[c1][c1][pair] + hi * (hi - 1) / 2 + lo;
        } else {
            index = form.pairBase[c1][c2][pair] + i1 * openCount(c2, mf, of) + i2;
        }
    }

    // The digits, on the folded board without the frame.
    int taken[7] = {m, o};
    int takenCount = 2;
    int groupPawns[2];
    int groupPawnCount = 0;
    for (int k = 0; k < plan.manCount; ++k) {
        const Man& man = plan.men[k];
        if (man.inGroup && man.pawn) groupPawns[groupPawnCount++] = s[k];
        if (man.inGroup || man.pawn) taken[takenCount++] = s[k];
    }
    for (int d = 0; d < plan.digitCount; ++d) {
        const Digit& digit = plan.digits[d];
        const int a = s[digit.man[0]], b = s[digit.man[1]];
        std::uint32_t value;
        switch (digit.kind) {
        case PieceDigit:
            value = a - countBelow(taken, takenCount, a);
            taken[takenCount++] = a;
            break;
        case PawnDigit:
            value = a - 8 - countBelow(groupPawns, groupPawnCount, a);
            break;
        default: {
            const bool pawns = digit.kind == PawnPairDigit;
            std::uint32_t va = pawns ? a - 8 - countBelow(groupPawns, groupPawnCount, a) : a - countBelow(taken, takenCount, a);
            std::uint32_t vb = pawns ? b - 8 - countBelow(groupPawns, groupPawnCount, b) : b - countBelow(taken, takenCount, b);
            if (va < vb) std::swap(va, vb);
            value = va * (va - 1) / 2 + vb;
        }
        }
        index = index * digit.range + value;
    }
    return index;
}

}  // namespace

void tbBuildIndexTables() {
    if (built) return;
    buildSquares();
    buildKingPairs();
    buildBases(pawnForm, pawnPairKings, TbPawnPairs);
    buildBases(plainForm, plainPairKings, TbPlainPairs);
    for (int id = 1; id < TbRowCount; ++id)
        for (int side = 0; side < 2; ++side) plans[id][side] = makePlan(tbRowName(id), side);
    built = true;
}

std::uint32_t tbFormulaSize(int rowId, int side) {
    if (rowId < 1 || rowId >= TbRowCount || side < 0 || side > 1) return 0;
    tbBuildIndexTables();
    return plans[rowId][side].size;
}

std::uint32_t tbEnPassantStart(int rowId, int side) {
    if (rowId < 1 || rowId >= TbRowCount || side < 0 || side > 1) return 0;
    tbBuildIndexTables();
    return plans[rowId][side].ep == NoEp ? 0 : plans[rowId][side].ordinary;
}

std::uint32_t tbIndexOf(int rowId, int side, const std::int32_t* firstList, const std::int32_t* secondList,
                        int epSquare, int swapped) {
    if (rowId < 1 || rowId >= TbRowCount || side < 0 || side > 1) return NoIndex;
    return indexWith(plans[rowId][side], firstList, secondList, epSquare, swapped);
}

}  // namespace tablebase
