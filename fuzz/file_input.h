// For readers that take a file name: each fuzz input becomes the contents of one file, private to
// the fuzzing process.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

// Writes the input to the process's file and returns its name.
inline char const* input_file(std::uint8_t const* data, std::size_t size, char const* suffix)
{
    static std::string path;  // one per process, named anew for each suffix
    path = "/tmp/tessarium_fuzz_" + std::to_string(getpid()) + suffix;
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) std::abort();
    std::fwrite(data, 1, size, f);
    std::fclose(f);
    return path.c_str();
}
