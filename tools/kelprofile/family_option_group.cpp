// Option group files: root "groupOption", option items with child items.
// The library only reads them, so lint checks the file directly.
#include "checks.h"
#include "family.h"
#include "xml.h"

namespace tool {

namespace {

void describeChild(Fields& f, ChildOptionItem& child) {
    f.text("name", child.name, Code::Utf8);
    f.number("readyOnly", child.readyOnly);
    f.type("displayType", child.displayType, findDisplayStr);
    f.type("valueType", child.valueType, findValueType);
    f.heap("values", child.values, Code::Gbk);
    f.heap("defaultValue", child.defaultValue, Code::Gbk);
    f.heap("description", child.description, Code::Gbk);
}

void describeItem(Fields& f, OptionItem& item) {
    f.text("name", item.name, Code::Utf8);
    f.number("readyOnly", item.readyOnly);
    f.type("displayType", item.displayType, findDisplayStr);
    f.heap("description", item.description, Code::Gbk);
    records(f, "childOptionItem", item.childItems, item.childItemCount, INT32_MAX, describeChild);
}

struct OptionGroups : RecordTraits<GroupOPtion*> {
    static int read(const char* path, GroupOPtion*& group) {
        group = createGroupOPtion(nullptr);
        return group ? praseOPtionXmlFile(path, group) : 1;
    }
    static void release(GroupOPtion*& group) { freeGroupOPtion(&group); }
    static void describe(Fields& f, GroupOPtion*& group) {
        records(f, "optionItem", group->optionItems, group->optionItemCount, INT32_MAX,
                describeItem);
    }
};

// ---- lint: what the reader keeps of the file ----------------------------------

constexpr std::size_t kNameWidth = sizeof(OptionItem{}.name);

// The attributes of both levels, and the element texts, each a heap text.
const Taken kItem[] = {{"name", Kind::Text, kNameWidth},
                       {"readyOnly", Kind::Number, 0},
                       {"displayType", Kind::DisplayType, 0},
                       {nullptr, Kind::Text, 0}};
const Taken kChild[] = {{"name", Kind::Text, kNameWidth},
                        {"readyOnly", Kind::Number, 0},
                        {"displayType", Kind::DisplayType, 0},
                        {"valueType", Kind::ValueType, 0},
                        {nullptr, Kind::Text, 0}};
const char* const kItemTexts[] = {"Description", nullptr};
const char* const kChildTexts[] = {"Values", "DefaultValue", "Description", nullptr};

// An option item or a child item: its attributes, its element texts, and
// the elements it does not read (known: the names of the elements read).
void lintOption(const xmlNode* node, Lint& lint, const std::string& where, const Taken* attributes,
                const char* const* texts, const char* const* known) {
    lint.attributes(node, where, attributes);
    lint.unknownChildren(node, where, known);
    for (const char* const* name = texts; *name; ++name) {
        lint.repeated(node, where, *name, true);
        for (const xmlNode* c : elementChildren(node))
            if (named(c, *name)) lint.text(c, where + '/' + *name, content(c), kHeapText, true);
    }
}

void lintGroup(const xmlNode* root, Lint& lint) {
    static const char* const kRoot[] = {"optionItem", nullptr};
    static const char* const kItemKnown[] = {"childOptionItem", "Description", nullptr};
    lint.unknownChildren(root, "", kRoot);
    for (const xmlNode* item : elementChildren(root)) {
        if (!named(item, "optionItem")) continue;
        lintOption(item, lint, "optionItem", kItem, kItemTexts, kItemKnown);
        for (const xmlNode* child : elementChildren(item))
            if (named(child, "childOptionItem"))
                lintOption(child, lint, "optionItem/childOptionItem", kChild, kChildTexts,
                           kChildTexts);
    }
}

}  // namespace

const Family kOptionGroups =
    readOnly<OptionGroups>("option groups", "groupOption", lintGroup, true);

}  // namespace tool
