// Files for the tests of the format readers and writers.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace test_files {

// A fresh path in the test temporary directory, private to this process.
inline std::string temp_path(std::string const& name)
{
    std::string path = ::testing::TempDir() + "tessarium_" + std::to_string(getpid()) + "_" + name;
    std::remove(path.c_str());
    return path;
}

// A path whose directory does not exist, so that opening it fails.
inline std::string unwritable_path()
{
    return temp_path("no_such_directory/out.txt");
}

inline std::string write_file(std::string const& name, std::string const& text)
{
    std::string path = temp_path(name);
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

inline std::string contents(std::string const& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline bool exists(std::string const& path)
{
    return std::ifstream(path).good();
}

// The folder of real files from other software, when this machine has it.
inline std::string corpus_dir(std::string const& format)
{
#ifdef TESSARIUM_CORPUS_DIR
    if (exists(std::string(TESSARIUM_CORPUS_DIR) + "/MANIFEST.md")) return TESSARIUM_CORPUS_DIR "/" + format + "/";
#endif
    static_cast<void>(format);
    return {};
}

}  // namespace test_files
