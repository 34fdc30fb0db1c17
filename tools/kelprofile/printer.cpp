// nlohmann's JSON library does the escaping of the JSON form.
#include "printer.h"

#include "record_text.h"

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
    void open(const char* name) override { push(member(name) = Json::object()); }
    void close() override { open_.pop_back(); }
    int list(const char* name, int count, int) override {
        push(member(name) = Json::array());
        return count;
    }
    void item(int index) override { push(at(index) = Json::object()); }
    void heapAt(int index, char*& field, Code code, bool) override { put(at(index), field, code); }
    void endList() override { open_.pop_back(); }

    Json take() { return std::move(record_); }

private:
    Json& member(const char* name) { return (*open_.back())[name]; }
    Json& at(int index) { return (*open_.back())[static_cast<std::size_t>(index)]; }
    void push(Json& block) { open_.push_back(&block); }
    static void put(Json& to, const char* field, Code code) {
        if (field)
            to = shown(field, kHeapText, code);
        else
            to = nullptr;
    }

    Json record_ = Json::object();
    std::vector<Json*> open_;
};

}  // namespace

std::unique_ptr<Fields> textFields(std::ostream& out) {
    return std::make_unique<TextFields>(out);
}

bool recordJson(const Family& family, const std::string& path, Json& record) {
    JsonFields fields;
    if (!family.show(path.c_str(), fields)) return false;
    record = fields.take();
    return true;
}

}  // namespace tool
