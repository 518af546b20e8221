// The probe: the material finds the row and tells which colour is its
// first side, the lists give the index, and the byte read through the
// cache becomes a distance to mate seen from the side to move.

#include "tablebase/probe.h"

#include <algorithm>
#include <iterator>

#include "board/types.h"
#include "tablebase/cache.h"
#include "tablebase/registry.h"

namespace tablebase {

int tbMaxMen = 0;
TbSignature tbSignatureNow;
TbPieceList tbWhiteList;
TbPieceList tbBlackList;

namespace {

// Signature place of a piece type: pawns 0, knight 1, bishop 2, rook 3, queen 4.
constexpr int signaturePlace[8] = {-1, 4, 3, 2, 1, 0, 0, -1};
// First list place of a piece type.
constexpr int listPlace[8] = {0, TbQueenPlace, TbRookPlace, TbBishopPlace, TbKnightPlace, TbPawnPlace, TbPawnPlace, -1};
constexpr int PlacesTried = 4;

// Table bytes as values: wins above 32640, losses below -32640; 127 marks
// a broken entry, and -128 is the one win that doesn't fit the pattern.
struct ByteValues {
    int value[256];
    constexpr ByteValues() : value() {
        for (int b = -128; b < 128; ++b) {
            int v = b == 0 ? 0 : b > 0 ? b + 32640 : b - 32640;
            if (b == 127) v = TbUnknown;
            if (b == -127) v = -32640;
            if (b == -128) v = 32640;
            value[b & 255] = v;
        }
    }
};
constexpr ByteValues byteValues;

// Seven kppkp positions with Black to move are lost in 127 moves, one more
// than a byte of that table can say.
constexpr int LongLossRow = 36;
constexpr std::uint32_t longLossIndex[7] = {56802428, 56811076, 56849992, 56858640, 59592489, 67775659, 71071628};
constexpr int LongLossValue = -32639;

}  // namespace

int tbCountPieces(const std::int32_t* pieceSquare, const std::int32_t* pieceType) {
    tbSignatureNow = {};
    int men = 0;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        if ((id & 15) == board::SlotKing || pieceSquare[id] == board::NoSquare) continue;
        const int place = signaturePlace[pieceType[id] & 7];
        if (place < 0) continue;
        ++tbSignatureNow.count[(id >= board::BlackIdBase ? TbSignatureSideCounts : 0) + place];
        ++men;
    }
    return men;
}

// A type's men take the first free places of its range; at most four are
// looked at, more than any row has.
void tbBuildLists(const std::int32_t* pieceSquare, const std::int32_t* pieceType) {
    std::fill(std::begin(tbWhiteList), std::end(tbWhiteList), -1);
    std::fill(std::begin(tbBlackList), std::end(tbBlackList), -1);
    for (int id = 0; id < board::PieceIdCount; ++id) {
        if (pieceSquare[id] == board::NoSquare) continue;
        const int first = listPlace[pieceType[id] & 7];
        if (first < 0) continue;
        std::int32_t* list = id >= board::BlackIdBase ? tbBlackList : tbWhiteList;
        for (int place = first; place < first + PlacesTried && place < TbListSize; ++place)
            if (list[place] == -1) {
                list[place] = pieceSquare[id];
                break;
            }
    }
}

bool tbLocate(int side, int epSquare, TbTarget& target) {
    const int id = tbFindRow(tbSignatureNow);
    if (id == 0) return false;
    const bool swapped = id < 0;
    const int row = swapped ? -id : id;
    if (swapped) side ^= 1;  // the table's colours are the board's reversed
    if (tbRows[row].path[side][0] == '\0') return false;
    const std::int32_t* first = swapped ? tbBlackList : tbWhiteList;
    const std::int32_t* second = swapped ? tbWhiteList : tbBlackList;
    target = {row, side, swapped, tbIndexOf(row, side, first, second, epSquare, swapped)};
    return true;
}

// A position the rule doesn't cover (a distant check the caller let
// through) may index past the file's end: it is unknown, not a read.
int tbProbe(int side, int epSquare) {
    TbTarget target;
    if (!tbLocate(side, epSquare, target)) return TbUnknown;
    if (target.index >= tbRows[target.rowId].positions[target.side]) return TbUnknown;
    return tbReadValue(target.rowId, target.side, target.index);
}

int tbReadValue(int rowId, int side, std::uint32_t index) {
    if (rowId == LongLossRow && side == 1 &&
        std::find(std::begin(longLossIndex), std::end(longLossIndex), index) != std::end(longLossIndex))
        return LongLossValue;
    const int byte = tbFetchByte(rowId, side, index);
    if (byte == TbByteUnknown) return TbUnknown;
    return byteValues.value[byte & 255];
}

}  // namespace tablebase
