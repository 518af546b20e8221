#include "platform/replacefile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>

namespace platform {

namespace {

constexpr char TemporarySuffix[] = ".XXXXXX";

}  // namespace

// mkstemp makes the name unique, so two writers never share a temporary. A
// link is followed, so that the file it points to is the one replaced.
bool beginReplacement(ReplacementFile& file, const char* target) {
    file.stream = nullptr;
    char resolved[PATH_MAX];
    if (realpath(target, resolved) != nullptr) target = resolved;
    const std::size_t length = std::strlen(target);
    if (length == 0 || length + sizeof TemporarySuffix > ReplacePathSize) return false;
    std::memcpy(file.target, target, length + 1);
    std::memcpy(file.temporary, target, length);
    std::memcpy(file.temporary + length, TemporarySuffix, sizeof TemporarySuffix);
    const int fd = mkstemp(file.temporary);
    if (fd < 0) return false;
    file.stream = fdopen(fd, "wb");
    if (file.stream == nullptr) {
        close(fd);
        unlink(file.temporary);
        return false;
    }
    return true;
}

// mkstemp creates the file for its owner only; a book that others could
// read before should stay readable, a new one gets the usual mode.
bool commitReplacement(ReplacementFile& file) {
    if (file.stream == nullptr) return false;
    struct stat old;
    mode_t mode = 0644;
    if (stat(file.target, &old) == 0) mode = old.st_mode & 07777;
    bool ok = std::fflush(file.stream) == 0 && std::ferror(file.stream) == 0;
    ok = ok && fchmod(fileno(file.stream), mode) == 0 && fsync(fileno(file.stream)) == 0;
    ok = std::fclose(file.stream) == 0 && ok;
    file.stream = nullptr;
    ok = ok && std::rename(file.temporary, file.target) == 0;
    if (!ok) unlink(file.temporary);
    return ok;
}

void abandonReplacement(ReplacementFile& file) {
    if (file.stream == nullptr) return;
    std::fclose(file.stream);
    file.stream = nullptr;
    unlink(file.temporary);
}

}  // namespace platform
