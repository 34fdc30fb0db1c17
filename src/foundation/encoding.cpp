// Conversion between the code pages of files (UTF-8) and records (GBK).
#include <cstring>

#include "core/text.h"
#include "kelProfile.h"

namespace {

char kGbk[] = "gbk";
char kUtf8[] = "UTF-8";
constexpr unsigned long kBufferSize = 1024;

// UTF-8 to GBK into a 1024-byte destination, falling back to a copy of the
// source (cut to 1023 bytes).
char* utf8ToGbkOrCopy(char* src, char* dst) {
    if (!src) return nullptr;
    std::size_t len = std::strlen(src);
    std::memset(dst, 0, kBufferSize);
    if (covert(kGbk, kUtf8, src, len, dst, kBufferSize) == -1 && len > 0) {
        std::size_t n = len < kBufferSize ? len : kBufferSize - 1;
        std::memcpy(dst, src, n);
        dst[n] = 0;
    }
    return dst;
}

}  // namespace

int covert(char* tocode, char* fromcode, const char* in, unsigned long inlen, char* out,
           unsigned long outlen) {
    if (!tocode || !fromcode || !out) return -1;
    // The opposite direction checks a UTF-8 to GBK conversion; it is opened
    // only when it is used.
    kel::Conversion direction(tocode, fromcode), back(fromcode, tocode);
    return direction.run(in, inlen, out, outlen, true, &back);
}

// Both directions' names are historical: each converts UTF-8 to GBK.
char* GBKtoUTF(char* src, char* dst) {
    return utf8ToGbkOrCopy(src, dst);
}

char* UTFtoGBK(char* src, char* dst) {
    return utf8ToGbkOrCopy(src, dst);
}
