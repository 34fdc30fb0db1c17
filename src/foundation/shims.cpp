// Small string and number helpers that make what the XML parser returns
// safe to copy into record fields, and stand-ins for functions the host
// platform's C library lacks.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "kelProfile.h"

int kelAtoi(char* text) {
    return (text && *text) ? std::atoi(text) : 0;
}

char* kelStrdup(char* text) {
    return (text && *text) ? strdup(text) : nullptr;
}

void kelStrcpy(char* dst, const char* src) {
    if (dst && src && *src) std::strcpy(dst, src);
}

unsigned long kelStrlen(char* text) {
    return text ? std::strlen(text) : 0;
}

void strreverse(char* first, char* last) {
    if (!first || !last) return;
    while (first < last) {
        char c = *first;
        *first++ = *last;
        *last-- = c;
    }
}

char* itoa(int value, char* buffer, int radix) {
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
    strreverse(buffer, p - 1);
    return buffer;
}

int _snprintf_s(char* buffer, int size, int /*count*/, const char* format, ...) {
    va_list args;
    va_start(args, format);
    int written;
    if (size > 0) {
        written = std::vsnprintf(buffer, static_cast<std::size_t>(size), format, args);
        if (written >= size) written = size - 1;
    } else {
        written = std::vsprintf(buffer, format, args);
    }
    va_end(args);
    return written;
}

int _countof(char* /*text*/) {
    return 0;
}

void saveFree(void* pointer) {
    if (pointer) std::free(pointer);
}

int getChildCount(xmlNode* node) {
    int count = 0;
    for (xmlNode* child = node ? node->children : nullptr; child; child = child->next) ++count;
    return count;
}
