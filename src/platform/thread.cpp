#include "platform/thread.h"

#include <pthread.h>
#include <climits>
#include <new>

namespace platform {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t SanitizerStackFactor = 8;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr std::size_t SanitizerStackFactor = 8;
#else
constexpr std::size_t SanitizerStackFactor = 1;
#endif
#else
constexpr std::size_t SanitizerStackFactor = 1;
#endif

struct ThreadStart {
    ThreadBody body;
    void* argument;
};

void* threadEntry(void* raw) {
    const ThreadStart start = *static_cast<ThreadStart*>(raw);
    delete static_cast<ThreadStart*>(raw);
    start.body(start.argument);
    return nullptr;
}

}  // namespace

std::size_t effectiveStackSize(std::size_t stackBytes) {
    std::size_t size = stackBytes * SanitizerStackFactor;
    const std::size_t minimum = static_cast<std::size_t>(PTHREAD_STACK_MIN);
    if (size < minimum) size = minimum;
    return size;
}

// The start record lives on the heap because the caller may return before
// the new thread has read it.
bool startDetachedThread(ThreadBody body, void* argument, std::size_t stackBytes) {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    bool started = false;
    if (pthread_attr_setstacksize(&attributes, effectiveStackSize(stackBytes)) == 0 &&
        pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED) == 0) {
        auto* start = new (std::nothrow) ThreadStart{body, argument};
        if (start) {
            pthread_t thread;
            started = pthread_create(&thread, &attributes, threadEntry, start) == 0;
            if (!started) delete start;
        }
    }
    pthread_attr_destroy(&attributes);
    return started;
}

}  // namespace platform
