#pragma once
// Threads and the one kind of lock the engine uses. A think runs on a
// detached thread with a stack of a chosen size; lineLock is a CriticalSection.

#include <cstddef>
#include <mutex>

namespace platform {

using ThreadBody = void (*)(void* argument);

// Starts `body(argument)` on a detached thread whose stack holds at least
// `stackBytes` (raised to the system minimum, and further under a sanitizer,
// whose instrumented frames are several times larger). False if no thread
// could be started.
bool startDetachedThread(ThreadBody body, void* argument, std::size_t stackBytes);

// The stack size that startDetachedThread would actually ask for.
std::size_t effectiveStackSize(std::size_t stackBytes);

// A non-recursive lock with the enter/leave shape of the code that uses it.
class CriticalSection {
public:
    void enter() { mutex_.lock(); }
    void leave() { mutex_.unlock(); }

private:
    std::mutex mutex_;
};

// Holds a CriticalSection for one scope.
class SectionGuard {
public:
    explicit SectionGuard(CriticalSection& section) : section_(section) { section_.enter(); }
    ~SectionGuard() { section_.leave(); }
    SectionGuard(const SectionGuard&) = delete;
    SectionGuard& operator=(const SectionGuard&) = delete;

private:
    CriticalSection& section_;
};

}  // namespace platform
