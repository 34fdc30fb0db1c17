#include "rewrite_diff.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "kelProfile.h"
#include "record_text.h"
#include "xml.h"

namespace tool {

namespace {

bool ascii(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
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

// How closely an element of the file is paired with one of the rewrite,
// from the closest: the same name, key and text; the same name and key
// ("lang" or "name"); the same name.
enum class Likeness { Same, Keyed, Named };

std::string signature(const xmlNode* n, Likeness likeness) {
    std::string s = nameOf(n);
    if (likeness == Likeness::Named) return s;
    bool has = false;
    std::string key = attribute(n, "lang", &has);
    if (!has) key = attribute(n, "name", &has);
    s += '\0' + std::string(has ? "=" : "") + key;
    if (likeness == Likeness::Keyed) return s;
    s += '\0';
    for (char c : content(n))
        if (!std::isspace(static_cast<unsigned char>(c))) s += c;
    return s + '\0' + attributesBelow(n);
}

// Which element of the rewrite each element of the file became (-1: none).
struct Pairing {
    Pairing(const std::vector<const xmlNode*>& file, const std::vector<const xmlNode*>& record)
        : file(file), record(record), to(file.size(), -1), used(record.size(), false) {}

    const std::vector<const xmlNode*>& file;
    const std::vector<const xmlNode*>& record;
    std::vector<int> to;
    std::vector<bool> used;

    void pair(std::size_t i, std::size_t j) {
        to[i] = static_cast<int>(j);
        used[j] = true;
    }

    // Pairs the unpaired elements alike by likeness, in document order.
    void pairAlike(Likeness likeness) {
        std::map<std::string, std::vector<std::size_t>> unused;
        for (std::size_t j = record.size(); j-- > 0;)
            if (!used[j]) unused[signature(record[j], likeness)].push_back(j);
        for (std::size_t i = 0; i < file.size(); ++i) {
            if (to[i] >= 0) continue;
            auto it = unused.find(signature(file[i], likeness));
            if (it == unused.end() || it->second.empty()) continue;
            pair(i, it->second.back());
            it->second.pop_back();
        }
    }
};

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
        looseTextBeside(file, record, where, !fileChildren.empty());
        children(file, fileChildren, recordChildren, path);
    }

private:
    void looseTextBeside(const xmlNode* file, const xmlNode* record, const std::string& where,
                         bool fileHasElements) {
        std::string loose = looseText(file);
        if (!fileHasElements) {
            if (!blank(loose))
                lint_.warn(file, where + ": text " + quote(loose) +
                                     " not read (the reader reads elements here)");
        } else if (!loose.empty() && loose != looseText(record)) {
            lint_.warn(file, where + ": text " + quote(loose) + " beside the elements is not read");
        }
    }

    // Attributes the writer adds (the language of slot 0 on an untagged
    // text, for one) hold what their absence reads as: only the file's own
    // are compared.
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
    }

    void text(const xmlNode* file, const std::string& where, const std::string& was,
              const std::string& now) {
        bool gbk = gbk_ && !ascii(was);
        if (gbk && !convertible(file, where, was, now)) return;
        if (was != now) value(file, where, was, now, gbk);
    }

    // Whether element text of a GBK record has a GBK form that fits the
    // conversion; else says why the record cannot hold it as GBK text.
    bool convertible(const xmlNode* file, const std::string& where, const std::string& was,
                     const std::string& now) {
        std::string gbk;
        GbkForm form = toGbk(was, gbk);
        if (form == GbkForm::Fits && was.size() < KELPROFILE_CONVERSION) return true;
        if (form == GbkForm::Fits) {
            lint_.warn(file, where + ": text of " + std::to_string(was.size()) +
                                 " bytes, more than the " +
                                 std::to_string(KELPROFILE_CONVERSION - 1) +
                                 " a save converts back; the record holds its " +
                                 std::to_string(gbk.size()) + " bytes in GBK, but a save writes " +
                                 quote(now));
            return false;
        }
        std::string saved = was == now ? "" : " (a save writes " + quote(now) + ")";
        if (form == GbkForm::None)
            lint_.warn(file, where + ": text " + quote(was) +
                                 " has no GBK form; the record cannot hold it as GBK text" + saved);
        else
            lint_.warn(file, where + ": text of " + std::to_string(gbk.size()) +
                                 " bytes in GBK, more than the " +
                                 std::to_string(KELPROFILE_CONVERSION - 1) +
                                 " a conversion takes; the record cannot hold it as GBK text" +
                                 saved);
        return false;
    }

    // A number past 32 bits, which the record cannot hold and the hosts
    // read differently (a 32-bit host stops at a bound, a 64-bit one wraps).
    void overflow(const xmlNode* at, const std::string& what, const std::string& value) {
        std::string beyond = outside32Bits(value);
        if (!beyond.empty())
            lint_.warn(at, what + ": the number " + quote(value) + " does not fit in 32 bits: it " +
                               beyond);
    }

    // A value the record holds differently.
    // A number field writes back the number it read; any other value that
    // changed is a text. gbk: element text of a GBK record, whose length
    // counts in GBK.
    void value(const xmlNode* at, const std::string& what, const std::string& was,
               const std::string& now, bool gbk = false) {
        if (now == std::to_string(std::atoi(was.c_str()))) {
            if (!outside32Bits(was).empty())
                overflow(at, what, was);
            else if (!plainNumber(was))
                lint_.warn(at, what + ": the number " + quote(was) + " reads as " + now);
            return;
        }
        if (!now.empty() && now.size() < was.size() && was.compare(0, now.size(), now) == 0) {
            cut(at, what, was, now, gbk);
            return;
        }
        lint_.warn(at, what + ": the file holds " + quote(was) + ", the record " +
                           (now.empty() ? std::string("holds nothing") : "holds " + quote(now)));
    }

