// Record text in the form kelprofile shows it and takes it back: UTF-8,
// with the bytes that have no character of their field's code as \xNN.
#pragma once

#include <cstddef>
#include <string>

#include "tool.h"

namespace tool {

// Converts text between the code sets "UTF-8" and "gbk" as the library
// does; false when it has no form in the target.
bool convert(const char* to, const char* from, const std::string& in, std::string& out);

// Record text as shown: UTF-8, converted from GBK for a GBK field. A byte
// with no character of the field's code is shown as \xNN, and a backslash
// that would read as such as \x5C, so that every record text has one shown
// form and back (fromShown).
std::string shown(const char* text, std::size_t width, Code code);
// The record bytes of a shown text; false with why when it has none (a
// character without a GBK form, a NUL or other control character).
bool fromShown(const std::string& text, Code code, std::string& bytes, std::string& why);

}  // namespace tool
