#pragma once
// Cutting one block into literals and matches at the file's 24 distances,
// at the least cost in bits under a given price list. With so few distances
// every match length is known up front: one backward pass per distance
// gives the length at each position, and a backward pass over positions
// finds the cheapest way to the block's end from each.

#include <array>
#include <cstdint>
#include <vector>

#include "tablebase/datacomp.h"

namespace tbcompress {

using Distances = std::array<int, tablebase::TbDistanceSlots>;

// The length code of a match length (1 to 8192).
inline int lengthCode(int length) {
    if (length <= tablebase::TbPlainLengthCodes) return length - 1;
    int extraBits = 1;
    while ((2 << extraBits) <= length - 14) ++extraBits;
    return extraBits + 14;
}

inline int matchSymbol(int slot, int code) { return tablebase::TbLiteralCount + slot * tablebase::TbLengthCodeCount + code; }

// What each symbol costs in bits, extra bits of a match not included.
struct Prices {
    std::array<std::uint32_t, tablebase::TbSymbolCount> symbol;
};

// Before any code exists: literals by a rough share of their byte, every
// match symbol alike.
inline Prices startingPrices(const std::uint8_t* data, std::size_t size) {
    std::array<std::uint64_t, 256> counts{};
    for (std::size_t i = 0; i < size; ++i) ++counts[data[i]];
    Prices prices;
    prices.symbol.fill(10);
    for (int byte = 0; byte < 256; ++byte) {
        std::uint32_t bits = 2;
        while (bits < 14 && (std::uint64_t(1) << (bits - 1)) * counts[std::size_t(byte)] < size) ++bits;
        prices.symbol[std::size_t(byte)] = bits;
    }
    return prices;
}

// Prices from a code's lengths; a symbol without a code is priced as a rare
// one, so that a later code may still take it up.
inline Prices pricesFromLengths(const std::vector<std::uint8_t>& lengths) {
    std::uint32_t longest = 1;
    for (std::uint8_t length : lengths) longest = std::max<std::uint32_t>(longest, length);
    Prices prices;
    for (std::size_t s = 0; s < lengths.size(); ++s) prices.symbol[s] = lengths[s] ? lengths[s] : longest + 2;
    return prices;
}

struct Token {
    std::uint16_t length;  // 1 for a literal
    std::int8_t slot;      // -1 for a literal
};

class BlockParser {
public:
    BlockParser() : runs_(std::size_t(tablebase::TbDistanceSlots) * Stride), cost_(Stride), choice_(Stride) {}

    // The cheapest tokens for `data` (up to one block) under `prices`;
    // returns their total in bits.
    std::uint64_t parse(const std::uint8_t* data, int size, const Distances& distances, const Prices& prices,
                        std::vector<Token>& tokens) {
        using namespace tablebase;
        for (int slot = 0; slot < TbDistanceSlots; ++slot) {
            std::uint16_t* run = runs_.data() + std::size_t(slot) * Stride;
            const int distance = distances[std::size_t(slot)];
            run[size] = 0;
            for (int i = size - 1; i >= 0; --i)
                run[i] = i >= distance && data[i] == data[i - distance] ? std::uint16_t(run[i + 1] + 1) : 0;
        }
        cost_[std::size_t(size)] = 0;
        for (int i = size - 1; i >= 0; --i) {
            std::uint32_t best = prices.symbol[data[i]] + cost_[std::size_t(i) + 1];
            Token bestToken{1, -1};
            int longest = 0;
            for (int slot = 0; slot < TbDistanceSlots; ++slot) longest = std::max<int>(longest, runs_[std::size_t(slot) * Stride + std::size_t(i)]);
            const auto consider = [&](int slot, int length) {
                const int code = lengthCode(length);
                const std::uint32_t total = prices.symbol[std::size_t(matchSymbol(slot, code))] +
                                            std::uint32_t(tbExtraBits(code)) + cost_[std::size_t(i + length)];
                if (total < best) {
                    best = total;
                    bestToken = {std::uint16_t(length), std::int8_t(slot)};
                }
            };
            for (int slot = 0; slot < TbDistanceSlots && longest > 0; ++slot) {
                const int run = runs_[std::size_t(slot) * Stride + std::size_t(i)];
                if (run == 0) continue;
                consider(slot, run);
                // A long match is taken whole: shorter cuts of it rarely pay
                // and would cost the most time in the long runs of a table.
                if (longest >= NiceLength) continue;
                for (int length = 1; length < run; ++length)
                    if (length <= TbPlainLengthCodes || lengthCode(length + 1) != lengthCode(length)) consider(slot, length);
            }
            cost_[std::size_t(i)] = best;
            choice_[std::size_t(i)] = bestToken;
        }
        tokens.clear();
        for (int i = 0; i < size; i += choice_[std::size_t(i)].length) tokens.push_back(choice_[std::size_t(i)]);
        return cost_[0];
    }

private:
    static constexpr int Stride = tablebase::TbBlockSize + 1;
    static constexpr int NiceLength = 32;
    std::vector<std::uint16_t> runs_;
    std::vector<std::uint32_t> cost_;
    std::vector<Token> choice_;
};

}  // namespace tbcompress
