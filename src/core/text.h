// Text as records hold it: fixed fields cut to fit on a character
// boundary, heap texts, decimal numbers, and the conversion between the
// code pages of files (UTF-8) and records (GBK).
#pragma once

#include <iconv.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/memory.h"

namespace kel {

// ---- fixed fields and heap texts ------------------------------------------

enum class Enc { Utf8, Gbk };

// Longest prefix of s (len bytes) of at most cap bytes that ends on a whole
// character of the encoding.
std::size_t fitLength(const char* s, std::size_t len, std::size_t cap, Enc enc) noexcept;

// Copies src into a field of width bytes, cut to fit; a null or empty src
// leaves the field as it was.
void copyField(char* dst, std::size_t width, const char* src, Enc enc) noexcept;
// As copyField, for a src whose length (len bytes) is known.
void copyField(char* dst, std::size_t width, const char* src, std::size_t len, Enc enc) noexcept;
template <std::size_t N>
void copyField(char (&dst)[N], const char* src, Enc enc = Enc::Utf8) noexcept {
    copyField(dst, N, src, enc);
}
template <std::size_t N>
void copyField(char (&dst)[N], const char* src, std::size_t len, Enc enc) noexcept {
    copyField(dst, N, src, len, enc);
}

// Whether s is valid UTF-8 (no overlong forms, no surrogates, nothing past
// U+10FFFF); a null s is.
bool isUtf8(const char* s) noexcept;

// Heap texts: null stands for an empty text.
constexpr std::size_t kMaxHeapText = 1023;
// A heap copy of src, or null for a null or empty src (and when the copy
// cannot be allocated).
char* dupText(const char* src) noexcept;
// As dupText, cut to at most 1023 bytes on a character boundary.
char* dupBounded(const char* src, Enc enc) noexcept;
// Replaces a heap text by a copy of text (len bytes) cut as by dupBounded
// (an empty text gives an empty copy, a null one null), releasing the old
// one. False when the copy cannot be allocated (the field is then null).
// Inline: a read makes one for every text it keeps.
inline bool replaceText(char*& field, const char* text, std::size_t len, Enc enc) noexcept {
    // Copied before the old text is released, which text may point into.
    char* copy = nullptr;
    if (text)
        copy = dupBytes(text, len <= kMaxHeapText ? len : fitLength(text, len, kMaxHeapText, enc));
    if (field) std::free(field);
    field = copy;
    return copy || !text;
}

// A record's fixed text field as a terminated string, read no further than
// the field's width: writers take record fields through it, so a field the
// host left without a terminator is never read past its end.
template <std::size_t N>
struct FieldText {
    explicit FieldText(const char (&field)[N]) noexcept : FieldText(field, N) {}
    FieldText(const char* field, std::size_t width) noexcept {
        std::size_t n = field ? strnlen(field, width < N ? width : N) : 0;
        if (n) std::memcpy(text, field, n);
        text[n] = 0;
    }
    char text[N + 1];
};
template <std::size_t N>
FieldText<N> field(const char (&f)[N]) noexcept {
    return FieldText<N>(f);
}

// ---- numbers ---------------------------------------------------------------

// value in radix 2 to 36 into buffer (at least 34 bytes), with a leading
// '-' for negative values; the smallest int keeps its full magnitude. An
// unknown radix gives "".
char* formatInt(int value, char* buffer, int radix) noexcept;
// Text as atoi reads it; null or empty gives 0.
int32_t parseInt(const char* text) noexcept;

// Decimal text of a number, as the files hold it.
struct Decimal {
    explicit Decimal(int32_t v) noexcept { formatInt(v, text, 10); }
    char text[16];
};

// ---- code pages ------------------------------------------------------------

// The longest prefix of a UTF-8 text (len bytes) whose characters convert to
// GBK and back alike wherever the library runs (ASCII, the euro sign, the
// ideographs U+4E00 to U+9FA5): its length in bytes, and in gbkLen that of
// its GBK form. A round-trip check converts back only what follows it.
std::size_t sureToConvertBack(const char* s, std::size_t len, std::size_t& gbkLen) noexcept;

// A conversion direction whose descriptor is opened at its first use and
// kept for the rest of one read or write, so that a file with thousands of
// texts does not open and close a descriptor for each of them.
//
// Between UTF-8 and GBK (the names "UTF-8" and "gbk", in any case) two
// rules make a conversion the same on every platform, whatever the
// platform's converter does (glibc's, GNU libiconv's or macOS's own):
//  - the euro sign is GBK's one byte 0x80, as code page 936 has it, in both
//    directions, whether the platform's converter maps it so, refuses it or
//    maps it elsewhere;
//  - a UTF-8 text whose GBK result does not convert back to exactly the
//    text has failed, as an irreversible conversion does, whether or not
//    the converter reports the characters it replaced. Only what follows
//    the text's first characters that every GBK table maps alike (ASCII,
//    the euro sign, the unified ideographs) is converted back: those
//    cannot fail the check (text.cpp says why), and a text of nothing else
//    is not converted back at all. A character that passed the check on
//    its own is not converted back again by the same direction: a read
//    checks the "。" ending most Chinese descriptions once, not once a
//    text.
class Conversion {
public:
    Conversion(const char* tocode, const char* fromcode) noexcept;
    // The two directions between the code pages of files and records,
    // known without comparing names.
    enum class Between : unsigned char { Utf8ToGbk, GbkToUtf8 };
    explicit Conversion(Between direction) noexcept;
    ~Conversion();
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    // As covert: 0, or -1 when the descriptor cannot be opened (out is then
    // left alone), the input is invalid or cut short, anything was replaced
    // or converted irreversibly, or the result leaves no room for its
    // terminator. The result, whole or partial (up to the last character
    // that fits), is terminated: by zeroing all of out first when zeroFill
    // is set, else by one terminator after it; written, when given, takes
    // its length. A UTF-8 to GBK conversion is checked by converting its
    // result back with back, the opposite direction.
    int run(const char* in, unsigned long inlen, char* out, unsigned long outlen,
            bool zeroFill = false, Conversion* back = nullptr,
            std::size_t* written = nullptr) noexcept;

private:
    enum class Pair : unsigned char { Other, ToGbk, ToUtf8 };
    bool open() noexcept;
    // The GBK/UTF-8 pair, converted around its euro signs.
    bool runPair(const char* in, std::size_t inlen, char*& out, std::size_t& room) noexcept;
    // Whether converting converted (len bytes) in this direction gives back
    // exactly source (sourceLen bytes).
    bool givesBack(const char* converted, std::size_t len, const char* source,
                   std::size_t sourceLen) noexcept;
    // The round-trip check, made with back, of the rest of a UTF-8 text
    // from its first character that could fail (restLen bytes), whose GBK
    // form is converted (length bytes).
    bool convertsBack(const char* rest, std::size_t restLen, const char* converted,
                      std::size_t length, Conversion& back) noexcept;

