#include "core/text.h"

#include <strings.h>

#include <algorithm>
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
    if (src) copyField(dst, width, src, std::strlen(src), enc);
}

void copyField(char* dst, std::size_t width, const char* src, std::size_t len, Enc enc) noexcept {
    if (!dst || width == 0 || !src || len == 0) return;
    std::size_t n = fitLength(src, len, width - 1, enc);
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
    if (!text || !*text) return 0;
    // Nine digits at most and nothing else, as the files write numbers: the
    // value atoi gives, without the cost of its call.
    int32_t value = 0;
    const char* p = text;
    for (; p - text < 9 && *p >= '0' && *p <= '9'; ++p) value = value * 10 + (*p - '0');
    return *p == 0 ? value : std::atoi(text);
}

namespace {

bool named(const char* name, const char* a, const char* b = nullptr) noexcept {
    return strcasecmp(name, a) == 0 || (b && strcasecmp(name, b) == 0);
}

// The euro sign: U+20AC in UTF-8, and GBK's one byte 0x80 (code page 936).
constexpr char kEuroUtf8[] = "\xE2\x82\xAC";
constexpr std::size_t kEuroUtf8Len = 3;
constexpr char kEuroGbk = '\x80';

// Where the next euro sign starts in [p, end), or end. In GBK the byte
// 0x80 is one only where a character starts: after a lead byte it is the
// second byte of another character.
const char* nextEuro(const char* p, const char* end, bool gbk) noexcept {
    if (gbk) {
        while (p < end) {
            auto c = static_cast<unsigned char>(*p);
            if (c == 0x80) return p;
            p += (c >= 0x81 && c <= 0xFE && p + 1 < end) ? 2 : 1;
        }
        return end;
    }
    while (end - p >= 3) {
        const void* lead = std::memchr(p, kEuroUtf8[0], static_cast<std::size_t>(end - p - 2));
        if (!lead) break;
        p = static_cast<const char*>(lead);
        if (std::memcmp(p, kEuroUtf8, kEuroUtf8Len) == 0) return p;
        ++p;
    }
    return end;
}

// Whether the first len bytes of s are ASCII, which both code pages write
// as the same bytes. Taken eight bytes at a time, the last eight (which may
// overlap the ones before) included, so no byte is looked at alone unless
// the text is shorter than eight.
bool isAscii(const char* s, std::size_t len) noexcept {
    constexpr std::uint64_t kHighBits = 0x8080808080808080u;
    std::uint64_t word;
    if (len < sizeof word) {
        for (std::size_t i = 0; i < len; ++i)
            if (static_cast<unsigned char>(s[i]) >= 0x80) return false;
        return true;
    }
    std::uint64_t high = 0;
    for (std::size_t i = 0; i + sizeof word <= len; i += sizeof word) {
        std::memcpy(&word, s + i, sizeof word);
        high |= word;
    }
    std::memcpy(&word, s + len - sizeof word, sizeof word);
    return ((high | word) & kHighBits) == 0;
}

}  // namespace

// The characters whose GBK form converts back to exactly themselves
// wherever the library runs, so that checking them can find nothing:
// ASCII, the euro sign (which the library maps itself, to the one byte
// 0x80) and the CJK Unified Ideographs from U+4E00 to U+9FA5. Those 20,902
// ideographs are GBK's own hanzi block, and every GBK table (code page 936,
// GB 18030, glibc's, GNU libiconv's, macOS's) maps each of them to one
// two-byte code and back the same way. Nothing else is taken on trust:
// punctuation, fullwidth or not, is exactly what macOS 14.0 changes
// (，：（）！ became ASCII; the ideographic full stop and space are
// checked too, for want of proof that no converter changes them), and the
// other symbols are where the tables disagree.
//
// The longest prefix of a UTF-8 text (len bytes) made of such characters:
// its length in bytes, and in gbkLen the length of its GBK form. A
// converter converts character by character, so the GBK form of the whole
// text starts with that of the prefix, and the text converts back exactly
// when the rest of its GBK form gives back the rest of the text.
namespace {

// The longest prefix of a UTF-8 text made of characters sure to convert
// back: its length in bytes and in GBK, and whether it holds a euro sign.
struct SurePrefix {
    std::size_t len;
    std::size_t gbkLen;
    bool euro;
};

SurePrefix surePrefix(const char* s, std::size_t len) noexcept {
    const auto* begin = reinterpret_cast<const unsigned char*>(s);
    const unsigned char* p = begin;
    const unsigned char* end = begin + len;
    // Each ASCII byte is one GBK byte, each ideograph two, the euro sign
    // one: the GBK form is as long as the text less one byte a character
    // beyond ASCII, and less one more for each euro sign.
    std::size_t fewer = 0;
    // A character of three bytes starts before this.
    const unsigned char* lastStart = len >= 3 ? end - 2 : begin;
    bool euro = false;
    while (p < end) {
        if (*p < 0x80) {
            ++p;
            continue;
        }
        if (p >= lastStart) break;
        // The three bytes as one number: UTF-8 keeps the order of code
        // points, so with both continuation bytes well formed, U+4E00
        // (E4 B8 80) to U+9FA5 (E9 BE A5) is one range of numbers.
        std::uint32_t c = std::uint32_t{p[0]} << 16 | std::uint32_t{p[1]} << 8 | p[2];
        if ((c & 0xC0C0) != 0x8080) break;
        if (c - 0xE4B880u <= 0xE9BEA5u - 0xE4B880u) {
            fewer += 1;
        } else if (c == 0xE282AC) {
            fewer += 2;
            euro = true;
        } else {
            break;
        }
        p += 3;
    }
    std::size_t sure = static_cast<std::size_t>(p - begin);
    return {sure, sure - fewer, euro};
}

}  // namespace

