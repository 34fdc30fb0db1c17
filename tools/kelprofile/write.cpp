// kelprofile write: a record from the JSON show --json prints, saved with
// the library's writer of its family. The record's description fills it,
// and every value the record could not hold as given is refused with its
// place in the JSON: nothing is cut, and a refused record is not saved.
#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "tool.h"

namespace tool {

namespace {

using Json = nlohmann::ordered_json;

// 1100 as "1,100", as the messages give sizes.
std::string grouped(long long n) {
    std::string digits = std::to_string(n < 0 ? -n : n), out;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i && (digits.size() - i) % 3 == 0) out += ',';
        out += digits[i];
    }
    return (n < 0 ? "-" : "") + out;
}

// A JSON path step: .name, or ["name"] for a name that is not a plain word.
std::string step(const std::string& name) {
    bool plain = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
    });
    return plain ? '.' + name : "[" + Json(name).dump() + "]";
}

// ---- where each value of the document starts --------------------------------

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

// Builds the document from the parser's events, and notes for each value's
// path the offset where the value starts: after the end of the token before
// it, past blanks, ':' and ','.
class Locating : public nlohmann::json_sax<Json> {
public:
    Locating(Json& root, const std::string& text, const char** read)
        : root_(root), text_(text), read_(read) {}

    std::map<std::string, std::size_t> starts;
    std::size_t errorAt = 0;
    std::string error;

    bool null() override { return put(nullptr); }
    bool boolean(bool v) override { return put(v); }
    bool number_integer(number_integer_t v) override { return put(v); }
    bool number_unsigned(number_unsigned_t v) override { return put(v); }
    bool number_float(number_float_t v, const string_t&) override { return put(v); }
    bool string(string_t& v) override { return put(v); }
    bool binary(binary_t& v) override { return put(Json::binary(v)); }
    bool start_object(std::size_t) override { return open(Json::object()); }
    bool key(string_t& k) override {
        open_.back().key = k;
        seen();
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t byte, const std::string&,
                     const nlohmann::detail::exception& ex) override {
        errorAt = byte > 0 ? byte - 1 : 0;
        // "[json.exception.parse_error.101] parse error at line 1, column 2: why"
        std::string what = ex.what();
        std::size_t colon = what.find(": ", what.find("parse error"));
        error = colon == std::string::npos ? what : what.substr(colon + 2);
        return false;
    }

private:
    struct Open {
        Json* value;  // stays put: nothing is added to its container while it is open
        std::string path;
        std::size_t index;
        std::string key;
    };

    // Places a value the parser has just read; its path and start noted.
    Json* place(Json value, std::string& path) {
        path = "$";
        Json* at = &root_;
        if (!open_.empty()) {
            Open& in = open_.back();
            if (in.value->is_array()) {
                path = in.path + '[' + std::to_string(in.index++) + ']';
                in.value->push_back(std::move(value));
                at = &in.value->back();
            } else {
                path = in.path + step(in.key);
                at = &(*in.value)[in.key];
                *at = std::move(value);
            }
        } else {
            root_ = std::move(value);
        }
        std::size_t start = before_;
        while (start < text_.size() && text_[start] && std::strchr(" \t\r\n,:", text_[start]))
            ++start;
        starts[path] = start;
        seen();
        return at;
    }
    bool put(Json value) {
        std::string path;
        place(std::move(value), path);
        return true;
    }
    bool open(Json container) {
        std::string path;
        Json* at = place(std::move(container), path);
        open_.push_back({at, path, 0, ""});
        return true;
    }
    bool close() {
        open_.pop_back();
        seen();
        return true;
    }
    void seen() { before_ = static_cast<std::size_t>(*read_ - text_.data()); }

    Json& root_;
    const std::string& text_;
    const char** read_;
    std::size_t before_ = 0;
    std::vector<Open> open_;
};

// ---- the findings of one run -------------------------------------------------

