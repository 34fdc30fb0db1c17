// The two forms of kelprofile show: "label: value" lines, and JSON for
// scripts (nlohmann's JSON library does the escaping).
#include <iostream>
#include <nlohmann/json.hpp>

#include "tool.h"

namespace tool {

namespace {

class TextPrinter : public Printer {
public:
    explicit TextPrinter(std::ostream& out) : out_(out) {}

    Printer& number(const char* label, long value) override {
        indent();
        out_ << label << ": " << value << '\n';
        return *this;
    }
    Printer& open(const char* label, int index) override {
        indent();
        out_ << label;
        if (index >= 0) out_ << ' ' << index;
        out_ << ":\n";
        ++depth_;
        return *this;
    }
    Printer& close() override {
        --depth_;
        return *this;
    }

private:
    void put(const char* label, int index, const char* value, bool gbk) override {
        indent();
        out_ << label;
        if (index >= 0) out_ << ' ' << index;
        out_ << ": " << (!value ? std::string("(null)") : gbk ? utf8(value) : value) << '\n';
    }
    void indent() { out_ << std::string(static_cast<std::size_t>(depth_) * 2, ' '); }

    std::ostream& out_;
    int depth_ = 0;
};

// A record as a JSON object: a label with an index is an array of that
// name (slots the record leaves out are null), a null text is null.
class JsonPrinter : public Printer {
public:
    JsonPrinter() : open_{&record_} {}

    Printer& number(const char* label, long value) override {
        slot(label, -1) = value;
        return *this;
    }
    Printer& open(const char* label, int index) override {
        nlohmann::ordered_json& block = slot(label, index);
        block = nlohmann::ordered_json::object();
        open_.push_back(&block);
        return *this;
    }
    Printer& close() override {
        if (open_.size() > 1) open_.pop_back();
        return *this;
    }
    nlohmann::ordered_json take() { return std::move(record_); }

private:
    void put(const char* label, int index, const char* value, bool gbk) override {
        nlohmann::ordered_json& to = slot(label, index);
        if (value)
            to = gbk ? utf8(value) : std::string(value);
        else
            to = nullptr;
    }
    nlohmann::ordered_json& slot(const char* label, int index) {
        nlohmann::ordered_json& in = *open_.back();
        if (index < 0) return in[label];
        nlohmann::ordered_json& list = in[label];
        if (!list.is_array()) list = nlohmann::ordered_json::array();
        return list[static_cast<std::size_t>(index)];
    }

    nlohmann::ordered_json record_ = nlohmann::ordered_json::object();
    std::vector<nlohmann::ordered_json*> open_;
};

}  // namespace

std::unique_ptr<Printer> textPrinter(std::ostream& out) {
    return std::make_unique<TextPrinter>(out);
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
        JsonPrinter record;
        if (!parsed.family->show(path.c_str(), record)) {
            std::cerr << path << ": error: the library cannot read it\n";
            status = kFailed;
            continue;
        }
        all.push_back({{"path", path}, {"family", parsed.family->name}, {"record", record.take()}});
    }
    // Text that is not UTF-8 (a UTF-8 record field holding other bytes) is
    // shown with U+FFFD rather than failing the whole output.
    std::cout << all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
    return status;
}

}  // namespace tool
