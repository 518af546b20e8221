#include "platform/fatal.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace platform {

void fatal(const char* format, ...) {
    std::fputs("*** ", stdout);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stdout, format, arguments);
    va_end(arguments);
    std::fputc('\n', stdout);
    std::fflush(stdout);
    std::exit(1);
}

}  // namespace platform
