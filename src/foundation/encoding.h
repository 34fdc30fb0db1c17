// The conversion step shared by covert and the readers' and writers'
// conversion buffer: one iconv call over the whole input into a zeroed
// buffer, with the same rules for what counts as a failure.
#pragma once

#include <iconv.h>

namespace kel {

// Converts inlen bytes of in into out (outlen bytes) with an open
// descriptor. 0 on success; -1 when the input is invalid or cut short, when
// anything was converted irreversibly, or when the result leaves no room
// for its terminator. The result, whole or partial, is terminated: by
// zeroing all of out first when zeroFill is set (what covert promises its
// callers), else by one terminator after it.
int convertWith(iconv_t cd, const char* in, unsigned long inlen, char* out, unsigned long outlen,
                bool zeroFill) noexcept;

// A conversion direction whose descriptor is opened at its first use and
// kept for the rest of one read or write, so that a file with thousands of
// texts does not open and close a descriptor for each of them.
class Conversion {
public:
    Conversion(const char* tocode, const char* fromcode) noexcept : to_(tocode), from_(fromcode) {}
    ~Conversion();
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    // As covert, without zeroing the rest of out: 0, or -1 when the
    // descriptor cannot be opened (out is then left alone) or the
    // conversion fails.
    int run(const char* in, unsigned long inlen, char* out, unsigned long outlen) noexcept;

private:
    const char* to_;
    const char* from_;
    iconv_t cd_ = reinterpret_cast<iconv_t>(-1);
};

}  // namespace kel
