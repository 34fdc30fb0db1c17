// Dotted-path values: the input is a file, optionally followed by a NUL, a
// dotted path, another NUL and a value. Both getXmlValue overloads read the
// value (the bounded one into buffers of every interesting size, each
// exactly as large as it says), then setXmlValue writes the value and the
// file is read again.
#include <cstring>
#include <memory>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

// The bounded getXmlValue into a buffer of exactly size bytes: the result
// must be the one expected (the value's length, or -2 for no element), and
// the copy agree with the value's full text and never cut a character.
void checkBounded(const char* file, const char* path, const std::string& full, long result,
                  unsigned long size) {
    std::unique_ptr<char[]> out(size ? new char[size] : nullptr);
    if (size) std::memset(out.get(), 'u', size);
    long needed = getXmlValue(file, path, out.get(), size);
    KELFUZZ_CHECK(needed == result);
    if (size == 0) return;
    size_t len = strnlen(out.get(), size);
    KELFUZZ_CHECK(len < size);
    KELFUZZ_CHECK(full.compare(0, len, out.get(), len) == 0);
    if (full.size() < size) KELFUZZ_CHECK(len == full.size());
    // Cut only between characters: what follows the copy starts one.
    if (len < full.size()) KELFUZZ_CHECK((static_cast<unsigned char>(full[len]) & 0xC0) != 0x80);
}

// Text that XML holds as it is: valid UTF-8 without ampersands, control
// characters other than tab and line feed, or the two non-characters.
bool plainText(const char* text) {
    for (const char* c = text; *c; ++c)
        if (*c == '&' || (static_cast<unsigned char>(*c) < 0x20 && *c != '\t' && *c != '\n'))
            return false;
    // U+FFFE and U+FFFF are no characters of XML either.
    std::string t(text);
    if (t.find("\xEF\xBF\xBE") != std::string::npos || t.find("\xEF\xBF\xBF") != std::string::npos)
        return false;
    return kelfuzz::validUtf8(text, std::strlen(text));
}

}  // namespace

KELFUZZ_TARGET(value) {
    std::vector<std::string> parts = kelfuzz::pieces(data, size);
    // Without a path of its own the input is a whole file (a NUL in it then
    // makes it malformed, as it would be on disk).
    bool own = parts.size() >= 3;
    std::string file = kelfuzz::writeInput("input.xml", data, own ? parts[0].size() : size);
    const char* path = own ? parts[1].c_str() : "Main.Name";
    const char* value = own ? parts[2].c_str() : "Rock & Roll";

    // The whole value, as the bounded overload measures it.
    long needed = getXmlValue(file.c_str(), path, nullptr, 0);
    int plain = getXmlValue(file.c_str(), path, nullptr);
    if (needed == -1) {  // the file does not parse
        KELFUZZ_CHECK(plain == 1);
        KELFUZZ_CHECK(setXmlValue(file.c_str(), path, value) == 1);
        return 0;
    }
    KELFUZZ_CHECK(plain == 0);
    bool found = needed != -2;
    if (!found) needed = 0;
    std::vector<char> whole(static_cast<size_t>(needed) + 1, 'u');
    KELFUZZ_CHECK(getXmlValue(file.c_str(), path, whole.data(), whole.size()) ==
                  (found ? needed : -2));
    std::string full(whole.data());
    KELFUZZ_CHECK(full.size() == static_cast<size_t>(needed));
    KELFUZZ_CHECK(kelfuzz::validUtf8(full.data(), full.size()));

    // The three-argument overload copies the same value whole.
    std::vector<char> plainOut(full.size() + 2, 'u');
    plainOut.back() = 0;
    KELFUZZ_CHECK(getXmlValue(file.c_str(), path, plainOut.data()) == 0);
    if (needed > 0) KELFUZZ_CHECK(full == plainOut.data());

    const unsigned long length = full.size();
    for (unsigned long cut : {1ul, 2ul, 3ul, 4ul, 7ul, length, length + 1})
        checkBounded(file.c_str(), path, full, found ? needed : -2, cut);

    // A value set never makes the file unreadable: one XML cannot hold is
    // refused and the file left as it was, a plain one reads back as set
    // wherever the path names an element.
    std::string before = kelfuzz::readBytes(file);
    int set = setXmlValue(file.c_str(), path, value);
    KELFUZZ_CHECK(set == 0 || set == 1);
    if (plainText(value)) KELFUZZ_CHECK(set == 0);
    if (set == 1) KELFUZZ_CHECK(kelfuzz::readBytes(file) == before);
    std::vector<char> back(std::strlen(value) + 1);
    long after = getXmlValue(file.c_str(), path, back.data(), back.size());
    KELFUZZ_CHECK(after != -1);
    if (needed > 0 && plainText(value))
        KELFUZZ_CHECK(after == static_cast<long>(std::strlen(value)) &&
                      std::strcmp(back.data(), value) == 0);
    return 0;
}
