// The two forms of kelprofile show: "label: value" lines, and JSON for
// scripts (nlohmann's JSON library does the escaping).
#include <iostream>
#include <nlohmann/json.hpp>

#include "tool.h"

namespace tool {

namespace {

std::string typeText(int32_t code, const char* (*word)(int)) {
    return std::to_string(code) + " (" + word(code) + ")";
}

class TextFields : public Fields {
public:
    explicit TextFields(std::ostream& out) : out_(out) {}

    void text(const char* name, char* field, std::size_t width, Code code) override {
        line(name) << shown(field, width, code) << '\n';
    }
    void heap(const char* name, char*& field, Code code, bool) override {
        line(name) << (field ? shown(field, kHeapText, code) : "(null)") << '\n';
    }
    void number(const char* name, int32_t& field) override { line(name) << field << '\n'; }
    void type(const char* name, int32_t& field, const char* (*word)(int)) override {
        line(name) << typeText(field, word) << '\n';
    }
    void open(const char* name) override {
        indent();
        out_ << name << ":\n";
        ++depth_;
    }
    void close() override { --depth_; }
    int list(const char* name, int count, int) override {
        lists_.push_back(name);
        return count;
    }
    void item(int index) override {
        indent();
        out_ << lists_.back() << ' ' << index << ":\n";
        ++depth_;
    }
    void heapAt(int index, char*& field, Code code, bool emptyIsNull) override {
        heap((lists_.back() + ' ' + std::to_string(index)).c_str(), field, code, emptyIsNull);
    }
    void endList() override { lists_.pop_back(); }

private:
    std::ostream& line(const char* name) {
        indent();
        return out_ << name << ": ";
    }
    void indent() { out_ << std::string(static_cast<std::size_t>(depth_) * 2, ' '); }

    std::ostream& out_;
    int depth_ = 0;
    std::vector<std::string> lists_;
};

// A record as a JSON object: a list is an array of that name (slots a
// record leaves out are null), a null heap text is null.
class JsonFields : public Fields {
public:
    JsonFields() : open_{&record_} {}

    void text(const char* name, char* field, std::size_t width, Code code) override {
        member(name) = shown(field, width, code);
    }
    void heap(const char* name, char*& field, Code code, bool) override {
        put(member(name), field, code);
    }
    void number(const char* name, int32_t& field) override { member(name) = field; }
    void type(const char* name, int32_t& field, const char* (*word)(int)) override {
        member(name) = typeText(field, word);
    }
    void open(const char* name) override { push(member(name) = nlohmann::ordered_json::object()); }
    void close() override { open_.pop_back(); }
    int list(const char* name, int count, int) override {
        push(member(name) = nlohmann::ordered_json::array());
        return count;
    }
    void item(int index) override { push(at(index) = nlohmann::ordered_json::object()); }
    void heapAt(int index, char*& field, Code code, bool) override { put(at(index), field, code); }
    void endList() override { open_.pop_back(); }

    nlohmann::ordered_json take() { return std::move(record_); }

private:
    nlohmann::ordered_json& member(const char* name) { return (*open_.back())[name]; }
    nlohmann::ordered_json& at(int index) {
        return (*open_.back())[static_cast<std::size_t>(index)];
    }
    void push(nlohmann::ordered_json& block) { open_.push_back(&block); }
    static void put(nlohmann::ordered_json& to, const char* field, Code code) {
        if (field)
            to = shown(field, kHeapText, code);
        else
            to = nullptr;
    }

    nlohmann::ordered_json record_ = nlohmann::ordered_json::object();
    std::vector<nlohmann::ordered_json*> open_;
};

}  // namespace

std::unique_ptr<Fields> textFields(std::ostream& out) {
    return std::make_unique<TextFields>(out);
}

int showJson(const std::vector<std::string>& paths) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    int status = kOk;
    for (const std::string& path : paths) {
        Parsed parsed = identify(path);
        if (!parsed.family) {
            std::cerr << parsed.error << '\n';
            status = kFailed;
            continue;
        }
        JsonFields record;
        if (!parsed.family->show(path.c_str(), record)) {
            std::cerr << path << ": error: the library cannot read it\n";
            status = kFailed;
            continue;
        }
        all.push_back({{"path", path}, {"family", parsed.family->name}, {"record", record.take()}});
    }
    // Record text is UTF-8 by now; a path that is not is shown with U+FFFD.
    std::cout << all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
    return status;
}

}  // namespace tool