std::size_t sureToConvertBack(const char* s, std::size_t len, std::size_t& gbkLen) noexcept {
    SurePrefix sure = surePrefix(s, len);
    gbkLen = sure.gbkLen;
    return sure.len;
}

namespace {

// One call of the converter over len bytes of in, appended at out; false
// when it stops early, runs out of room or replaced anything.
bool convertRun(iconv_t cd, const char* in, std::size_t len, char*& out,
                std::size_t& room) noexcept {
    if (len == 0) return true;
    char* inPtr = const_cast<char*>(in);
    std::size_t inLeft = len;
    return iconv(cd, &inPtr, &inLeft, &out, &room) == 0;
}

}  // namespace

Conversion::Conversion(const char* tocode, const char* fromcode) noexcept
    : to_(tocode), from_(fromcode), pair_(Pair::Other) {
    bool toGbk = named(tocode, "gbk"), toUtf8 = named(tocode, "UTF-8", "UTF8");
    bool fromGbk = named(fromcode, "gbk"), fromUtf8 = named(fromcode, "UTF-8", "UTF8");
    if (toGbk && fromUtf8) pair_ = Pair::ToGbk;
    if (toUtf8 && fromGbk) pair_ = Pair::ToUtf8;
}

Conversion::Conversion(Between direction) noexcept
    : to_(direction == Between::Utf8ToGbk ? "gbk" : "UTF-8"),
      from_(direction == Between::Utf8ToGbk ? "UTF-8" : "gbk"),
      pair_(direction == Between::Utf8ToGbk ? Pair::ToGbk : Pair::ToUtf8) {}

Conversion::~Conversion() {
    if (cd_ != reinterpret_cast<iconv_t>(-1)) iconv_close(cd_);
}

bool Conversion::open() noexcept {
    if (cd_ == reinterpret_cast<iconv_t>(-1)) {
        cd_ = iconv_open(to_, from_);
        initial_ = true;
    }
    return cd_ != reinterpret_cast<iconv_t>(-1);
}

bool Conversion::runPair(const char* in, std::size_t inlen, char*& out,
                         std::size_t& room) noexcept {
    bool fromGbk = pair_ == Pair::ToUtf8;
    const char* end = in + inlen;
    for (const char* p = in;;) {
        const char* euro = nextEuro(p, end, fromGbk);
        if (!convertRun(cd_, p, static_cast<std::size_t>(euro - p), out, room)) return false;
        if (euro == end) return true;
        std::size_t n = fromGbk ? kEuroUtf8Len : 1;
        if (room < n) return false;
        if (fromGbk) {
            std::memcpy(out, kEuroUtf8, kEuroUtf8Len);
        } else {
            *out = kEuroGbk;
        }
        out += n;
        room -= n;
        p = euro + (fromGbk ? 1 : kEuroUtf8Len);
    }
}

int Conversion::run(const char* in, unsigned long inlen, char* out, unsigned long outlen,
                    bool zeroFill, Conversion* back, std::size_t* written) noexcept {
    if (!open()) return -1;
    // Start from the initial state, whatever an earlier failure left.
    if (!initial_) iconv(cd_, nullptr, nullptr, nullptr, nullptr);
    if (zeroFill) std::memset(out, 0, outlen);
    if (written) *written = 0;
    // A result that fills the whole buffer has no room for its terminator:
    // it does not fit.
    if (outlen == 0) return -1;
    const char* text = in ? in : "";
    std::size_t len = in ? inlen : 0;
    char* end = out;
    std::size_t room = outlen - 1;
    // A UTF-8 to GBK conversion that is checked: what of the text is sure
    // to convert back is known first, so a text of ASCII and ideographs
    // alone is neither searched for euro signs nor checked.
    bool checked = pair_ == Pair::ToGbk && back;
    SurePrefix sure = checked ? surePrefix(text, len) : SurePrefix{0, 0, false};
    bool plain = pair_ == Pair::Other || (checked && sure.len == len && !sure.euro);
    bool ok = plain ? convertRun(cd_, text, len, end, room) : runPair(text, len, end, room);
    *end = 0;
    std::size_t length = static_cast<std::size_t>(end - out);
    if (written) *written = length;
    if (ok && checked && sure.len < len)
        ok = sure.gbkLen <= length && convertsBack(text + sure.len, len - sure.len,
                                                   out + sure.gbkLen, length - sure.gbkLen, *back);
    // UTF-8 and GBK keep no shift state: a conversion between them that
    // succeeded leaves the initial state. Any other pair may not.
    initial_ = ok && pair_ != Pair::Other;
    return ok ? 0 : -1;
}

