#pragma once
// Choosing the file's 24 match distances. A first pass matches at any
// distance within a block (hash chains, longest match, nearest on a tie)
// over a sample of the blocks, and credits each distance with the bytes its
// matches cover. Tables repeat with the strides of their index (a square,
// a rank, a piece's whole range) and run long where values don't change;
// those strides collect the credit. The best 24 are the file's slots.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "parse.h"

namespace tbcompress {

namespace detail {

constexpr int HashBits = 15;
constexpr int ChainDepth = 48;
constexpr int MinMatch = 3;
constexpr int SampleBlocks = 256;

inline std::uint32_t hash3(const std::uint8_t* p) {
    return ((std::uint32_t(p[0]) << 16 | std::uint32_t(p[1]) << 8 | p[2]) * 2654435761u) >> (32 - HashBits);
}

// Greedy longest matches in one block, crediting their distances.
inline void creditBlock(const std::uint8_t* data, int size, std::vector<std::uint64_t>& credit,
                        std::vector<int>& head, std::vector<int>& previous) {
    std::fill(head.begin(), head.end(), -1);
    const auto insert = [&](int i) {
        if (i + MinMatch > size) return;
        const std::uint32_t h = hash3(data + i);
        previous[std::size_t(i)] = head[h];
        head[h] = i;
    };
    for (int i = 0; i < size;) {
        int bestLength = 0, bestDistance = 0;
        if (i + MinMatch <= size) {
            int candidate = head[hash3(data + i)];
            for (int depth = 0; candidate >= 0 && depth < ChainDepth; ++depth, candidate = previous[std::size_t(candidate)]) {
                int length = 0;
                while (i + length < size && data[candidate + length] == data[i + length]) ++length;
                if (length > bestLength) {
                    bestLength = length;
                    bestDistance = i - candidate;
                }
            }
        }
        if (bestLength < MinMatch) {
            insert(i++);
            continue;
        }
        credit[std::size_t(bestDistance)] += std::uint64_t(bestLength);
        for (int end = i + bestLength; i < end; ++i) insert(i);
    }
}

}  // namespace detail

inline Distances chooseDistances(const std::uint8_t* data, std::size_t size) {
    using namespace tablebase;
    std::vector<std::uint64_t> credit(TbBlockSize, 0);
    std::vector<int> head(std::size_t(1) << detail::HashBits), previous(TbBlockSize);
    const std::size_t blocks = (size + TbBlockSize - 1) / TbBlockSize;
    const std::size_t step = std::max<std::size_t>(1, blocks / detail::SampleBlocks);
    for (std::size_t block = 0; block < blocks; block += step) {
        const std::size_t start = block * TbBlockSize;
        detail::creditBlock(data + start, int(std::min<std::size_t>(TbBlockSize, size - start)), credit, head, previous);
    }
    std::vector<int> order;
    for (int distance = 1; distance < TbBlockSize; ++distance)
        if (credit[std::size_t(distance)]) order.push_back(distance);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return credit[std::size_t(a)] > credit[std::size_t(b)]; });
    // Slots no stride deserves still need distinct distances: the smallest.
    for (int distance = 1; int(order.size()) < TbDistanceSlots; ++distance)
        if (std::find(order.begin(), order.end(), distance) == order.end()) order.push_back(distance);
    Distances distances;
    std::copy_n(order.begin(), TbDistanceSlots, distances.begin());
    return distances;
}

}  // namespace tbcompress
