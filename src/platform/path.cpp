#include "platform/path.h"

#include <unistd.h>
#include <cstring>

namespace platform {

// readlink doesn't terminate and truncates silently, so a result that fills
// the buffer is taken as too long.
std::size_t programPath(char* buffer, std::size_t size) {
    if (size == 0) return 0;
    buffer[0] = '\0';
    const ssize_t length = readlink("/proc/self/exe", buffer, size - 1);
    if (length <= 0 || static_cast<std::size_t>(length) >= size - 1) {
        buffer[0] = '\0';
        return 0;
    }
    buffer[length] = '\0';
    return static_cast<std::size_t>(length);
}

std::size_t programDirectoryOf(char* buffer, std::size_t size) {
    if (programPath(buffer, size) == 0) return 0;
    char* last = std::strrchr(buffer, PathSeparator);
    if (!last) {
        buffer[0] = '\0';
        return 0;
    }
    last[1] = '\0';
    return static_cast<std::size_t>(last + 1 - buffer);
}

}  // namespace platform
