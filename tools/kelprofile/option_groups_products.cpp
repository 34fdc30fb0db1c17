// Option group files and product information files in kelprofile. The
// library only reads both, so check reads them without a round trip.
//
// The library's readers do not look at the root element; the tool knows
// these files by the roots the application's files (and the examples) use:
// "groupOption" for an option group, "products" for product information.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "tool.h"

namespace {

bool hasRoot(const xmlNode* root, const char* name) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), name) == 0;
}

using tool::Code;

void describeChild(tool::Fields& f, ChildOptionItem& child) {
    f.text("name", child.name, Code::Utf8);
    f.number("readyOnly", child.readyOnly);
    f.type("displayType", child.displayType, findDisplayStr);
    f.type("valueType", child.valueType, findValueType);
    f.heap("values", child.values, Code::Gbk);
    f.heap("defaultValue", child.defaultValue, Code::Gbk);
    f.heap("description", child.description, Code::Gbk);
}

void describeItem(tool::Fields& f, OptionItem& item) {
    f.text("name", item.name, Code::Utf8);
    f.number("readyOnly", item.readyOnly);
    f.type("displayType", item.displayType, findDisplayStr);
    f.heap("description", item.description, Code::Gbk);
    tool::records(f, "childOptionItem", item.childItems, item.childItemCount, INT32_MAX,
                  describeChild);
}

bool showGroup(const char* path, tool::Fields& f) {
    GroupOPtion* group = createGroupOPtion(nullptr);
    if (!group || praseOPtionXmlFile(path, group) != 0) {
        freeGroupOPtion(&group);
        return false;
    }
    tool::records(f, "optionItem", group->optionItems, group->optionItemCount, INT32_MAX,
                  describeItem);
    freeGroupOPtion(&group);
    return true;
}

void describeProduct(tool::Fields& f, ProductInfo& product) {
    f.text("title", product.title, Code::Gbk);
    f.text("content", product.content, Code::Gbk);
    f.text("buttonName", product.buttonName, Code::Gbk);
    f.text("linkURl", product.linkURl, Code::Gbk);
}

bool showProducts(const char* path, tool::Fields& f) {
    RecordArray result{nullptr, 0};
    if (praseProductXmlFile(path, &result) != 0) return false;
    auto* products = static_cast<ProductInfo*>(result.records);
    tool::records(f, "product", products, result.count, INT32_MAX, describeProduct);
    std::free(result.records);
    return true;
}

// ---- lint: what the readers keep of the files -------------------------------

void lintType(const xmlNode* node, tool::Lint& lint, const std::string& where,
              const char* attribute) {
    bool present = false;
    std::string word = tool::attribute(node, attribute, &present);
    bool display = std::strcmp(attribute, "displayType") == 0;
    int code = display ? findDisplayType(word.data()) : findValueType(word.data());
    if (present && code == 0)
        lint.warn(node, where + '@' + attribute + ": '" + word + "' is not a " +
                            (display ? "display" : "value") +
                            " type word the reader knows; it reads as 0");
}

// The attributes both levels share, and the heap texts of the given names.
void lintOption(const xmlNode* node, tool::Lint& lint, const std::string& where,
                const char* const* attributes, const char* const* children) {
    lint.unknownAttributes(node, where, attributes);
    lint.text(node, where + "@name", tool::attribute(node, "name"), sizeof(OptionItem{}.name),
              false);
    lint.number(node, where + "@readyOnly", tool::attribute(node, "readyOnly"));
    for (const char* const* a = attributes; *a; ++a)
        if (std::strstr(*a, "Type")) lintType(node, lint, where, *a);
    lint.unknownChildren(node, where, children);
    for (const char* const* name = children; *name; ++name) {
        if (std::strcmp(*name, "childOptionItem") == 0) continue;
        lint.repeated(node, where, *name, true);
        for (const xmlNode* c : tool::elementChildren(node))
            if (tool::named(c, *name))
                lint.text(c, where + '/' + *name, tool::content(c), tool::kHeapText, true);
    }
}

void lintGroup(const xmlNode* root, tool::Lint& lint) {
    static const char* const kRoot[] = {"optionItem", nullptr};
    static const char* const kItem[] = {"name", "readyOnly", "displayType", nullptr};
    static const char* const kItemChildren[] = {"childOptionItem", "Description", nullptr};
    static const char* const kChild[] = {"name", "readyOnly", "displayType", "valueType", nullptr};
    static const char* const kChildChildren[] = {"Values", "DefaultValue", "Description", nullptr};
    lint.unknownChildren(root, "", kRoot);
    for (const xmlNode* item : tool::elementChildren(root)) {
        if (!tool::named(item, "optionItem")) continue;
        lintOption(item, lint, "optionItem", kItem, kItemChildren);
        for (const xmlNode* child : tool::elementChildren(item))
            if (tool::named(child, "childOptionItem"))
                lintOption(child, lint, "optionItem/childOptionItem", kChild, kChildChildren);
    }
}

void lintProducts(const xmlNode* root, tool::Lint& lint) {
    static const char* const kRoot[] = {"product", nullptr};
    static const char* const kFields[] = {"title", "content", "buttonName", "linkURl", nullptr};
    const std::size_t widths[] = {sizeof(ProductInfo{}.title), sizeof(ProductInfo{}.content),
                                  sizeof(ProductInfo{}.buttonName), sizeof(ProductInfo{}.linkURl)};
    lint.unknownChildren(root, "", kRoot);
    for (const xmlNode* product : tool::elementChildren(root)) {
        if (!tool::named(product, "product")) continue;
        lint.unknownChildren(product, "product", kFields);
        for (int f = 0; kFields[f]; ++f) {
            // An element without text leaves its field as it was.
            lint.repeated(product, "product", kFields[f], false);
            for (const xmlNode* c : tool::elementChildren(product))
                if (tool::named(c, kFields[f]))
                    lint.text(c, std::string("product/") + kFields[f], tool::content(c), widths[f],
                              true);
        }
    }
}

tool::RegisterFamily groups({"option groups", "\"groupOption\"",
                             [](const xmlNode* root) { return hasRoot(root, "groupOption"); },
                             showGroup, nullptr, nullptr, lintGroup, true});
tool::RegisterFamily products({"product information", "\"products\"",
                               [](const xmlNode* root) { return hasRoot(root, "products"); },
                               showProducts, nullptr, nullptr, lintProducts, true});

}  // namespace
