// Small string and number helpers that make what the XML parser returns
// safe to copy into record fields, and stand-ins for functions the host
// platform's C library lacks.
#include <libxml/tree.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/text.h"
#include "kelProfile.h"

int kelAtoi(char* text) {
    return kel::parseInt(text);
}

char* kelStrdup(char* text) {
    return kel::dupText(text);
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
    return kel::formatInt(value, buffer, radix);
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
