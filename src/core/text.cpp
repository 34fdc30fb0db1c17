#include "core/text.h"

#include <cstdlib>

#include "core/memory.h"

namespace kel {

std::size_t fitLength(const char* s, std::size_t len, std::size_t cap, Enc enc) noexcept {
    if (len <= cap) return len;
    const auto* u = reinterpret_cast<const unsigned char*>(s);
    if (enc == Enc::Utf8) {
        // Step back over at most three continuation bytes of the character
        // that the cut would split.
        std::size_t n = cap;
        for (int i = 0; i < 3 && n > 0 && (u[n] & 0xC0) == 0x80; ++i) --n;
        return (u[n] & 0xC0) == 0x80 ? cap : n;
    }
    // GBK: a lead byte from 0x81 takes the next byte with it.
    std::size_t i = 0;
    while (i < cap) {
        std::size_t step = (u[i] >= 0x81 && u[i] <= 0xFE && i + 1 < len) ? 2 : 1;
        if (i + step > cap) break;
        i += step;
    }
    return i;
}

void copyField(char* dst, std::size_t width, const char* src, Enc enc) noexcept {
    if (!dst || width == 0 || !src || !*src) return;
    std::size_t n = fitLength(src, std::strlen(src), width - 1, enc);
    std::memmove(dst, src, n);
    dst[n] = 0;
}

char* dupText(const char* src) noexcept {
    return (src && *src) ? dupBytes(src, std::strlen(src)) : nullptr;
}

bool isUtf8(const char* s) noexcept {
    if (!s) return true;
    const auto* u = reinterpret_cast<const unsigned char*>(s);
    while (*u) {
        unsigned c = *u;
        int more;
        unsigned min;
        if (c < 0x80) {
            ++u;
            continue;
        } else if (c >= 0xC2 && c <= 0xDF) {
            more = 1, min = 0x80;
        } else if (c >= 0xE0 && c <= 0xEF) {
            more = 2, min = 0x800;
        } else if (c >= 0xF0 && c <= 0xF4) {
            more = 3, min = 0x10000;
        } else {
            return false;
        }
        unsigned code = c & (0x3F >> more);
        for (int i = 1; i <= more; ++i) {
            if ((u[i] & 0xC0) != 0x80) return false;
            code = (code << 6) | (u[i] & 0x3F);
        }
        if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
        u += more + 1;
    }
    return true;
}

namespace {
char* copyBounded(const char* src, Enc enc) noexcept {
    return dupBytes(src, fitLength(src, strnlen(src, kMaxHeapText + 1), kMaxHeapText, enc));
}
}  // namespace

char* dupBounded(const char* src, Enc enc) noexcept {
    return (src && *src) ? copyBounded(src, enc) : nullptr;
}

bool replaceText(char*& field, const char* text, Enc enc) noexcept {
    // Copied before the old text is released, which text may point into.
    char* copy = text ? copyBounded(text, enc) : nullptr;
    std::free(field);
    field = copy;
    return copy || !text;
}

char* formatInt(int value, char* buffer, int radix) noexcept {
    static const char kDigits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    if (radix < 2 || radix > 36) {
        buffer[0] = 0;
        return buffer;
    }
    // The magnitude is taken unsigned so that the smallest int has one too.
    unsigned magnitude =
        value < 0 ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
    char* p = buffer;
    do {
        *p++ = kDigits[magnitude % static_cast<unsigned>(radix)];
        magnitude /= static_cast<unsigned>(radix);
    } while (magnitude != 0);
    if (value < 0) *p++ = '-';
    *p = 0;
    for (char *first = buffer, *last = p - 1; first < last; ++first, --last) {
        char c = *first;
        *first = *last;
        *last = c;
    }
    return buffer;
}

int32_t parseInt(const char* text) noexcept {
    return (text && *text) ? std::atoi(text) : 0;
}

int convertWith(iconv_t cd, const char* in, unsigned long inlen, char* out, unsigned long outlen,
                bool zeroFill) noexcept {
    // Start from the initial state, whatever an earlier failure left.
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    if (zeroFill) {
        std::memset(out, 0, outlen);
    } else if (outlen > 0) {
        out[0] = 0;
    }
    char empty[] = "";
    char* inPtr = in ? const_cast<char*>(in) : empty;
    std::size_t inLeft = in ? inlen : 0;
    char* outPtr = out;
    std::size_t outLeft = outlen;
    std::size_t result = iconv(cd, &inPtr, &inLeft, &outPtr, &outLeft);
    if (!zeroFill && outLeft > 0) *outPtr = 0;
    // A result that fills the whole buffer has no room for its terminator:
    // it does not fit, and its last byte gives way to the terminator.
    if (outLeft == 0) {
        if (outlen > 0) out[outlen - 1] = 0;
        return -1;
    }
    return result != 0 ? -1 : 0;
}

Conversion::~Conversion() {
    if (cd_ != reinterpret_cast<iconv_t>(-1)) iconv_close(cd_);
}

int Conversion::run(const char* in, unsigned long inlen, char* out, unsigned long outlen) noexcept {
    if (cd_ == reinterpret_cast<iconv_t>(-1)) cd_ = iconv_open(to_, from_);
    if (cd_ == reinterpret_cast<iconv_t>(-1)) return -1;
    return convertWith(cd_, in, inlen, out, outlen, false);
}

namespace {
// Whether the first len bytes of s are ASCII, which both code pages write
// as the same bytes.
bool isAscii(const char* s, std::size_t len) noexcept {
    for (std::size_t i = 0; i < len; ++i)
        if (static_cast<unsigned char>(s[i]) >= 0x80) return false;
    return true;
}
}  // namespace

const char* Converter::convert(Conversion& direction, const char* in) noexcept {
    std::size_t len = std::strlen(in);
    if (!isAscii(in, len)) return direction.run(in, len, buf_, kSize) == 0 ? buf_ : nullptr;
    // Copied as iconv would convert it, without its cost: a text that
    // leaves no room for the terminator does not fit.
    if (len >= kSize) return nullptr;
    std::memcpy(buf_, in, len + 1);
    return buf_;
}

RecordText Converter::toRecord(const char* utf8) noexcept {
    if (const char* converted = toRecordOrNull(utf8)) return {converted, Enc::Gbk};
    return {utf8, Enc::Utf8};
}

const char* Converter::toRecordOrNull(const char* utf8) noexcept {
    return utf8 ? convert(toGbk_, utf8) : nullptr;
}

const char* Converter::toFile(const char* gbk) noexcept {
    const char* converted = gbk ? convert(toUtf8_, gbk) : nullptr;
    return converted ? converted : "";
}

}  // namespace kel