class Findings {
public:
    Findings(std::string name, const std::string& text) : name_(std::move(name)) {
        for (std::size_t i = 0; i < text.size(); ++i)
            if (text[i] == '\n') lines_.push_back(i + 1);
    }
    void add(std::size_t offset, const std::string& message) {
        std::size_t line = std::upper_bound(lines_.begin(), lines_.end(), offset) - lines_.begin();
        std::size_t start = line ? lines_[line - 1] : 0;
        found_.push_back({offset, name_ + ':' + std::to_string(line + 1) + ':' +
                                      std::to_string(offset - start + 1) + ": error: " + message});
    }
    bool empty() const { return found_.empty(); }
    void print(std::ostream& out) {
        std::stable_sort(found_.begin(), found_.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        for (const auto& f : found_) out << f.second << '\n';
    }

private:
    std::string name_;
    std::vector<std::size_t> lines_;  // offsets where lines 2, 3, ... start
    std::vector<std::pair<std::size_t, std::string>> found_;
};

// ---- filling a record --------------------------------------------------------

class JsonReader : public Fields {
public:
    JsonReader(const Json& record, const std::string& path,
               const std::map<std::string, std::size_t>& starts, Findings& findings)
        : starts_(starts), findings_(findings), refused_(!findings.empty()) {
        push(&record, path);
    }

    bool filling() const override { return true; }
    bool accepted() override {
        while (!open_.empty()) pop();
        return !refused_;
    }

    void text(const char* name, char* field, std::size_t width, Code code) override {
        std::string bytes;
        if (!textOf(name, code, width - 1, bytes)) return;
        std::memcpy(field, bytes.c_str(), bytes.size() + 1);
    }
    void heap(const char* name, char*& field, Code code, bool emptyIsNull) override {
        heapFrom(member(name), path(name), field, code, emptyIsNull);
    }
    void number(const char* name, int32_t& field) override {
        const Json* v = member(name);
        if (v) numberOf(*v, name, field);
    }
    void type(const char* name, int32_t& field, const char* (*word)(int)) override {
        const Json* v = member(name);
        if (!v) return;
        int32_t code = 0;
        if (v->is_string()) {
            // "20 (list)" as show prints it.
            const std::string& s = v->get_ref<const std::string&>();
            char* end = nullptr;
            long n = std::strtol(s.c_str(), &end, 10);
            bool number = end != s.c_str() && n >= INT32_MIN && n <= INT32_MAX;
            code = number ? static_cast<int32_t>(n) : 0;
            if (!number || s != std::to_string(code) + " (" + word(code) + ")") {
                // A code the files use with a wrong word is still taken, so
                // that the fields that depend on it are read as meant.
                if (number && *word(code)) field = code;
                return refuse(name, Json(s).dump() + " is not a type as show prints one");
            }
        } else if (!numberOf(*v, name, code)) {
            return;
        }
        if (code != 0 && !*word(code))
            return refuse(name, std::to_string(code) + " is not a type code the files use");
        field = code;
    }
    void open(const char* name) override {
        const Json* v = member(name);
        if (v && !v->is_object()) wrongType(path(name), *v, "an object");
        push(v && v->is_object() ? v : nullptr, path(name));
    }
    void close() override { pop(); }
    int list(const char* name, int, int capacity) override {
        const Json* v = member(name);
        if (v && !v->is_array()) wrongType(path(name), *v, "a list");
        if (v && v->is_array() && v->size() > static_cast<std::size_t>(capacity))
            refuse(name, grouped(static_cast<long long>(v->size())) +
                             " items; the record holds at most " + grouped(capacity));
        push(v && v->is_array() ? v : nullptr, path(name));
        return v && v->is_array() ? static_cast<int>(std::min<std::size_t>(v->size(), capacity))
                                  : 0;
    }
    void item(int index) override {
        const Json* v = element(index);
        if (v && !v->is_object()) wrongType(elementPath(index), *v, "an object");
        push(v && v->is_object() ? v : nullptr, elementPath(index));
    }
    void heapAt(int index, char*& field, Code code, bool emptyIsNull) override {
        heapFrom(element(index), elementPath(index), field, code, emptyIsNull);
    }
    void endList() override { open_.pop_back(); }
    void refuse(const char* name, const std::string& why) override {
        std::string at = name ? path(name) : open_.back().path;
        report(at, why);
    }

private:
    struct Open {
        const Json* value;  // null when the block is missing or of the wrong type
        std::string path;
        std::set<std::string> used;
        std::vector<std::string> missing;
    };

