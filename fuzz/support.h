// What every fuzz target shares: how a target is declared, a scratch folder
// of its own for the files it reads and writes, and the checks that hold a
// read record to the library's promises.
//
// A target is one file fuzz/<name>_fuzz.cpp whose body is written once:
//
//   KELFUZZ_TARGET(name) { ... return 0; }
//
// Built for libFuzzer (KELFUZZ_LIBFUZZER defined) the body is the fuzzer's
// entry point; built into the ordinary test suite it registers itself under
// its name, and tests/fuzz_regressions_test.cpp replays every file of
// fuzz/regressions/<name>/ through it.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "kelProfile.h"

namespace kelfuzz {

using Body = int (*)(const uint8_t* data, size_t size);

struct Target {
    const char* name;
    Body body;
};

// Every target compiled into this program, in no particular order.
inline std::vector<Target>& targets() {
    static std::vector<Target> all;
    return all;
}

struct Registration {
    Registration(const char* name, Body body) { targets().push_back({name, body}); }
};

// The input being replayed, named when a check fails (set by the replaying
// test; libFuzzer saves the input itself).
inline std::string& currentInput() {
    static std::string name;
    return name;
}

// A broken promise: says which, and ends the process so that libFuzzer
// keeps the input and the replaying test fails.
[[noreturn]] inline void fail(const char* file, int line, const char* what) {
    std::fprintf(stderr, "%s:%d: check failed: %s", file, line, what);
    if (!currentInput().empty()) std::fprintf(stderr, " (input %s)", currentInput().c_str());
    std::fprintf(stderr, "\n");
    std::abort();
}

// A folder of this process's own, removed when the process that made it
// ends normally (a child forked to replay an input uses its parent's folder
// and leaves it in place).
class Scratch {
public:
    Scratch() : owner_(getpid()) {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelfuzz-XXXXXX").string();
        if (!mkdtemp(pattern.data())) fail(__FILE__, __LINE__, "no scratch folder");
        path_ = pattern;
    }
    ~Scratch() {
        std::error_code ec;
        if (getpid() == owner_) std::filesystem::remove_all(path_, ec);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    std::string file(const char* name) const { return (path_ / name).string(); }

private:
    pid_t owner_;
    std::filesystem::path path_;
};

inline std::string scratchFile(const char* name) {
    static Scratch scratch;
    return scratch.file(name);
}

// Writes size bytes to the scratch file name (replacing it) and gives its
// path, for a reader to take.
inline std::string writeInput(const char* name, const void* data, size_t size) {
    std::string path = scratchFile(name);
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (fd < 0) fail(__FILE__, __LINE__, "cannot write the input file");
    const char* bytes = static_cast<const char*>(data);
    for (size_t done = 0; done < size;) {
        ssize_t n = write(fd, bytes + done, size - done);
        if (n <= 0) fail(__FILE__, __LINE__, "cannot write the input file");
        done += static_cast<size_t>(n);
    }
    close(fd);
    return path;
}

// The whole content of a file ("" when it cannot be read).
inline std::string readBytes(const std::string& path) {
    std::string out;
    int fd = open(path.c_str(), O_RDONLY);
    if (fd < 0) return out;
    char buffer[4096];
    for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0;)
        out.append(buffer, static_cast<size_t>(n));
    close(fd);
    return out;
}

// The input cut at its NUL bytes: a target that needs more than a file
// (a path and a value besides) takes its pieces from here.
inline std::vector<std::string> pieces(const uint8_t* data, size_t size) {
    std::vector<std::string> out(1);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == 0) {
            out.emplace_back();
        } else {
            out.back().push_back(static_cast<char>(data[i]));
        }
    }
    return out;
}

// Whether the file at path is well-formed XML with a root element, as the
// library's generic reader (getXmlValue) takes any file: for files whose
// family has no reader of its own.
inline bool readsAsXml(const std::string& path) {
    return getXmlValue(path.c_str(), "", nullptr, 0) != -1;  // -1: it does not parse
}

// ---- record checks ---------------------------------------------------------

// A fixed text field holds its terminator within its width.
template <size_t N>
bool terminated(const char (&field)[N]) {
    return std::memchr(field, 0, N) != nullptr;
}

// A heap text is null or at most max bytes long.
inline bool boundedText(const char* text, size_t max = 1023) {
    return !text || std::strlen(text) <= max;
}

// Every byte of the record is zero, as a failed read leaves it.
template <class Record>
bool cleared(const Record& record) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    for (size_t i = 0; i < sizeof record; ++i)
        if (bytes[i]) return false;
    return true;
}

// Whether text (len bytes) is well-formed UTF-8, as every file written must
// be.
inline bool validUtf8(const char* text, size_t len) {
    const auto* s = reinterpret_cast<const unsigned char*>(text);
    for (size_t i = 0; i < len;) {
        unsigned c = s[i];
        size_t n = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : 9;
        if (n > 3 || len - i <= n) return false;  // not a lead byte, or cut short
        if (n == 1 && c < 0xC2) return false;
        for (size_t k = 1; k <= n; ++k)
            if ((s[i + k] & 0xC0) != 0x80) return false;
        if (n == 2 && ((c == 0xE0 && s[i + 1] < 0xA0) || (c == 0xED && s[i + 1] >= 0xA0)))
            return false;
        if (n == 3 &&
            ((c == 0xF0 && s[i + 1] < 0x90) || c > 0xF4 || (c == 0xF4 && s[i + 1] >= 0x90)))
            return false;
        i += n + 1;
    }
    return true;
}

}  // namespace kelfuzz

// Fails the run when a promise does not hold, sanitizers or not.
#define KELFUZZ_CHECK(condition) \
    ((condition) ? (void)0 : ::kelfuzz::fail(__FILE__, __LINE__, #condition))

#ifdef KELFUZZ_LIBFUZZER
#define KELFUZZ_TARGET(name) extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
#else
#define KELFUZZ_TARGET(name)                                                                      \
    static int kelfuzz_body_##name(const uint8_t* data, size_t size);                             \
    static const ::kelfuzz::Registration kelfuzz_registration_##name(#name, kelfuzz_body_##name); \
    static int kelfuzz_body_##name(const uint8_t* data, size_t size)
#endif
