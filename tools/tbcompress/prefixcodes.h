#pragma once
// Canonical prefix codes for the writer: lengths from symbol counts, codes
// from lengths, and the two forms in which the header stores lengths. The
// reader accepts a complete code, a code of one symbol with length 1 (which
// takes no bits) or no code at all, so that is what comes out of here.

#include <algorithm>
#include <cstdint>
#include <queue>
#include <vector>

#include "bitwriter.h"
#include "tablebase/datacomp.h"

namespace tbcompress {

struct PrefixCode {
    std::vector<std::uint8_t> lengths;  // 0 for a symbol without a code
    std::vector<std::uint32_t> codes;
    std::vector<std::uint8_t> bits;     // bits written per symbol: 0 in a one-symbol code
};

// Huffman lengths for `counts`, none above `maxLength`. Where the tree grows
// too deep, the counts are flattened (halved, kept above 0) and it is built
// again: rare symbols lose a little, the limit always holds.
inline std::vector<std::uint8_t> huffmanLengths(std::vector<std::uint64_t> counts, int maxLength) {
    const int symbols = int(counts.size());
    std::vector<std::uint8_t> lengths(std::size_t(symbols), 0);
    std::vector<int> used;
    for (int s = 0; s < symbols; ++s)
        if (counts[std::size_t(s)]) used.push_back(s);
    if (used.size() == 1) lengths[std::size_t(used[0])] = 1;
    if (used.size() < 2) return lengths;
    for (;;) {
        using Node = std::pair<std::uint64_t, int>;
        std::priority_queue<Node, std::vector<Node>, std::greater<Node>> queue;
        std::vector<int> parent(2 * used.size(), -1);
        for (std::size_t i = 0; i < used.size(); ++i) queue.push({counts[std::size_t(used[i])], int(i)});
        int nextNode = int(used.size());
        while (queue.size() > 1) {
            const Node a = queue.top();
            queue.pop();
            const Node b = queue.top();
            queue.pop();
            parent[std::size_t(a.second)] = parent[std::size_t(b.second)] = nextNode;
            queue.push({a.first + b.first, nextNode++});
        }
        // Parents are numbered after their children: depths in one backward pass.
        std::vector<int> depth(std::size_t(nextNode), 0);
        for (int node = nextNode - 2; node >= 0; --node) depth[std::size_t(node)] = depth[std::size_t(parent[std::size_t(node)])] + 1;
        int deepest = 0;
        for (std::size_t i = 0; i < used.size(); ++i) deepest = std::max(deepest, depth[i]);
        if (deepest <= maxLength) {
            for (std::size_t i = 0; i < used.size(); ++i) lengths[std::size_t(used[i])] = std::uint8_t(depth[i]);
            return lengths;
        }
        for (int s : used) counts[std::size_t(s)] = counts[std::size_t(s)] / 2 + 1;
    }
}

// Codes in canonical order: by length, then by symbol, each the last plus one.
inline PrefixCode canonicalCode(const std::vector<std::uint8_t>& lengths) {
    PrefixCode code{lengths, std::vector<std::uint32_t>(lengths.size(), 0), lengths};
    int perLength[tablebase::TbMaxCodeLength + 2] = {};
    for (std::uint8_t length : lengths) ++perLength[length];
    perLength[0] = 0;
    std::uint32_t next[tablebase::TbMaxCodeLength + 2] = {};
    for (int length = 1; length <= tablebase::TbMaxCodeLength; ++length)
        next[length] = (next[length - 1] + std::uint32_t(perLength[length - 1])) << 1;
    int usedCount = 0;
    for (std::size_t s = 0; s < lengths.size(); ++s)
        if (lengths[s]) {
            code.codes[s] = next[lengths[s]]++;
            ++usedCount;
        }
    if (usedCount == 1) std::fill(code.bits.begin(), code.bits.end(), 0);
    return code;
}

inline PrefixCode buildCode(const std::vector<std::uint64_t>& counts) {
    return canonicalCode(huffmanLengths(counts, tablebase::TbMaxCodeLength));
}

inline void putSymbol(BitWriter& writer, const PrefixCode& code, int symbol) {
    writer.put(code.codes[std::size_t(symbol)], code.bits[std::size_t(symbol)]);
}

// The small form: a flag, a width, then the values, each 0 followed by a
// count of up to 15 further zeros.
inline void writeSmallForm(BitWriter& writer, const std::uint8_t* lengths) {
    const int count = tablebase::TbSmallFormCount;
    const std::uint8_t longest = *std::max_element(lengths, lengths + count);
    writer.put(longest == 0, 1);
    if (longest == 0) return;
    int width = 1;
    while ((1 << width) <= longest) ++width;
    writer.put(std::uint32_t(width), tablebase::TbSmallWidthBits);
    const int maxZeroRun = (1 << tablebase::TbZeroRunBits) - 1;
    for (int i = 0; i < count;) {
        writer.put(lengths[i], width);
        if (lengths[i++] != 0) continue;
        int zeros = 0;
        while (i < count && lengths[i] == 0 && zeros < maxZeroRun) ++zeros, ++i;
        writer.put(std::uint32_t(zeros), tablebase::TbZeroRunBits);
    }
}

// The large form: runs of three or more equal lengths become a repeat
// symbol and a repeat count, each through its own small code.
inline void writeLargeForm(BitWriter& writer, const std::vector<std::uint8_t>& lengths) {
    using namespace tablebase;
    const bool empty = std::all_of(lengths.begin(), lengths.end(), [](std::uint8_t l) { return l == 0; });
    writer.put(empty, 1);
    if (empty) return;
    struct Token {
        int symbol;
        int repeat;  // -1 for a single length
        int extraBits;
        std::uint32_t extra;
    };
    std::vector<Token> tokens;
    std::vector<std::uint64_t> symbolCounts(TbSmallSymbolCount, 0), repeatCounts(TbSmallSymbolCount, 0);
    for (std::size_t i = 0; i < lengths.size();) {
        std::size_t run = 1;
        while (i + run < lengths.size() && lengths[i + run] == lengths[i]) ++run;
        if (run < 3) {
            tokens.push_back({lengths[i], -1, 0, 0});
            ++symbolCounts[lengths[i]];
            ++i;
            continue;
        }
        const std::uint32_t times = std::uint32_t(run) - TbMinRepeat;
        Token token{TbRepeatSymbolBase + lengths[i], int(times), 0, 0};
        if (times > TbPlainRepeatLimit) {
            const std::uint32_t above = times - TbRepeatOffset;
            while ((2u << token.extraBits) <= above) ++token.extraBits;
            token.repeat = TbPlainRepeatLimit + token.extraBits;
            token.extra = above - (1u << token.extraBits);
        }
        tokens.push_back(token);
        ++symbolCounts[std::size_t(token.symbol)];
        ++repeatCounts[std::size_t(token.repeat)];
        i += run;
    }
    const PrefixCode symbolCode = buildCode(symbolCounts);
    const PrefixCode repeatCode = buildCode(repeatCounts);
    std::uint8_t smallLengths[TbSmallFormCount];
    std::copy(symbolCode.lengths.begin(), symbolCode.lengths.end(), smallLengths);
    std::copy(repeatCode.lengths.begin(), repeatCode.lengths.end(), smallLengths + TbSmallSymbolCount);
    writeSmallForm(writer, smallLengths);
    for (const Token& token : tokens) {
        putSymbol(writer, symbolCode, token.symbol);
        if (token.repeat < 0) continue;
        putSymbol(writer, repeatCode, token.repeat);
        writer.put(token.extra, token.extraBits);
    }
}

}  // namespace tbcompress