    void push(const Json* value, std::string path) {
        open_.push_back({value, std::move(path), {}, {}});
    }
    // Leaves a block; its members that no field took are refused.
    void pop() {
        Open& block = open_.back();
        if (block.missing.size() == 1) report(block.path + step(block.missing[0]), "missing");
        if (block.missing.size() > 1) {
            std::string names;
            for (const std::string& name : block.missing)
                names += (names.empty() ? "" : ", ") + name;
            report(block.path, "missing " + names);
        }
        if (block.value && block.value->is_object())
            for (const auto& [name, value] : block.value->items())
                if (!block.used.count(name)) report(block.path + step(name), "no such field here");
        open_.pop_back();
    }
    std::string path(const char* name) const { return open_.back().path + step(name); }
    std::string elementPath(int index) const {
        return open_.back().path + '[' + std::to_string(index) + ']';
    }

    void report(const std::string& at, const std::string& why) {
        refused_ = true;
        // A value's own start; for a missing one, the start of its block.
        std::string where = at;
        while (!starts_.count(where) && where.size() > 1) {
            std::size_t cut = where.find_last_of(".[");
            where = cut == std::string::npos || cut == 0 ? "$" : where.substr(0, cut);
        }
        auto found = starts_.find(where);
        findings_.add(found == starts_.end() ? 0 : found->second, at + ": " + why);
    }

    // The member of the current block, or null (and refused) when it has none.
    const Json* member(const char* name) {
        Open& block = open_.back();
        if (!block.value) return nullptr;  // the block itself was refused
        block.used.insert(name);
        auto it = block.value->find(name);
        if (it == block.value->end()) {
            block.missing.push_back(name);  // reported once for the block
            return nullptr;
        }
        return &*it;
    }
    const Json* element(int index) const {
        const Open& list = open_.back();
        return list.value ? &(*list.value)[static_cast<std::size_t>(index)] : nullptr;
    }

    void wrongType(const std::string& at, const Json& v, const char* expected) {
        report(at, std::string(expected) + " expected, not " + v.type_name());
    }

    bool textOf(const char* name, Code code, std::size_t room, std::string& bytes) {
        const Json* v = member(name);
        return v && textIn(*v, path(name), code, room, bytes);
    }
    // A heap text from v (null or absent leaves the field null).
    void heapFrom(const Json* v, const std::string& at, char*& field, Code code, bool emptyIsNull) {
        std::string bytes;
        if (!v || v->is_null() || !textIn(*v, at, code, kHeapText - 1, bytes)) return;
        if (bytes.empty() && emptyIsNull) return;
        field = static_cast<char*>(allocate(bytes.size() + 1, 1));
        std::memcpy(field, bytes.c_str(), bytes.size() + 1);
    }
    bool textIn(const Json& v, const std::string& at, Code code, std::size_t room,
                std::string& bytes) {
        if (!v.is_string()) {
            wrongType(at, v, "a text");
            return false;
        }
        std::string why;
        if (!fromShown(v.get_ref<const std::string&>(), code, bytes, why)) {
            report(at, why);
            return false;
        }
        if (bytes.size() > room) {
            report(at, grouped(static_cast<long long>(bytes.size())) +
                           (code == Code::Gbk ? " bytes in GBK" : " bytes") + "; the field holds " +
                           grouped(static_cast<long long>(room)));
            return false;
        }
        return true;
    }
    bool numberOf(const Json& v, const char* name, int32_t& field) {
        if (v.is_number_integer()) {
            bool fits = v.is_number_unsigned()
                            ? v.get<uint64_t>() <= INT32_MAX
                            : v.get<int64_t>() >= INT32_MIN && v.get<int64_t>() <= INT32_MAX;
            if (fits) {
                field = v.get<int32_t>();
                return true;
            }
            report(path(name), v.dump() + " is outside the 32 bits the field holds");
        } else {
            report(path(name), std::string("a whole number expected, not ") +
                                   (v.is_number() ? v.dump() : v.type_name()));
        }
        return false;
    }