namespace {

// Bytes of the UTF-8 character whose first byte is lead (1 for a byte that
// starts none).
std::size_t charLength(unsigned char lead) noexcept {
    return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
}

// A character's bytes (at most four) as one number: distinct characters
// give distinct numbers, since the first byte tells how many follow.
std::uint32_t packed(const char* s, std::size_t n) noexcept {
    std::uint32_t c = 0;
    for (std::size_t i = 0; i < n; ++i) c = c << 8 | static_cast<unsigned char>(s[i]);
    return c;
}

}  // namespace

bool Conversion::convertsBack(const char* rest, std::size_t restLen, const char* converted,
                              std::size_t length, Conversion& back) noexcept {
    // The characters of the rest that could fail: when each has passed a
    // check of its own already, so has the rest.
    bool allChecked = true;
    std::uint32_t only = 0;  // the one character that could fail, or 0
    bool several = false;
    for (std::size_t i = 0;;) {
        i += surePrefix(rest + i, restLen - i).len;
        if (i == restLen) break;
        std::size_t n = charLength(static_cast<unsigned char>(rest[i]));
        if (n > restLen - i) n = restLen - i;
        std::uint32_t c = packed(rest + i, n);
        allChecked = allChecked &&
                     std::find(checked_, checked_ + checkedCount_, c) != checked_ + checkedCount_;
        several = several || (only != 0 && c != only);
        only = c;
        i += n;
    }
    if (allChecked) return true;
    bool ok = back.givesBack(converted, length, rest, restLen);
    // With one character that could fail, among others that cannot, the
    // rest gives back the text only if that character gives back itself:
    // it then passes wherever it stands. With two, one's extra character
    // could stand in for one the other lost, so neither is taken as passed.
    if (ok && !several && checkedCount_ < kCheckedCapacity) checked_[checkedCount_++] = only;
    return ok;
}

bool Conversion::givesBack(const char* converted, std::size_t len, const char* source,
                           std::size_t sourceLen) noexcept {
    // What converts back to the source is as long as it, so a buffer one
    // byte longer holds it; anything longer is not the source.
    char local[2048];
    HeapPtr<char> heap;
    char* buffer = local;
    if (sourceLen + 1 > sizeof local) {
        heap.reset(static_cast<char*>(allocZeroed(sourceLen + 1, 1)));
        if (!heap) return false;
        buffer = heap.get();
    }
    std::size_t length = 0;
    return run(converted, len, buffer, sourceLen + 1, false, nullptr, &length) == 0 &&
           length == sourceLen && std::memcmp(buffer, source, sourceLen) == 0;
}

const char* Converter::convert(Conversion& direction, const char* in, Conversion* back) noexcept {
    std::size_t len = std::strlen(in);
    if (!isAscii(in, len))
        return direction.run(in, len, buf_, kSize, false, back) == 0 ? buf_ : nullptr;
    // Copied as iconv would convert it, without its cost: a text that
    // leaves no room for the terminator does not fit.
    if (len >= kSize) return nullptr;
    std::memcpy(buf_, in, len + 1);
    return buf_;
}

RecordText Converter::toRecord(const char* utf8) noexcept {
    if (!utf8) return {nullptr, Enc::Utf8, 0};
    std::size_t len = std::strlen(utf8);
    std::size_t converted = len;
    if (const char* text = recordText(utf8, converted)) return {text, Enc::Gbk, converted};
    return {utf8, Enc::Utf8, len};
}

const char* Converter::toRecordOrNull(const char* utf8) noexcept {
    if (!utf8) return nullptr;
    std::size_t len = std::strlen(utf8);
    return recordText(utf8, len);
}

const char* Converter::recordText(const char* utf8, std::size_t& len) noexcept {
    if (!isAscii(utf8, len))
        return toGbk_.run(utf8, len, buf_, kSize, false, &toUtf8_, &len) == 0 ? buf_ : nullptr;
    // ASCII is its own GBK form: the text is taken where it stands, as
    // iconv would convert it, so one that would leave no room for the
    // terminator in the buffer does not fit.
    return len < kSize ? utf8 : nullptr;
}

const char* Converter::toRecordInBuffer(const char* utf8) noexcept {
    const char* text = toRecordOrNull(utf8);
    if (!text || text != utf8) return text;
    // Shorter than the buffer, or it would not have converted.
    std::memcpy(buf_, text, std::strlen(text) + 1);
    return buf_;
}

const char* Converter::toFile(const char* gbk) noexcept {
    if (!gbk) return "";
    // A text a reader kept as it was in the file, because it has no GBK
    // form, goes back to the file as it came; taken as GBK it would turn
    // into other characters (the UTF-8 of "a¦b" reads as GBK "a娄b").
    if (!isAscii(gbk, std::strlen(gbk)) && isUtf8(gbk) && !toRecordOrNull(gbk)) return gbk;
    const char* converted = convert(toUtf8_, gbk, nullptr);
    return converted ? converted : "";
}

}  // namespace kel
