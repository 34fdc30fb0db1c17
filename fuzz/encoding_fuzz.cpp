// Encoding: covert in both directions between UTF-8 and GBK into buffers of
// many sizes, each exactly as large as covert is told, and GBKtoUTF and
// UTFtoGBK (both UTF-8 to GBK, falling back to a copy) of the input as a
// terminated text. The first byte of the input picks the buffer sizes.
#include <cstring>
#include <memory>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

char kGbk[] = "gbk";
char kUtf8[] = "UTF-8";

// covert into a heap buffer of exactly size bytes: a conversion that
// succeeds is terminated within the buffer; what converted is returned (""
// for a failure).
std::string convert(char* to, char* from, const std::string& in, unsigned long size) {
    std::unique_ptr<char[]> out(new char[size ? size : 1]);
    std::memset(out.get(), 'u', size ? size : 1);
    int rc = covert(to, from, in.data(), in.size(), size ? out.get() : nullptr, size);
    KELFUZZ_CHECK(rc == 0 || rc == -1);
    if (size == 0) {
        KELFUZZ_CHECK(rc == -1);
        return "";
    }
    if (rc != 0) return "";
    KELFUZZ_CHECK(strnlen(out.get(), size) < size);
    return std::string(out.get());
}

// GBKtoUTF or UTFtoGBK: the destination holds 1024 bytes, the result is
// terminated within them.
void checkHistorical(char* (*convert)(char*, char*), std::string text) {
    std::unique_ptr<char[]> dst(new char[1024]);
    KELFUZZ_CHECK(convert(text.data(), dst.get()) == dst.get());
    KELFUZZ_CHECK(strnlen(dst.get(), 1024) < 1024);
    KELFUZZ_CHECK(convert(nullptr, dst.get()) == nullptr);
}

}  // namespace

KELFUZZ_TARGET(encoding) {
    if (size == 0) return 0;
    const unsigned long sizes[] = {0, 1, 2, 3, 4, 5, 8, 16, 64, 1023, 1024, 4096};
    unsigned long pick = sizes[data[0] % (sizeof sizes / sizeof sizes[0])];
    std::string in(reinterpret_cast<const char*>(data) + 1, size - 1);
    bool text = in.find('\0') == std::string::npos;

    for (unsigned long outlen : {pick, pick + 1, static_cast<unsigned long>(4 * in.size() + 1)}) {
        std::string gbk = convert(kGbk, kUtf8, in, outlen);
        std::string utf8 = convert(kUtf8, kGbk, in, outlen);
        // What converts to UTF-8 is UTF-8; text that converted to GBK comes
        // back as it was.
        KELFUZZ_CHECK(kelfuzz::validUtf8(utf8.data(), utf8.size()));
        if (text && !gbk.empty()) {
            std::string again = convert(kUtf8, kGbk, gbk, 4 * gbk.size() + 1);
            KELFUZZ_CHECK(again == in);
        }
    }
    // Unknown code sets convert nothing.
    char unknown[] = "no-such-code-set";
    KELFUZZ_CHECK(convert(unknown, kUtf8, in, 64).empty());

    std::string terminatedText(in.c_str());
    checkHistorical(GBKtoUTF, terminatedText);
    checkHistorical(UTFtoGBK, terminatedText);
    return 0;
}
