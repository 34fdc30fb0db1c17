// Test helpers: a temporary folder per test, whole-file reads and writes,
// and records that give back what they own when the test ends.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>

#include "kelProfile.h"

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

// Writes text to path, making its folders; path, for the reader to take.
inline std::string writeFile(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// n copies of item, each '#' in copy i replaced by i.
inline std::string repeat(const std::string& item, int n) {
    std::string out;
    for (int i = 0; i < n; ++i)
        for (char c : item) out += c == '#' ? std::to_string(i) : std::string(1, c);
    return out;
}

// Runs command through the shell; its exit status, and in out what it
// printed. command may carry redirections of its own (2>/dev/null).
inline int runCommand(const std::string& command, std::string* out = nullptr) {
    TempDir dir;
    int status = std::system(("(" + command + ") >" + dir.file("out") + " 2>&1").c_str());
    if (out) *out = readFile(dir.file("out"));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Runs kelprofile with args, as runCommand does.
inline int runTool(const std::string& args, std::string* out = nullptr) {
    return runCommand(KELPROFILE_TOOL " " + args, out);
}

// The golden file tests/data/<name>: what a writer is expected to write,
// compared whole. With KELPROFILE_REGENERATE=1 in the environment the test
// writes what it got there instead, for a writer whose output is meant to
// change (read git diff tests/data before committing it).
inline std::string golden(const std::string& name, const std::string& got) {
    std::string path = KELPROFILE_SOURCE_DIR "/tests/data/" + name;
    const char* regenerate = std::getenv("KELPROFILE_REGENERATE");
    if (regenerate && std::string(regenerate) == "1") writeFile(path, got);
    return readFile(path);
}

// The XML declaration every writer starts its files with.
inline const char* kDecl = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// GBK bytes of the two characters 中文 ("Chinese"), and their UTF-8 form.
inline const char* kGbkZhongwen = "\xD6\xD0\xCE\xC4";
inline const char* kUtf8Zhongwen = "\xE4\xB8\xAD\xE6\x96\x87";

// True when every byte of the record is zero, as a failed read leaves it.
template <class Record>
bool isCleared(const Record& record) {
    static_assert(!std::is_pointer_v<Record>, "pass the record, not a pointer to it");
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    return std::all_of(bytes, bytes + sizeof record, [](unsigned char b) { return b == 0; });
}

// Owned<Holding, Read> holds one record of a family for the length of a test
// and gives back what it owns at the end. Holding says where the record lives
// and how it is given back; Read is the family's reader or folder loader, and
// read(path) gives back what the record held before it reads again. A family
// plugs in with one line, as the tests' own families do, e.g.
//   Owned<Allocated<GroupOPtion, createGroupOPtion, freeGroupOPtion>, praseOPtionXmlFile>

// The release of a record that owns nothing.
template <class Record>
void releaseNothing(Record*) {}

// A temporary option record owns one malloc block of items.
inline void freeTempItems(TempOption* record) {
    std::free(record->tempItems);
}

// A block of records side by side: each record released, then the block.
template <class Item, void (*Release)(Item*) = releaseNothing<Item>>
void releaseBlock(RecordArray* block) {
    for (int32_t i = 0; i < block->count; ++i) Release(static_cast<Item*>(block->records) + i);
    std::free(block->records);
}

// Record i of a block.
template <class Item>
Item& itemOf(const RecordArray& block, int i) {
    return static_cast<Item*>(block.records)[i];
}

// A record the test holds itself, zeroed when made. Its release gives back
// what it owns and leaves the stale fields: a reader must clear them itself.
template <class R, void (*Release)(R*) = releaseNothing<R>>
class Zeroed {
public:
    using Record = R;
    Zeroed() { std::memset(&record_, 0, sizeof record_); }
    Record* get() { return &record_; }
    void release() { Release(&record_); }

private:
    Record record_;
};

// A record the library allocates with Create(&pointer) when it is first used,
// and frees with Destroy(&pointer), which also nulls the pointer.
template <class R, R* (*Create)(R**), void (*Destroy)(R**)>
class Allocated {
public:
    using Record = R;
    Record* get() { return record_ ? record_ : Create(&record_); }
    void release() {
        if (record_) Destroy(&record_);
    }

private:
    Record* record_ = nullptr;
};

template <class Holding, int32_t (*Read)(const char*, typename Holding::Record*)>
class Owned {
public:
    using Record = typename Holding::Record;
    Owned() = default;
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { held_.release(); }

    Record* get() { return held_.get(); }
    Record* operator->() { return get(); }
    Record& operator*() { return *get(); }

    int32_t read(const std::string& path) {
        held_.release();
        return Read(path.c_str(), get());
    }

private:
    Holding held_;
};