    // A value the record keeps the start of: comma-separated lists lose
    // whole pieces past their capacity, other texts are cut to their field.
    void cut(const xmlNode* at, const std::string& what, const std::string& was,
             const std::string& now, bool gbk) {
        if (was[now.size()] == ',') {
            auto pieces = [](const std::string& s) {
                return std::to_string(std::count(s.begin(), s.end(), ',') + 1);
            };
            lint_.warn(at, what + ": " + pieces(was) + " comma-separated pieces, the record " +
                               "keeps the first " + pieces(now));
        } else {
            std::string wasBytes = was, nowBytes = now;
            if (gbk && (!convert("gbk", "UTF-8", was, wasBytes) ||
                        !convert("gbk", "UTF-8", now, nowBytes)))
                wasBytes = was, nowBytes = now, gbk = false;
            lint_.warn(at, what + ": cut to fit its field: the file holds " +
                               std::to_string(wasBytes.size()) +
                               (gbk ? " bytes in GBK" : " bytes") + ", the record keeps " +
                               std::to_string(nowBytes.size()) + " (" + quote(now) + ")");
        }
    }

    // The number of differences between an element and a written one.
    int differences(const xmlNode* file, const xmlNode* record) const {
        Lint scratch("");
        Diff(scratch, gbk_).element(file, record, "");
        return scratch.count();
    }

    // Pairs each element of the file with the one the record made of it:
    // alike in name, key and text first; then, of several elements of a
    // name of which the record kept one, the one it resembles most; then
    // alike in name and key, then in name, in document order.
    std::vector<int> pairUp(const std::vector<const xmlNode*>& file,
                            const std::vector<const xmlNode*>& record) const {
        Pairing pairing(file, record);
        pairing.pairAlike(Likeness::Same);
        pairSurvivors(pairing);
        pairing.pairAlike(Likeness::Keyed);
        pairing.pairAlike(Likeness::Named);
        return pairing.to;
    }

    // A repeated element of which the record kept one: the kept one is the
    // element the written copy differs least from.
    void pairSurvivors(Pairing& p) const {
        std::map<std::string, std::vector<std::size_t>> unusedOfName, unpairedOfName;
        for (std::size_t j = 0; j < p.record.size(); ++j)
            if (!p.used[j]) unusedOfName[nameOf(p.record[j])].push_back(j);
        for (std::size_t i = 0; i < p.file.size(); ++i)
            if (p.to[i] < 0) unpairedOfName[nameOf(p.file[i])].push_back(i);
        for (const auto& [name, unused] : unusedOfName) {
            const std::vector<std::size_t>& candidates = unpairedOfName[name];
            if (unused.size() != 1 || candidates.size() < 2) continue;
            std::size_t j = unused[0], best = candidates[0];
            int fewest = differences(p.file[best], p.record[j]);
            for (std::size_t i : candidates) {
                int d = differences(p.file[i], p.record[j]);
                if (d < fewest) {
                    best = i;
                    fewest = d;
                }
            }
            p.pair(best, j);
        }
    }

    void children(const xmlNode* file, const std::vector<const xmlNode*>& fileChildren,
                  const std::vector<const xmlNode*>& recordChildren, const std::string& path) {
        std::vector<int> to = pairUp(fileChildren, recordChildren);
        std::vector<bool> used(recordChildren.size(), false);
        std::vector<const xmlNode*> lost;
        for (std::size_t i = 0; i < fileChildren.size(); ++i) {
            if (to[i] < 0) {
                lost.push_back(fileChildren[i]);
                continue;
            }
            used[static_cast<std::size_t>(to[i])] = true;
            element(fileChildren[i], recordChildren[static_cast<std::size_t>(to[i])],
                    childPath(path, fileChildren[i]));
        }
        reportLost(lost, fileChildren, recordChildren, path);
        for (std::size_t j = 0; j < recordChildren.size(); ++j)
            if (!used[j] && !blankTree(recordChildren[j]))
                lint_.warn(file, childPath(path, recordChildren[j]) +
                                     ": absent from the file; the record holds " +
                                     quote(content(recordChildren[j])));
    }

    // The file's elements the record has no element for. Of a name the
    // record keeps some of, the first lost one speaks for the group.
    void reportLost(const std::vector<const xmlNode*>& lost,
                    const std::vector<const xmlNode*>& fileChildren,
                    const std::vector<const xmlNode*>& recordChildren, const std::string& path) {
        std::map<std::string, int> inFile, inRecord;
        for (const xmlNode* c : fileChildren) ++inFile[nameOf(c)];
        for (const xmlNode* c : recordChildren) ++inRecord[nameOf(c)];
        std::set<std::string> reported;
        for (const xmlNode* c : lost) {
            if (blankTree(c)) continue;
            std::string where = childPath(path, c);
            int kept = inRecord[nameOf(c)], all = inFile[nameOf(c)];
            if (kept == 0)
                lint_.warn(c, where + ": not read (the reader ignores this element)");
            else if (!reported.insert(nameOf(c)).second)
                continue;
            else if (kept == 1)
                lint_.warn(c, where + ": repeated " + std::to_string(all) +
                                  " times; the record keeps only one of them, not this one");
            else
                lint_.warn(c, where + ": " + std::to_string(all) +
                                  " in the file, the record keeps " + std::to_string(kept) +
                                  ": this one and " + std::to_string(all - kept - 1) +
                                  " more are dropped");
        }
    }

    Lint& lint_;
    bool gbk_;
};

}  // namespace

void compareRewrite(const xmlNode* file, const xmlNode* record, bool gbk, Lint& lint) {
    Diff(lint, gbk).element(file, record, "");
}

}  // namespace tool
