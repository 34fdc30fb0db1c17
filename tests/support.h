// Test helpers: a temporary folder per test, and whole-file reads and writes.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

class TempDir {
public:
    TempDir() {
        std::string pattern = (fs::temp_directory_path() / "kelprofile-XXXXXX").string();
        path_ = mkdtemp(pattern.data()) ? fs::path(pattern) : fs::path();
    }
    ~TempDir() {
        std::error_code ec;
        fs::remove_all(path_, ec);
    }
    // Path of a file inside the folder, as a string the C interface takes.
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

inline void writeFile(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// The XML declaration every writer starts its files with.
inline const char* kDecl = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// GBK bytes of the two characters 中文 ("Chinese"), and their UTF-8 form.
inline const char* kGbkZhongwen = "\xD6\xD0\xCE\xC4";
inline const char* kUtf8Zhongwen = "\xE4\xB8\xAD\xE6\x96\x87";
