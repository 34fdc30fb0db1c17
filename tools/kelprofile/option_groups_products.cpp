// Option group files and product information files in kelprofile. The
// library only reads both, so check reads them without a round trip.
//
// The library's readers do not look at the root element; the tool knows
// these files by the roots the application's files (and the examples) use:
// "groupOption" for an option group, "products" for product information.
#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "tool.h"

namespace {

bool hasRoot(const xmlNode* root, const char* name) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), name) == 0;
}

std::string typeName(int code, const char* name) {
    return std::to_string(code) + " (" + name + ")";
}

void showChild(tool::Printer& p, const ChildOptionItem& child, int j) {
    p.open("childOptionItem", j)
        .text("name", child.name)
        .number("readyOnly", child.readyOnly)
        .text("displayType", typeName(child.displayType, findDisplayStr(child.displayType)).c_str())
        .text("valueType", typeName(child.valueType, findValueType(child.valueType)).c_str())
        .gbk("values", child.values)
        .gbk("defaultValue", child.defaultValue)
        .gbk("description", child.description)
        .close();
}

bool showGroup(const char* path, std::ostream& out) {
    GroupOPtion* group = createGroupOPtion(nullptr);
    if (!group || praseOPtionXmlFile(path, group) != 0) {
        freeGroupOPtion(&group);
        return false;
    }
    tool::Printer p(out);
    for (int k = 0; k < group->optionItemCount; ++k) {
        const OptionItem& item = group->optionItems[k];
        p.open("optionItem", k)
            .text("name", item.name)
            .number("readyOnly", item.readyOnly)
            .text("displayType",
                  typeName(item.displayType, findDisplayStr(item.displayType)).c_str())
            .gbk("description", item.description);
        for (int j = 0; j < item.childItemCount; ++j) showChild(p, item.childItems[j], j);
        p.close();
    }
    freeGroupOPtion(&group);
    return true;
}

bool showProducts(const char* path, std::ostream& out) {
    RecordArray result{nullptr, 0};
    if (praseProductXmlFile(path, &result) != 0) return false;
    tool::Printer p(out);
    const auto* products = static_cast<const ProductInfo*>(result.records);
    for (int k = 0; k < result.count; ++k)
        p.open("product", k)
            .gbk("title", products[k].title)
            .gbk("content", products[k].content)
            .gbk("buttonName", products[k].buttonName)
            .gbk("linkURl", products[k].linkURl)
            .close();
    std::free(result.records);
    return true;
}

tool::RegisterFamily groups({"option groups",
                             [](const xmlNode* root) { return hasRoot(root, "groupOption"); },
                             showGroup, nullptr});
tool::RegisterFamily products({"product information",
                               [](const xmlNode* root) { return hasRoot(root, "products"); },
                               showProducts, nullptr});

}  // namespace
