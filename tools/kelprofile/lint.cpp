// kelprofile lint: what a read by the library would lose or change in a
// file, one "FILE:LINE: warning: ..." line per finding.
//
// The formats are described once, in the library. For a family with a
// writer, lint reads the file with the library, writes the record back with
// the library's writer and compares the two documents node by node: what
// the written copy lacks or holds differently is what the record lost or
// changed. Differences that are only the writer's normal form (attribute
// order, indentation, the declaration, empty element forms, elements and
// attributes it adds with the value their absence reads as) are not
// findings. Families the library only reads check their few capacities and
// widths directly (their family files).
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

#include "kelProfile.h"
#include "tool.h"

namespace fs = std::filesystem;

namespace tool {

std::string attribute(const xmlNode* node, const char* name, bool* present) {
    xmlChar* value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
    if (present) *present = value != nullptr;
    std::string text = value ? reinterpret_cast<const char*>(value) : "";
    xmlFree(value);
    return text;
}

std::string content(const xmlNode* node) {
    xmlChar* value = xmlNodeGetContent(node);
    std::string text = value ? reinterpret_cast<const char*>(value) : "";
    xmlFree(value);
    return text;
}

std::vector<const xmlNode*> elementChildren(const xmlNode* node) {
    std::vector<const xmlNode*> children;
    for (const xmlNode* c = node->children; c; c = c->next)
        if (c->type == XML_ELEMENT_NODE) children.push_back(c);
    return children;
}

bool named(const xmlNode* node, const char* name) {
    return std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0;
}

namespace {

std::string nameOf(const xmlNode* node) {
    return reinterpret_cast<const char*>(node->name);
}

// A value as a finding quotes it: at most 40 bytes, never cut inside a
// UTF-8 character, on one line.
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

bool ascii(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The library converts element text to GBK in a buffer of 1024 bytes.
constexpr std::size_t kConversionBuffer = 1024;

enum class GbkForm { Fits, TooLong, None };

// The GBK form of UTF-8 text, as the readers of GBK records convert it.
GbkForm toGbk(const std::string& utf8Text, std::string& gbk) {
    if (!convert("gbk", "UTF-8", utf8Text, gbk)) return GbkForm::None;
    return gbk.size() < kConversionBuffer ? GbkForm::Fits : GbkForm::TooLong;
}

// A decimal number written as such: optional blanks, a sign, digits, and
// blanks after them.
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

// What absence reads as: nothing, an empty text or 0.
bool blank(const std::string& value) {
    return value.empty() || value == "0";
}

bool blankTree(const xmlNode* node) {
    for (const xmlAttr* a = node->properties; a; a = a->next)
        if (!blank(attribute(node, reinterpret_cast<const char*>(a->name)))) return false;
    std::vector<const xmlNode*> children = elementChildren(node);
    if (children.empty()) return blank(content(node));
    return std::all_of(children.begin(), children.end(), blankTree);
}

// Text directly inside an element that also holds elements, without the
// blanks around it.
std::string looseText(const xmlNode* node) {
    std::string text;
    for (const xmlNode* c = node->children; c; c = c->next)
        if (c->type == XML_TEXT_NODE || c->type == XML_CDATA_SECTION_NODE) text += content(c);
    std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// The attributes of an element and of the elements below it, each
// element's in name order, for telling elements of one name apart.
std::string attributesBelow(const xmlNode* node) {
    std::vector<std::string> own;
    for (const xmlAttr* a = node->properties; a; a = a->next) {
        const char* name = reinterpret_cast<const char*>(a->name);
        own.push_back(std::string(name) + '=' + attribute(node, name));
    }
    std::sort(own.begin(), own.end());
    std::string all;
    for (const std::string& a : own) all += a + '\0';
    for (const xmlNode* c : elementChildren(node)) all += '<' + attributesBelow(c) + '>';
    return all;
}

std::string childPath(const std::string& path, const xmlNode* child) {
    return path.empty() ? nameOf(child) : path + '/' + nameOf(child);
}

// Compares a file with the library's rewrite of it.
class Diff {
public:
    Diff(Lint& lint, bool gbk) : lint_(lint), gbk_(gbk) {}

    void element(const xmlNode* file, const xmlNode* record, const std::string& path) {
        attributes(file, record, path);
        std::vector<const xmlNode*> fileChildren = elementChildren(file);
        std::vector<const xmlNode*> recordChildren = elementChildren(record);
        std::string where = path.empty() ? nameOf(file) : path;
        if (fileChildren.empty() && recordChildren.empty()) {
            text(file, where, content(file), content(record));
            return;
        }
        if (fileChildren.empty()) {
            if (!blank(looseText(file)))
                lint_.warn(file, where + ": text " + quote(looseText(file)) +
                                     " not read (the reader reads elements here)");
        } else {
            std::string loose = looseText(file);
            if (!loose.empty() && loose != looseText(record))
                lint_.warn(file,
                           where + ": text " + quote(loose) + " beside the elements is not read");
        }
        children(file, fileChildren, recordChildren, path);
    }

private:
    void attributes(const xmlNode* file, const xmlNode* record, const std::string& path) {
        std::string at = (path.empty() ? nameOf(file) : path) + '@';
        for (const xmlAttr* a = file->properties; a; a = a->next) {
            const char* name = reinterpret_cast<const char*>(a->name);
            bool kept = false;
            std::string was = attribute(file, name), now = attribute(record, name, &kept);
            if (!kept) {
                if (!blank(was))
                    lint_.warn(file, at + name + ": not read (the reader ignores this attribute)");
            } else if (was != now) {
                value(file, at + name, was, now);
            }
        }
        // Attributes the writer adds (the language of slot 0 on an untagged
        // text, for one) hold what their absence reads as.
    }

    void text(const xmlNode* file, const std::string& where, const std::string& was,
              const std::string& now) {
        if (gbk_ && !ascii(was)) {
            std::string gbk;
            GbkForm form = toGbk(was, gbk);
            if (form == GbkForm::None) {
                lint_.warn(file, where + ": text " + quote(was) +
                                     " has no GBK form; the record cannot hold it as GBK text" +
                                     (was == now ? "" : " (a save writes " + quote(now) + ")"));
                return;
            }
            if (form == GbkForm::TooLong) {
                lint_.warn(file, where + ": text of " + std::to_string(gbk.size()) +
                                     " bytes in GBK, more than the " +
                                     std::to_string(kConversionBuffer - 1) +
                                     " a conversion takes; the record cannot hold it as GBK "
                                     "text" +
                                     (was == now ? "" : " (a save writes " + quote(now) + ")"));
                return;
            }
        }
        if (was != now) value(file, where, was, now);
    }

    // A value the record holds differently.
    void value(const xmlNode* at, const std::string& what, const std::string& was,
               const std::string& now) {
        if (plainNumber(now) && std::atoi(was.c_str()) == std::atoi(now.c_str())) {
            if (!plainNumber(was))
                lint_.warn(at, what + ": the number " + quote(was) + " reads as " + now);
            return;
        }
        if (!now.empty() && now.size() < was.size() && was.compare(0, now.size(), now) == 0) {
            // Comma-separated lists lose whole pieces past their capacity.
            if (was[now.size()] == ',') {
                auto pieces = [](const std::string& s) {
                    return std::to_string(std::count(s.begin(), s.end(), ',') + 1);
                };
                lint_.warn(at, what + ": " + pieces(was) + " comma-separated pieces, the record " +
                                   "keeps the first " + pieces(now));
            } else {
                lint_.warn(at, what + ": cut to fit its field: the file holds " +
                                   std::to_string(was.size()) + " bytes, the record keeps " +
                                   std::to_string(now.size()) + " (" + quote(now) + ")");
            }
            return;
        }
        lint_.warn(at, what + ": the file holds " + quote(was) + ", the record " +
                           (now.empty() ? std::string("holds nothing") : "holds " + quote(now)));
    }

    // The number of differences between an element and a written one.
    int differences(const xmlNode* file, const xmlNode* record) const {
        Lint scratch("");
        Diff(scratch, gbk_).element(file, record, "");
        return scratch.count();
    }

    // Pairs each element of the file with the one the record made of it:
    // same name, same "lang" or "name" key and same text first; then, of
    // several elements of a name of which the record kept one, the one it
    // resembles most; then same name and key, then same name, in document
    // order.
    std::vector<int> pairUp(const std::vector<const xmlNode*>& file,
                            const std::vector<const xmlNode*>& record) const {
        auto signature = [](const xmlNode* n, int phase) {
            std::string s = nameOf(n);
            if (phase < 2) {
                bool has = false;
                std::string key = attribute(n, "lang", &has);
                if (!has) key = attribute(n, "name", &has);
                s += '\0' + std::string(has ? "=" : "") + key;
            }
            if (phase < 1) {
                s += '\0';
                for (char c : content(n))
                    if (!std::isspace(static_cast<unsigned char>(c))) s += c;
                s += '\0' + attributesBelow(n);
            }
            return s;
        };
        std::vector<int> to(file.size(), -1);
        std::vector<bool> used(record.size(), false);
        for (int phase = 0; phase < 3; ++phase) {
            if (phase == 1) survivors(file, record, to, used);
            std::map<std::string, std::vector<int>> free;
            for (std::size_t j = record.size(); j-- > 0;)
                if (!used[j]) free[signature(record[j], phase)].push_back(static_cast<int>(j));
            for (std::size_t i = 0; i < file.size(); ++i) {
                if (to[i] >= 0) continue;
                auto it = free.find(signature(file[i], phase));
                if (it == free.end() || it->second.empty()) continue;
                to[i] = it->second.back();
                it->second.pop_back();
                used[static_cast<std::size_t>(to[i])] = true;
            }
        }
        return to;
    }

    // A repeated element of which the record kept one: the kept one is the
    // element the written copy differs least from.
    void survivors(const std::vector<const xmlNode*>& file,
                   const std::vector<const xmlNode*>& record, std::vector<int>& to,
                   std::vector<bool>& used) const {
        std::map<std::string, std::vector<std::size_t>> unusedOfName, unpairedOfName;
        for (std::size_t j = 0; j < record.size(); ++j)
            if (!used[j]) unusedOfName[nameOf(record[j])].push_back(j);
        for (std::size_t i = 0; i < file.size(); ++i)
            if (to[i] < 0) unpairedOfName[nameOf(file[i])].push_back(i);
        for (const auto& [name, unused] : unusedOfName) {
            const std::vector<std::size_t>& candidates = unpairedOfName[name];
            if (unused.size() != 1 || candidates.size() < 2) continue;
            std::size_t j = unused[0], best = candidates[0];
            int fewest = differences(file[best], record[j]);
            for (std::size_t i : candidates) {
                int d = differences(file[i], record[j]);
                if (d < fewest) {
                    best = i;
                    fewest = d;
                }
            }
            to[best] = static_cast<int>(j);
            used[j] = true;
        }
    }

    void children(const xmlNode* file, const std::vector<const xmlNode*>& fileChildren,
                  const std::vector<const xmlNode*>& recordChildren, const std::string& path) {
        std::vector<int> to = pairUp(fileChildren, recordChildren);
        std::map<std::string, int> inFile, inRecord;
        for (const xmlNode* c : fileChildren) ++inFile[nameOf(c)];
        for (const xmlNode* c : recordChildren) ++inRecord[nameOf(c)];
        std::set<std::string> reported;
        std::vector<bool> used(recordChildren.size(), false);
        for (std::size_t i = 0; i < fileChildren.size(); ++i) {
            const xmlNode* c = fileChildren[i];
            std::string where = childPath(path, c);
            if (to[i] >= 0) {
                used[static_cast<std::size_t>(to[i])] = true;
                element(c, recordChildren[static_cast<std::size_t>(to[i])], where);
                continue;
            }
            if (blankTree(c)) continue;
            int kept = inRecord[nameOf(c)], all = inFile[nameOf(c)];
            if (kept == 0) {
                lint_.warn(c, where + ": not read (the reader ignores this element)");
            } else if (reported.insert(nameOf(c)).second) {
                // The first of the lost ones speaks for the group.
                if (kept == 1)
                    lint_.warn(c, where + ": repeated " + std::to_string(all) +
                                      " times; the record keeps only one of them, not this one");
                else
                    lint_.warn(c, where + ": " + std::to_string(all) +
                                      " in the file, the record keeps " + std::to_string(kept) +
                                      ": this one and " + std::to_string(all - kept - 1) +
                                      " more are dropped");
            }
        }
        for (std::size_t j = 0; j < recordChildren.size(); ++j)
            if (!used[j] && !blankTree(recordChildren[j]))
                lint_.warn(file, childPath(path, recordChildren[j]) +
                                     ": absent from the file; the record holds " +
                                     quote(content(recordChildren[j])));
    }

    Lint& lint_;
    bool gbk_;
};

bool isXmlName(const fs::path& p) {
    std::string ext = p.extension().string();
    return ext == ".xml" || ext == ".XML";
}

// What lint does with one file; the number of warnings, or -1 when the file
// cannot be linted. Errors go with the warnings, on standard output, so that
// the report keeps the order of the files.
int lintFile(const std::string& path, const fs::path& scratch) {
    Parsed parsed = identify(path);
    if (!parsed.family) {
        std::cout << parsed.error << '\n';
        return -1;
    }
    const Family& family = *parsed.family;
    const xmlNode* root = xmlDocGetRootElement(parsed.doc.get());
    Lint lint(path);
    if (family.rewrite) {
        std::string copy = (scratch / "record.xml").string();
        if (family.rewrite(path.c_str(), copy.c_str()) != 0) {
            std::cout << path << ": error: the library cannot read it\n";
            return -1;
        }
        Parsed written = identify(copy);
        if (!written.doc) {
            std::cout << path << ": error: the library's rewrite of it does not parse\n";
            return -1;
        }
        Diff(lint, family.gbk).element(root, xmlDocGetRootElement(written.doc.get()), "");
    } else if (family.lint) {
        // Only what the library reads at all has findings.
        std::ostringstream discard;
        if (!family.show(path.c_str(), *textFields(discard))) {
            std::cout << path << ": error: the library cannot read it\n";
            return -1;
        }
        family.lint(root, lint);
    }
    return lint.print(std::cout);
}

int lint(const std::vector<std::string>& args) {
    if (args.empty()) {
        error("lint needs at least one FILE or DIR");
        return kUsage;
    }
    for (const std::string& a : args)
        if (a.rfind("--", 0) == 0) {
            error("lint: unknown option " + a);
            return kUsage;
        }
    std::string pattern = (fs::temp_directory_path() / "kelprofile-lint-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        error("cannot make a temporary folder");
        return kFailed;
    }
    fs::path scratch = pattern;
    int files = 0, warnings = 0, errors = 0;
    auto one = [&](const std::string& path) {
        ++files;
        int found = lintFile(path, scratch);
        if (found < 0)
            ++errors;
        else
            warnings += found;
    };
    for (const std::string& arg : args) {
        std::error_code ec;
        if (!fs::is_directory(arg, ec)) {
            one(arg);
            continue;
        }
        // The files below a folder as the folder loaders see them.
        std::vector<fs::path> below;
        for (fs::recursive_directory_iterator
                 it(arg, fs::directory_options::skip_permission_denied, ec),
             end;
             it != end; it.increment(ec)) {
            if (ec) break;
            if (it->is_regular_file(ec) && isXmlName(it->path())) below.push_back(it->path());
        }
        std::sort(below.begin(), below.end());
        for (const fs::path& file : below) one(file.string());
        if (below.size() > 512) {
            std::cout << arg << ": warning: " << below.size()
                      << " .xml files below this folder; the folder loaders read at most 512 "
                         "and leave the rest\n";
            ++warnings;
        }
    }
    std::error_code ec;
    fs::remove_all(scratch, ec);
    std::cout << files << (files == 1 ? " file, " : " files, ") << warnings
              << (warnings == 1 ? " warning" : " warnings");
    if (errors) std::cout << ", " << errors << (errors == 1 ? " error" : " errors");
    std::cout << '\n';
    return warnings || errors ? kFailed : kOk;
}

RegisterCommand lintCommand(
    {"lint", "FILE|DIR...",
     "reports, as FILE:LINE: warning: ..., what a read by the library would lose or change\n"
     "      in each file (folders recursively): cut values, items past a capacity, text\n"
     "      without a GBK form, ignored elements and attributes, numbers that read otherwise\n"
     "      than they look, repeated elements of which one survives; exit 1 when any",
     lint});

}  // namespace

void Lint::warn(const xmlNode* at, const std::string& message) {
    found_.emplace_back(at ? xmlGetLineNo(at) : 0, message);
}

void Lint::text(const xmlNode* at, const std::string& what, const std::string& value,
                std::size_t width, bool gbk) {
    std::string stored = value;
    if (gbk && !ascii(value)) {
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
                         " bytes in GBK, more than the " + std::to_string(kConversionBuffer - 1) +
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
    if (value.empty() || plainNumber(value)) return;
    warn(at, what + ": the number " + quote(value) + " reads as " +
                 std::to_string(std::atoi(value.c_str())));
}

void Lint::unknownChildren(const xmlNode* parent, const std::string& where,
                           const char* const* names) {
    for (const xmlNode* c : elementChildren(parent)) {
        bool known = false;
        for (const char* const* n = names; *n && !known; ++n) known = named(c, *n);
        if (!known) warn(c, childPath(where, c) + ": not read (the reader ignores this element)");
    }
}

void Lint::unknownAttributes(const xmlNode* element, const std::string& where,
                             const char* const* names) {
    for (const xmlAttr* a = element->properties; a; a = a->next) {
        bool known = false;
        for (const char* const* n = names; *n && !known; ++n)
            known = std::strcmp(reinterpret_cast<const char*>(a->name), *n) == 0;
        if (!known)
            warn(element, where + '@' + reinterpret_cast<const char*>(a->name) +
                              ": not read (the reader ignores this attribute)");
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
