#pragma once
// Rewriting a file so that no reader ever sees half of it, and a failure
// halfway leaves the old file whole: the new contents go to a temporary file
// beside the target, which then takes the target's place in one rename.

#include <cstddef>
#include <cstdio>

namespace platform {

// Room for a path and the temporary suffix.
constexpr std::size_t ReplacePathSize = 4096 + 16;

struct ReplacementFile {
    std::FILE* stream = nullptr;  // open for writing between begin and commit
    char target[ReplacePathSize];
    char temporary[ReplacePathSize];
};

// Opens a fresh temporary file in the directory of `target`. False if the
// path is too long or the directory can't be written.
bool beginReplacement(ReplacementFile& file, const char* target);

// Flushes the temporary file to disk and renames it over the target, which
// keeps its permissions. False on any failure; the target is then untouched
// and the temporary file removed.
bool commitReplacement(ReplacementFile& file);

// Closes and removes the temporary file; the target stays as it was.
void abandonReplacement(ReplacementFile& file);

}  // namespace platform
