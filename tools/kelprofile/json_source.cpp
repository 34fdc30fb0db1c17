#include "json_source.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>
#include <map>

namespace tool {

namespace {

// An iterator over the text that leaves, in a place both the parser's copy
// and the reader share, how far the parser has read.
class Counted {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Counted(const char* at, const char** read) : at_(at), read_(read) {}
    reference operator*() const { return *at_; }
    Counted& operator++() {
        *read_ = ++at_;
        return *this;
    }
    Counted operator++(int) {
        Counted before = *this;
        ++*this;
        return before;
    }
    bool operator==(const Counted& other) const { return at_ == other.at_; }
    bool operator!=(const Counted& other) const { return at_ != other.at_; }

private:
    const char* at_;
    const char** read_;
};

// What both passes over the text share: where the parser is, and the
// message of a parse error.
class Reading : public nlohmann::json_sax<Json> {
public:
    Reading(const std::string& text, const char** read) : text_(text), read_(read) {}
    std::size_t errorAt = 0;
    std::string error;

    bool parse_error(std::size_t byte, const std::string&,
                     const nlohmann::detail::exception& ex) override {
        errorAt = byte > 0 ? byte - 1 : 0;
        // "[json.exception.parse_error.101] parse error at line 1, column 2: why"
        std::string what = ex.what();
        std::size_t colon = what.find(": ", what.find("parse error"));
        error = colon == std::string::npos ? what : what.substr(colon + 2);
        return false;
    }

protected:
    // Where the value the parser has just read starts: after the end of the
    // token before it, past blanks, ':' and ','.
    std::size_t start() const {
        std::size_t at = before_;
        while (at < text_.size() && text_[at] && std::strchr(" \t\r\n,:", text_[at])) ++at;
        return at;
    }
    void seen() { before_ = static_cast<std::size_t>(*read_ - text_.data()); }

    const std::string& text_;
    const char** read_;
    std::size_t before_ = 0;
};

// Builds the document from the parser's events, refusing a nesting deeper
// than a record's JSON before it is built.
class Building : public Reading {
public:
    Building(Json& root, const std::string& text, const char** read)
        : Reading(text, read), root_(root) {}

    bool null() override { return put(nullptr); }
    bool boolean(bool v) override { return put(v); }
    bool number_integer(number_integer_t v) override { return put(v); }
    bool number_unsigned(number_unsigned_t v) override { return put(v); }
    bool number_float(number_float_t v, const string_t&) override { return put(v); }
    bool string(string_t& v) override { return put(std::move(v)); }
    bool binary(binary_t& v) override { return put(Json::binary(v)); }
    bool start_object(std::size_t) override { return open(Json::object()); }
    bool key(string_t& k) override {
        key_ = std::move(k);
        seen();
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool end_array() override { return close(); }

private:
    Json* place(Json value) {
        seen();
        if (open_.empty()) {
            root_ = std::move(value);
            return &root_;
        }
        Json& in = *open_.back();
        if (in.is_array()) {
            in.push_back(std::move(value));
            return &in.back();
        }
        Json& member = in[key_];
        member = std::move(value);
        return &member;
    }
    bool put(Json value) {
        place(std::move(value));
        return true;
    }
    bool open(Json container) {
        if (open_.size() == static_cast<std::size_t>(kMaxJsonDepth)) {
            errorAt = start();
            error = "nested deeper than the " + std::to_string(kMaxJsonDepth) +
                    " levels of a record's JSON";
            return false;
        }
        // Nothing is added to a container's parent while it is open, so
        // the pointer stays good.
        open_.push_back(place(std::move(container)));
        return true;
    }
    bool close() {
        open_.pop_back();
        seen();
        return true;
    }

    Json& root_;
    std::string key_;
    std::vector<Json*> open_;
};

// Notes where the values of the wanted paths start.
class Locating : public Reading {
public:
    Locating(std::map<std::string, std::size_t>& wanted, const std::string& text, const char** read)
        : Reading(text, read), wanted_(wanted) {}