    // Characters (their UTF-8 bytes, packed into one number) that this
    // direction converted to GBK and back to themselves, each alone in
    // what its check converted back: the per-character conversion gives
    // them back wherever they stand.
    static constexpr int kCheckedCapacity = 8;
    std::uint32_t checked_[kCheckedCapacity];
    int checkedCount_ = 0;

    const char* to_;
    const char* from_;
    Pair pair_;
    iconv_t cd_ = reinterpret_cast<iconv_t>(-1);
    bool initial_ = true;  // the descriptor is known to be in its initial state
};

// Text in the encoding a record holds it in, pointing into the converter's
// buffer or into the source (ASCII text, and text kept unconverted): valid
// until the next conversion, and while the source lives. Its length comes
// with it, so that copies need not measure it again.
struct RecordText {
    const char* text;
    Enc enc;
    std::size_t len;  // bytes before the terminator; 0 for a null text
    bool empty() const noexcept { return len == 0; }
    template <std::size_t N>
    void copyTo(char (&dst)[N]) const noexcept {
        copyField(dst, N, text, len, enc);
    }
    // A heap copy of at most 1023 bytes, null when empty.
    char* dup() const noexcept { return dupBounded(text, enc); }
};

// The one 1024-byte conversion buffer of a read or a write, converting as
// covert does.
class Converter {
public:
    static constexpr std::size_t kSize = 1024;
    // File text (UTF-8) to record text (GBK). When the text does not convert,
    // the unconverted text is kept.
    RecordText toRecord(const char* utf8) noexcept;
    // As toRecord, but null when the text does not convert.
    const char* toRecordOrNull(const char* utf8) noexcept;
    // As toRecordOrNull, the result always in the converter's buffer: for
    // a source that goes away before the result is used.
    const char* toRecordInBuffer(const char* utf8) noexcept;
    // Record text (GBK) to file text (UTF-8); "" when it does not convert. A
    // text that is valid UTF-8 and has no GBK form can only be one a reader
    // kept unconverted: it is written back as it stands, as it was read.
    const char* toFile(const char* gbk) noexcept;

private:
    // File text (UTF-8, len bytes) as toRecordOrNull gives it; len then
    // holds the length of the result.
    const char* recordText(const char* utf8, std::size_t& len) noexcept;
    // in converted into the buffer, or null when it does not convert.
    // ASCII text is copied: both code pages write it as the same bytes.
    // A UTF-8 to GBK conversion is checked by converting back with back.
    const char* convert(Conversion& direction, const char* in, Conversion* back) noexcept;

    char buf_[kSize];
    Conversion toGbk_{Conversion::Between::Utf8ToGbk};
    Conversion toUtf8_{Conversion::Between::GbkToUtf8};
};

}  // namespace kel
