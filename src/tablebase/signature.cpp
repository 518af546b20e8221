// The signature tree: one level per count, each node's children running
// from 0 to what is left of the three men a row may have besides the kings.

#include "tablebase/signature.h"

namespace tablebase {

namespace {

// Nodes of levels 0-9: C(13, 4) = 715; leaves: C(13, 3) = 286.
constexpr int NodeCount = 715;
constexpr int LeafCount = 286;

struct TreeNode {
    std::int32_t highest;                  // the largest count allowed here
    std::int16_t child[TbMostPieces + 1];  // a node below, or at the last level a leaf
};

TreeNode nodes[NodeCount];
std::int32_t leaves[LeafCount];
int usedNodes = 0, usedLeaves = 0;
bool built = false;

int buildNode(int level, int remaining) {
    const int at = usedNodes++;
    nodes[at].highest = remaining;
    for (int count = 0; count <= remaining; ++count)
        nodes[at].child[count] = std::int16_t(level == TbSignatureCounts - 1 ? usedLeaves++
                                                                              : buildNode(level + 1, remaining - count));
    return at;
}

// The leaf of a signature, or null when a count is out of the tree.
std::int32_t* leafOf(const TbSignature& signature) {
    int node = 0;
    for (int level = 0; level < TbSignatureCounts; ++level) {
        const int count = signature.count[level];
        if (count < 0 || count > nodes[node].highest) return nullptr;
        node = nodes[node].child[count];
    }
    return &leaves[node];
}

int letterCount(char letter) {
    switch (letter) {
    case 'p': return 0;
    case 'n': return 1;
    case 'b': return 2;
    case 'r': return 3;
    case 'q': return 4;
    default: return -1;
    }
}

}  // namespace

void tbBuildSignatureTree() {
    if (built) return;
    buildNode(0, TbMostPieces);
    built = true;
}

int tbFindRow(const TbSignature& signature) {
    const std::int32_t* leaf = leafOf(signature);
    return leaf == nullptr ? 0 : *leaf;
}

int tbStoreSignature(const char* name, int rowId) {
    tbBuildSignatureTree();
    TbSignature signature{}, exchanged{};
    int half = -1;
    for (const char* c = name; *c != '\0'; ++c) {
        if (*c == 'k') {
            if (++half > 1) return 0;
            continue;
        }
        const int place = letterCount(*c);
        if (half < 0 || place < 0) return 0;
        ++signature.count[half * TbSignatureSideCounts + place];
        ++exchanged.count[(1 - half) * TbSignatureSideCounts + place];
    }
    std::int32_t* leaf = leafOf(signature);
    std::int32_t* exchangedLeaf = leafOf(exchanged);
    if (leaf == nullptr || exchangedLeaf == nullptr) return 0;
    // In a symmetric ending both are one leaf, and the exchanged colours win.
    *leaf = rowId;
    *exchangedLeaf = -rowId;
    return 1;
}

}  // namespace tablebase
