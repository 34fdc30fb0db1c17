#include "checks.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "kelProfile.h"
#include "record_text.h"
#include "xml.h"

namespace tool {

std::string quote(const std::string& value) {
    std::string shown = value;
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; },
        ' ');
    if (shown.size() <= 40) return '\'' + shown + '\'';
    std::size_t end = 37;
    while (end > 0 && (static_cast<unsigned char>(shown[end]) & 0xC0) == 0x80) --end;
    return '\'' + shown.substr(0, end) + "...'";
}

bool plainNumber(const std::string& text) {
    std::size_t i = 0;
    while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) ++i;
    std::size_t digits = i;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i;
    if (i == digits) return false;
    while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
    return i == text.size();
}

std::string outside32Bits(const std::string& text) {
    if (!plainNumber(text)) return "";
    errno = 0;
    long long value = std::strtoll(text.c_str(), nullptr, 10);
    bool beyond64 = errno == ERANGE;
    if (!beyond64 && value >= INT32_MIN && value <= INT32_MAX) return "";
    // Past 64 bits a 64-bit host's own reading stops at its bound too.
    auto low = static_cast<int32_t>(static_cast<uint32_t>(static_cast<unsigned long long>(value)));
    int32_t bounded = value < 0 ? INT32_MIN : INT32_MAX;
    return "reads as " + std::to_string(low) + " on a 64-bit host and as " +
           std::to_string(bounded) + " on a 32-bit one";
}

GbkForm toGbk(const std::string& utf8Text, std::string& gbk) {
    if (!convert("gbk", "UTF-8", utf8Text, gbk)) return GbkForm::None;
    return gbk.size() < KELPROFILE_CONVERSION ? GbkForm::Fits : GbkForm::TooLong;
}

std::string childPath(const std::string& path, const xmlNode* child) {
    return path.empty() ? nameOf(child) : path + '/' + nameOf(child);
}

void Lint::warn(const xmlNode* at, const std::string& message) {
    found_.emplace_back(at ? xmlGetLineNo(at) : 0, message);
}

void Lint::text(const xmlNode* at, const std::string& what, const std::string& value,
                std::size_t width, bool gbk) {
    std::string stored = value;
    bool ascii = std::all_of(value.begin(), value.end(),
                             [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (gbk && !ascii) {
        std::string converted;
        GbkForm form = toGbk(value, converted);
        if (form == GbkForm::Fits) {
            stored = converted;
        } else if (form == GbkForm::None) {
            warn(at, what + ": text " + quote(value) +
                         " has no GBK form; the record keeps it unconverted "
                         "(UTF-8 bytes where GBK text is expected)");
        } else {
            warn(at, what + ": text of " + std::to_string(converted.size()) +
                         " bytes in GBK, more than the " +
                         std::to_string(KELPROFILE_CONVERSION - 1) +
                         " a conversion takes; the record keeps it unconverted "
                         "(UTF-8 bytes where GBK text is expected)");
        }
    }
    if (stored.size() >= width)
        warn(at, what + ": cut to fit its field: the file holds " + std::to_string(stored.size()) +
                     " bytes" + (gbk && stored != value ? " in GBK" : "") +
                     ", the record keeps at most " + std::to_string(width - 1));
}

void Lint::number(const xmlNode* at, const std::string& what, const std::string& value) {
    if (value.empty()) return;
    if (!plainNumber(value)) {
        warn(at, what + ": the number " + quote(value) + " reads as " +
                     std::to_string(std::atoi(value.c_str())));
        return;
    }
    std::string beyond = outside32Bits(value);
    if (!beyond.empty())
        warn(at, what + ": the number " + quote(value) + " does not fit in 32 bits: it " + beyond);
}

void Lint::typeWord(const xmlNode* at, const std::string& what, const std::string& word,
                    bool display) {
    std::string copy = word;
    int code = display ? findDisplayType(copy.data()) : findValueType(copy.data());
    if (code == 0)
        warn(at, what + ": '" + word + "' is not a " + (display ? "display" : "value") +
                     " type word the reader knows; it reads as 0");
}

void Lint::attributes(const xmlNode* element, const std::string& where, const Taken* taken) {
    for (const xmlAttr* a = element->properties; a; a = a->next) {
        const char* name = reinterpret_cast<const char*>(a->name);
        const Taken* t = taken;
        while (t->name && std::strcmp(t->name, name) != 0) ++t;
        std::string what = where + '@' + name;
        if (!t->name) {
            warn(element, what + ": not read (the reader ignores this attribute)");
            continue;
        }
        std::string value = attribute(element, name);
        switch (t->kind) {
            case Kind::Text:
                text(element, what, value, t->width, false);
                break;
            case Kind::Number:
                number(element, what, value);
                break;
            case Kind::DisplayType:
            case Kind::ValueType:
                typeWord(element, what, value, t->kind == Kind::DisplayType);
                break;
        }
    }
}

void Lint::unknownChildren(const xmlNode* parent, const std::string& where,
                           const char* const* names) {
    for (const xmlNode* c : elementChildren(parent)) {
        bool known = false;
        for (const char* const* n = names; *n && !known; ++n) known = named(c, *n);
        if (!known) warn(c, childPath(where, c) + ": not read (the reader ignores this element)");
    }
}

void Lint::capacity(const xmlNode* parent, const std::string& where, const char* item,
                    int capacity) {
    int all = 0;
    const xmlNode* first = nullptr;
    for (const xmlNode* c : elementChildren(parent))
        if (named(c, item) && ++all == capacity + 1) first = c;
    if (first)
        warn(first, where + '/' + item + ": " + std::to_string(all) +
                        " in the file, the record holds at most " + std::to_string(capacity) +
                        "; this one and the ones after it are dropped");
}

void Lint::repeated(const xmlNode* parent, const std::string& where, const char* name,
                    bool emptyReplaces) {
    const xmlNode* last = nullptr;
    for (const xmlNode* c : elementChildren(parent)) {
        if (!named(c, name) || (!emptyReplaces && content(c).empty())) continue;
        if (last)
            warn(last, childPath(where, last) + ": repeated; the one of line " +
                           std::to_string(xmlGetLineNo(c)) + " replaces this one");
        last = c;
    }
}

int Lint::print(std::ostream& out) {
    std::stable_sort(found_.begin(), found_.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [line, message] : found_) {
        out << path_;
        if (line > 0) out << ':' << line;
        out << ": warning: " << message << '\n';
    }
    return static_cast<int>(found_.size());
}

}  // namespace tool
