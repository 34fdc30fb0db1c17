#include "record_filler.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <set>

#include "record_text.h"

namespace tool {

namespace {

// 1100 as "1,100", as the messages give sizes.
std::string grouped(long long n) {
    std::string digits = std::to_string(n < 0 ? -n : n), out;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i && (digits.size() - i) % 3 == 0) out += ',';
        out += digits[i];
    }
    return (n < 0 ? "-" : "") + out;
}

class Filler : public Fields {
public:
    Filler(const Json& record, const std::string& path, Findings& findings)
        : findings_(findings), refused_(!findings.empty()) {
        push(&record, path);
    }

    bool filling() const override { return true; }
    bool accepted() override {
        while (!open_.empty()) pop();
        return !refused_;
    }

    void text(const char* name, char* field, std::size_t width, Code code) override {
        std::string bytes;
        const Json* v = member(name);
        if (!v || !textIn(*v, path(name), code, width - 1, bytes)) return;
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
            if (!typeText(name, v->get_ref<const std::string&>(), field, word, code)) return;
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
        return v && v->is_array() ? static_cast<int>(std::min<std::size_t>(
                                        v->size(), static_cast<std::size_t>(capacity)))
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
        findings_.about(name ? path(name) : open_.back().path, why);
        refused_ = true;
    }
    // The record's blocks stay within what one read of the library may
    // allocate: a record past it could not come from a file. Reported once,
    // at the list that passes it.
    void* allocate(const char*, std::size_t count, std::size_t size) override {
        std::size_t bytes = std::max<std::size_t>(count, 1) * size;
        if (count <= kRecordBytes / size && allocated_ + bytes <= kRecordBytes) {
            allocated_ += bytes;
            return tool::allocate(count, size);
        }
        overBudget(open_.back().path);
        return nullptr;
    }

private:
    static constexpr std::size_t kRecordBytes = KELPROFILE_RECORD_BYTES;

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

    void overBudget(const std::string& at) {
        refused_ = true;
        if (!overBudget_)
            findings_.about(at, "here the record passes the " + grouped(kRecordBytes >> 20) +
                                    " MB a record read from a file may take");
        overBudget_ = true;
    }

    void report(const std::string& at, const std::string& why) {
        refused_ = true;
        findings_.about(at, why);
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

    // "20 (list)" as show prints a type; false when s is not one (a code
    // the files use with a wrong word is still taken, so that the fields
    // that depend on it are read as meant).
    bool typeText(const char* name, const std::string& s, int32_t& field, const char* (*word)(int),
                  int32_t& code) {
        char* end = nullptr;
        long n = std::strtol(s.c_str(), &end, 10);
        bool number = end != s.c_str() && n >= INT32_MIN && n <= INT32_MAX;
        code = number ? static_cast<int32_t>(n) : 0;
        if (number && s == std::to_string(code) + " (" + word(code) + ")") return true;
        if (number && *word(code)) field = code;
        refuse(name, Json(s).dump() + " is not a type as show prints one");
        return false;
    }

    // A heap text from v (null or absent leaves the field null).
    void heapFrom(const Json* v, const std::string& at, char*& field, Code code, bool emptyIsNull) {
        std::string bytes;
        if (!v || v->is_null() || !textIn(*v, at, code, kHeapText - 1, bytes)) return;
        if (bytes.empty() && emptyIsNull) return;
        if (allocated_ + bytes.size() + 1 > kRecordBytes) return overBudget(at);
        allocated_ += bytes.size() + 1;
        field = static_cast<char*>(tool::allocate(bytes.size() + 1, 1));
        std::memcpy(field, bytes.c_str(), bytes.size() + 1);
    }
    bool textIn(const Json& v, const std::string& at, Code code, std::size_t room,
                std::string& bytes) {
        if (!v.is_string()) {
            wrongType(at, v, "a text");
            return false;
        }
        std::string why;
        const std::string& utf8 = v.get_ref<const std::string&>();
        if (!fromShown(utf8, code, bytes, why)) {
            report(at, why);
            return false;
        }
        if (bytes.size() > room) {
            report(at, grouped(static_cast<long long>(bytes.size())) +
                           (code == Code::Gbk ? " bytes in GBK" : " bytes") + "; the field holds " +
                           grouped(static_cast<long long>(room)));
            return false;
        }
        // A save converts GBK text back through the library's buffer: a
        // text whose UTF-8 does not fit it would be written as nothing.
        if (code == Code::Gbk && utf8.size() >= KELPROFILE_CONVERSION) {
            report(at, grouped(static_cast<long long>(utf8.size())) +
                           " bytes; a save writes GBK text back only up to " +
                           grouped(KELPROFILE_CONVERSION - 1) + " bytes of UTF-8");
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

    Findings& findings_;
    std::vector<Open> open_;
    bool refused_;
    std::size_t allocated_ = 0;
    bool overBudget_ = false;
};

}  // namespace

std::unique_ptr<Fields> recordFiller(const Json& record, const std::string& path,
                                     Findings& findings) {
    return std::make_unique<Filler>(record, path, findings);
}

}  // namespace tool
