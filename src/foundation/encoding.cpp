// Conversion between the code pages of files (UTF-8) and records (GBK).
#include "foundation/encoding.h"

#include <iconv.h>

#include <cstring>
#include <memory>

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

int kel::convertWith(iconv_t cd, const char* in, unsigned long inlen, char* out,
                     unsigned long outlen, bool zeroFill) noexcept {
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
    if (result != 0) return -1;
    // A result that fills the whole buffer has no terminator: it does not fit.
    return outLeft == 0 ? -1 : 0;
}

kel::Conversion::~Conversion() {
    if (cd_ != reinterpret_cast<iconv_t>(-1)) iconv_close(cd_);
}

int kel::Conversion::run(const char* in, unsigned long inlen, char* out,
                         unsigned long outlen) noexcept {
    if (cd_ == reinterpret_cast<iconv_t>(-1)) cd_ = iconv_open(to_, from_);
    if (cd_ == reinterpret_cast<iconv_t>(-1)) return -1;
    return convertWith(cd_, in, inlen, out, outlen, false);
}

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
