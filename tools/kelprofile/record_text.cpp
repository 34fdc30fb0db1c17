#include "record_text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "kelProfile.h"

namespace tool {

bool convert(const char* to, const char* from, const std::string& in, std::string& out) {
    // A byte of either takes at most three of the other.
    std::vector<char> buffer(in.size() * 3 + 2);
    std::string toName = to, fromName = from;
    if (covert(toName.data(), fromName.data(), in.data(), in.size(), buffer.data(),
               buffer.size()) != 0)
        return false;
    out = buffer.data();
    return true;
}

namespace {

bool isHex(char c) {
    return std::strchr("0123456789abcdefABCDEF", c) && c;
}

// Whether text[at] starts "\xNN", which the shown form reserves for bytes.
bool escapeAt(const std::string& text, std::size_t at) {
    return text.compare(at, 2, "\\x") == 0 && at + 3 < text.size() && isHex(text[at + 2]) &&
           isHex(text[at + 3]);
}

void appendByte(std::string& out, unsigned char byte) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "\\x%02X", byte);
    out += hex;
}

// The length of the UTF-8 character at text[at], 0 when the bytes there are
// not one (overlong forms, surrogates and values past U+10FFFF are not).
std::size_t utf8Length(const std::string& text, std::size_t at) {
    auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    unsigned lead = byte(at);
    std::size_t n = lead < 0x80                    ? 1
                    : lead >= 0xC2 && lead <= 0xDF ? 2
                    : lead >= 0xE0 && lead <= 0xEF ? 3
                    : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                   : 0;
    for (std::size_t i = 1; i < n; ++i)
        if ((byte(at + i) & 0xC0) != 0x80) return 0;
    unsigned second = byte(at + 1);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
        (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
        return 0;
    return n;
}

// Marks the backslashes of text that would read as "\xNN".
std::string guardBackslashes(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (escapeAt(text, i))
            out += "\\x5C";
        else
            out += text[i];
    }
    return out;
}

}  // namespace

std::string shown(const char* text, std::size_t width, Code code) {
    if (!text) return "";
    std::string bytes(text, strnlen(text, width));
    std::string whole;
    if (code == Code::Gbk && convert("UTF-8", "gbk", bytes, whole)) return guardBackslashes(whole);
    // Character by character: what has no character of the code as bytes.
    std::string out;
    for (std::size_t i = 0; i < bytes.size();) {
        std::size_t n = 0;
        std::string piece;
        if (static_cast<unsigned char>(bytes[i]) < 0x80) {
            n = 1;
            piece = escapeAt(bytes, i) ? "\\x5C" : bytes.substr(i, 1);
        } else if (code == Code::Utf8) {
            n = utf8Length(bytes, i);
            piece = bytes.substr(i, n);
        } else if (i + 1 < bytes.size() && convert("UTF-8", "gbk", bytes.substr(i, 2), piece)) {
            n = 2;
        }
        if (n == 0) {
            appendByte(out, static_cast<unsigned char>(bytes[i]));
            n = 1;
        } else {
            out += piece;
        }
        i += n;
    }
    return out;
}

bool fromShown(const std::string& text, Code code, std::string& bytes, std::string& why) {
    bytes.clear();
    std::string run;  // characters since the last \xNN, converted as a whole
    auto flush = [&]() {
        std::string converted;
        if (code == Code::Utf8 || convert("gbk", "UTF-8", run, converted)) {
            bytes += code == Code::Utf8 ? run : converted;
            run.clear();
            return true;
        }
        for (std::size_t i = 0; i < run.size();) {
            std::size_t n = std::max<std::size_t>(utf8Length(run, i), 1);
            if (!convert("gbk", "UTF-8", run.substr(i, n), converted)) {
                why = "\"" + run.substr(i, n) + "\" has no GBK form";
                return false;
            }
            i += n;
        }
        why = "the text has no GBK form";
        return false;
    };
    // A NUL would end the text short of what it says.
    if (text.find('\0') != std::string::npos) {
        why = "a control character (U+0000) XML cannot hold";
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (escapeAt(text, i)) {
            if (!flush()) return false;
            bytes += static_cast<char>(std::strtol(text.substr(i + 2, 2).c_str(), nullptr, 16));
            i += 3;
        } else {
            run += text[i];
        }
    }
    if (!flush()) return false;
    for (char c : bytes) {
        unsigned char b = static_cast<unsigned char>(c);
        if (b < 0x20 && b != '\t' && b != '\n' && b != '\r') {
            char hex[8];
            std::snprintf(hex, sizeof hex, "%02X", b);
            why = std::string("a control character (U+00") + hex + ") XML cannot hold";
            return false;
        }
    }
    return true;
}

}  // namespace tool
