#pragma once
// Work over the positions of a table on every core.

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace tbgen {

// Runs `work(begin, end)` over [0, size) in chunks; the chunks are handed
// out as threads come free, since the positions that need work bunch
// together.
template <class Work>
void parallelFor(std::uint32_t size, Work&& work) {
    constexpr std::uint32_t Chunk = 1 << 14;
    std::atomic<std::uint32_t> next{0};
    auto worker = [&] {
        for (std::uint32_t begin; (begin = next.fetch_add(Chunk)) < size;) work(begin, std::min(size, begin + Chunk));
    };
    const unsigned count = std::max(1u, std::min(std::thread::hardware_concurrency(), size / Chunk + 1));
    std::vector<std::thread> threads;
    for (unsigned t = 1; t < count; ++t) threads.emplace_back(worker);
    worker();
    for (std::thread& thread : threads) thread.join();
}

}  // namespace tbgen
