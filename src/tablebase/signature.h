#pragma once
// The material of a position as ten counts, and the tree that maps it to
// the row of its table. A leaf's sign tells whether White is the row's
// first side (+) or its second (-); 0 means no table is registered.

#include <cstdint>

namespace tablebase {

// White pawns, knights, bishops, rooks, queens, then the same for Black.
// Kings aren't counted.
constexpr int TbSignatureCounts = 10;
struct TbSignature {
    std::int32_t count[TbSignatureCounts];
};
constexpr int TbSignatureSideCounts = 5;
// The most men besides the kings that any row has.
constexpr int TbMostPieces = 3;

// Builds the empty tree; later calls do nothing. Leaves stay filled for
// the rest of the run.
void tbBuildSignatureTree();
// The signed row id of a signature, 0 for none or one with too many men.
int tbFindRow(const TbSignature& signature);
// Stores `rowId` at the signature of the ending's name (such as "kqkr") and
// -rowId at its colours exchanged. Returns 0 if the name has no place in
// the tree.
int tbStoreSignature(const char* name, int rowId);

}  // namespace tablebase