    bool null() override { return value(); }
    bool boolean(bool) override { return value(); }
    bool number_integer(number_integer_t) override { return value(); }
    bool number_unsigned(number_unsigned_t) override { return value(); }
    bool number_float(number_float_t, const string_t&) override { return value(); }
    bool string(string_t&) override { return value(); }
    bool binary(binary_t&) override { return value(); }
    bool start_object(std::size_t) override { return open(false); }
    bool key(string_t& k) override {
        open_.back().key = k;
        seen();
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(true); }
    bool end_array() override { return close(); }

private:
    struct Open {
        std::string path;
        bool array;
        std::size_t index;
        std::string key;
    };
    std::string path() {
        if (open_.empty()) return "$";
        Open& in = open_.back();
        return in.array ? in.path + '[' + std::to_string(in.index++) + ']' : in.path + step(in.key);
    }
    std::string note() {
        std::string at = path();
        auto it = wanted_.find(at);
        if (it != wanted_.end()) it->second = start();
        seen();
        return at;
    }
    bool value() {
        note();
        return true;
    }
    bool open(bool array) {
        open_.push_back({note(), array, 0, ""});
        return true;
    }
    bool close() {
        open_.pop_back();
        seen();
        return true;
    }

    std::map<std::string, std::size_t>& wanted_;
    std::vector<Open> open_;
};

constexpr std::size_t kUnplaced = static_cast<std::size_t>(-1);

// The path of the block holding the value at path ("$.a[2]" of "$.a[2].b"),
// "" for the document itself.
std::string enclosing(const std::string& path) {
    std::size_t cut = path.find_last_of(".[");
    return cut == std::string::npos || cut == 0 || path == "$" ? "" : path.substr(0, cut);
}

}  // namespace

std::string step(const std::string& name) {
    bool plain = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
    });
    return plain ? '.' + name : "[" + Json(name).dump() + "]";
}

bool parseJson(const std::string& text, Json& document, Findings& findings) {
    const char* read = text.data();
    Building building(document, text, &read);
    Counted first(text.data(), &read), last(text.data() + text.size(), &read);
    if (Json::sax_parse(first, last, &building)) return true;
    findings.at(building.errorAt, building.error);
    document = nullptr;
    return false;
}

void Findings::at(std::size_t offset, const std::string& message) {
    add({offset, "", message});
}

void Findings::about(const std::string& path, const std::string& message) {
    add({0, path, path + ": " + message});
}

void Findings::add(Finding f) {
    if (count_++ < kMaxFindings) found_.push_back(std::move(f));
}

void Findings::print(std::ostream& out) {
    // One more pass over the text places the findings about paths: a
    // missing value at the start of its block.
    std::map<std::string, std::size_t> wanted;
    for (const Finding& f : found_)
        for (std::string p = f.path; !p.empty();) {
            wanted.emplace(p, kUnplaced);
            p = enclosing(p);
        }
    if (!wanted.empty()) {
        const char* read = text_.data();
        Locating locating(wanted, text_, &read);
        Counted first(text_.data(), &read), last(text_.data() + text_.size(), &read);
        Json::sax_parse(first, last, &locating);
    }
    for (Finding& f : found_)
        for (std::string p = f.path; !p.empty();) {
            auto it = wanted.find(p);
            if (it != wanted.end() && it->second != kUnplaced) {
                f.offset = it->second;
                break;
            }
            p = enclosing(p);
        }
    std::stable_sort(found_.begin(), found_.end(),
                     [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
    // Lines counted in one walk over the text, the findings in its order.
    std::size_t line = 1, lineStart = 0, scanned = 0;
    for (const Finding& f : found_) {
        std::size_t offset = std::min(f.offset, text_.size());
        for (; scanned < offset; ++scanned)
            if (text_[scanned] == '\n') {
                ++line;
                lineStart = scanned + 1;
            }
        out << name_ << ':' << line << ':' << offset - lineStart + 1 << ": error: " << f.message
            << '\n';
    }
    if (count_ > found_.size())
        out << name_ << ": error: " << count_ - found_.size() << " more errors not shown\n";
}

}  // namespace tool
