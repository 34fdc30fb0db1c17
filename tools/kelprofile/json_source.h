// write's JSON input: read within bounds, parsed into a document, and the
// place in the text of every finding about it.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace tool {

using Json = nlohmann::ordered_json;

// The largest JSON write takes: the JSON of the largest record a read can
// leave is far smaller.
constexpr std::size_t kMaxJsonBytes = std::size_t{16} << 20;
// The deepest a record's JSON nests: the array show --json prints, its
// object, the record, a list of items, an item, its list of choices, a
// choice and its labels.
constexpr int kMaxJsonDepth = 8;
// Findings beyond this many are counted, not printed.
constexpr std::size_t kMaxFindings = 100;

// The errors found in one JSON text, each at its place: "NAME:LINE:COLUMN:
// error: ..." in text order.
class Findings {
public:
    Findings(std::string name, const std::string& text) : name_(std::move(name)), text_(text) {}
    // A finding at an offset of the text.
    void at(std::size_t offset, const std::string& message);
    // A finding about the value at a JSON path ("$[0].record.name"), placed
    // where that value starts, or where its block starts when it is missing.
    void about(const std::string& path, const std::string& message);
    bool empty() const { return count_ == 0; }
    void print(std::ostream& out);

private:
    struct Finding {
        std::size_t offset;
        std::string path;  // to be placed, when not empty
        std::string message;
    };
    void add(Finding f);

    std::string name_;
    const std::string& text_;
    std::vector<Finding> found_;
    std::size_t count_ = 0;
};

// Parses text into document: false, with a finding at the place of the
// error, when it is not JSON or nests deeper than a record's JSON.
bool parseJson(const std::string& text, Json& document, Findings& findings);

// A JSON path step: .name, or ["name"] for a name that is not a plain word.
std::string step(const std::string& name);

}  // namespace tool
