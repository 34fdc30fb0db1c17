// The names of the "displayType" and "valueType" attributes of profile and
// option group items, and the small codes records keep instead.
#include <cstring>

#include "kelProfile.h"

namespace {

// Display names first (codes 20 to 24), then value-type names (1 to 3).
const char* const kTypeNames[] = {"list",        "input", "checkbox", "chooseFile",
                                  "chooseColor", "int",   "string",   "double"};
constexpr int kFirstDisplay = 20;
constexpr unsigned kDisplayCount = 5;
constexpr int kFirstValue = 1;
constexpr unsigned kValueCount = 3;

// Position of text among count names from first, or -1.
int lookup(const char* text, unsigned first, unsigned count) {
    if (!text) return -1;
    for (unsigned i = 0; i < count; ++i)
        if (text[0] == kTypeNames[first + i][0] && std::strcmp(text, kTypeNames[first + i]) == 0)
            return static_cast<int>(i);
    return -1;
}

// The name of code among count names from first; "" outside the range.
// Unsigned arithmetic sends negative codes above the range as well.
const char* nameOf(int code, int firstCode, unsigned first, unsigned count) {
    unsigned i = static_cast<unsigned>(code) - static_cast<unsigned>(firstCode);
    return i < count ? kTypeNames[first + i] : "";
}

}  // namespace

int findDisplayType(char* text) {
    int i = lookup(text, 0, kDisplayCount);
    return i < 0 ? 0 : kFirstDisplay + i;
}

const char* findDisplayStr(int code) {
    return nameOf(code, kFirstDisplay, 0, kDisplayCount);
}

int findValueType(char* text) {
    int i = lookup(text, kDisplayCount, kValueCount);
    return i < 0 ? 0 : kFirstValue + i;
}

const char* findValueType(int code) {
    return nameOf(code, kFirstValue, kDisplayCount, kValueCount);
}