    const std::map<std::string, std::size_t>& starts_;
    Findings& findings_;
    std::vector<Open> open_;
    bool refused_;
};

// The names of the families with a writer, for messages.
std::string writable() {
    std::string names;
    for (const Family& f : families())
        if (f.write) names += std::string(names.empty() ? "\"" : ", \"") + f.name + '"';
    return names;
}

}  // namespace

int writeRecord(const std::string& text, const std::string& name, const std::string& out,
                std::ostream& errors) {
    Findings findings(name, text);
    Json document;
    const char* read = text.data();
    Locating locating(document, text, &read);
    Counted first(text.data(), &read), last(text.data() + text.size(), &read);
    if (!Json::sax_parse(first, last, &locating)) {
        findings.add(locating.errorAt, locating.error);
        findings.print(errors);
        return kFailed;
    }

    // What show --json prints: an array of one object, or the object alone.
    std::string at = "$";
    const Json* object = &document;
    if (document.is_array() && document.size() == 1) {
        at = "$[0]";
        object = &document[0];
    }
    int status = kFailed;
    if (document.is_array() && document.size() != 1) {
        findings.add(0, "$: " + std::to_string(document.size()) +
                            " records; write takes one, as show --json prints it for one file");
    } else if (!object->is_object()) {
        findings.add(0, "$: one object {path, family, record} expected, as show --json prints it");
    } else {
        for (const auto& [key, value] : object->items())
            if (key != "path" && key != "family" && key != "record")
                findings.add(locating.starts[at + step(key)],
                             at + step(key) + ": no such field here");
        auto family = object->find("family");
        auto record = object->find("record");
        const Family* chosen = nullptr;
        if (family == object->end() || !family->is_string()) {
            findings.add(locating.starts[at], at + ".family: missing, or not a text");
        } else {
            for (const Family& f : families())
                if (*family == f.name) chosen = &f;
            std::size_t place = locating.starts[at + ".family"];
            if (!chosen)
                findings.add(place, at + ".family: " + family->dump() +
                                        " is not a family kelprofile knows; it writes " +
                                        writable());
            else if (!chosen->write)
                findings.add(place, at + ".family: the library only reads files of this family (" +
                                        family->dump() + "); it has no writer for them");
        }
        if (record == object->end() || !record->is_object())
            findings.add(locating.starts[at], at + ".record: missing, or not an object");
        if (chosen && chosen->write && record != object->end() && record->is_object()) {
            JsonReader reader(*record, at + ".record", locating.starts, findings);
            int saved = chosen->write(reader, out.c_str());
            if (reader.accepted() && findings.empty()) {
                if (saved == 0) {
                    status = kOk;
                } else {
                    errors << out << ": error: the library cannot write it\n";
                }
            }
        }
    }
    findings.print(errors);
    return status;
}

namespace {

int write(const std::vector<std::string>& args) {
    if (args.size() != 2) {
        error("write needs JSON (a file, or - for standard input) and OUT");
        return kUsage;
    }
    const std::string& source = args[0];
    std::string text;
    if (source == "-") {
        text.assign(std::istreambuf_iterator<char>(std::cin), {});
    } else {
        std::ifstream in(source, std::ios::binary);
        if (!in) {
            std::cerr << source << ": error: cannot read it\n";
            return kFailed;
        }
        text.assign(std::istreambuf_iterator<char>(in), {});
    }
    return writeRecord(text, source == "-" ? "<stdin>" : source, args[1], std::cerr);
}

RegisterCommand writeCommand(
    {"write", "JSON OUT",
     "saves OUT with the library's writer from one record as show --json prints it (JSON is a\n"
     "      file, or - for standard input); refuses, with each value's place in the JSON, what\n"
     "      the record could not hold as given, and then leaves OUT untouched",
     write});

}  // namespace

}  // namespace tool
