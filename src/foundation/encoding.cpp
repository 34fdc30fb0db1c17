// Conversion between the code pages of files (UTF-8) and records (GBK).
#include <iconv.h>

#include <cstring>
#include <memory>

#include "core/text.h"
#include "kelProfile.h"

namespace {

struct IconvCloser {
    void operator()(void* cd) const noexcept { iconv_close(static_cast<iconv_t>(cd)); }
};
using IconvHandle = std::unique_ptr<void, IconvCloser>;

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
    iconv_t cd = iconv_open(tocode, fromcode);
    if (cd == reinterpret_cast<iconv_t>(-1)) return -1;
    IconvHandle handle(cd);
    return kel::convertWith(cd, in, inlen, out, outlen, true);
}

// Both directions' names are historical: each converts UTF-8 to GBK.
char* GBKtoUTF(char* src, char* dst) {
    return utf8ToGbkOrCopy(src, dst);
}

char* UTFtoGBK(char* src, char* dst) {
    return utf8ToGbkOrCopy(src, dst);
}
