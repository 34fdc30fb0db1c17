// Option group files: top-level "optionItem" elements, each with a
// "Description" and "childOptionItem" children that offer "Values", a
// "DefaultValue" and a "Description" of their own. The root's name does not
// matter. Element text is kept in GBK (or as the file's UTF-8 when it has
// no GBK form), attributes as in the file.
#include <cstdlib>
#include <cstring>

#include "core/xml.h"
#include "kelProfile.h"

namespace {

using kel::isElement;

// A display or value type word of an attribute, as the type tables take it.
int32_t displayType(const xmlNode* n) {
    return findDisplayType(const_cast<char*>(kel::attr(n, "displayType").get()));
}
int32_t valueType(const xmlNode* n) {
    return findValueType(const_cast<char*>(kel::attr(n, "valueType").get()));
}

// Replaces a heap text by a copy of an element's text (null when the text is
// empty); a repeated element thus replaces the earlier text. False when
// the copy cannot be allocated.
bool store(char*& field, kel::Converter& converter, const xmlNode* element) {
    kel::XmlText raw = kel::content(element);
    kel::RecordText text = converter.toRecord(raw.get());
    std::free(field);
    field = text.dup();
    return field || text.empty();
}

bool readChild(ChildOptionItem& child, xmlNode* node, kel::Converter& converter) {
    kel::copyAttr(child.name, node, "name");
    child.readyOnly = kel::attrInt(node, "readyOnly");
    child.displayType = displayType(node);
    child.valueType = valueType(node);
    bool ok = true;
    for (xmlNode* part : kel::elements(node)) {
        if (isElement(part, "Values")) {
            ok = store(child.values, converter, part) && ok;
        } else if (isElement(part, "DefaultValue")) {
            ok = store(child.defaultValue, converter, part) && ok;
        } else if (isElement(part, "Description")) {
            ok = store(child.description, converter, part) && ok;
        }
    }
    return ok;
}

bool readItem(OptionItem& item, xmlNode* node, kel::Converter& converter) {
    kel::copyAttr(item.name, node, "name");
    item.readyOnly = kel::attrInt(node, "readyOnly");
    item.displayType = displayType(node);
    bool ok = kel::readArray(node, "childOptionItem", item.childItems, item.childItemCount,
                             [&](ChildOptionItem& child, xmlNode* childNode) {
                                 return readChild(child, childNode, converter);
                             });
    for (xmlNode* description : kel::elements(node, "Description"))
        ok = store(item.description, converter, description) && ok;
    return ok;
}

// Releases what a read put into the group and leaves it empty. Counts the
// host may have changed are taken as 0 when negative.
void releaseItems(GroupOPtion& group) {
    for (int32_t k = 0; group.optionItems && k < group.optionItemCount; ++k) {
        OptionItem& item = group.optionItems[k];
        for (int32_t j = 0; item.childItems && j < item.childItemCount; ++j) {
            ChildOptionItem& child = item.childItems[j];
            std::free(child.values);
            std::free(child.defaultValue);
            std::free(child.description);
        }
        std::free(item.childItems);
        std::free(item.description);
    }
    std::free(group.optionItems);
    group.optionItems = nullptr;
    group.optionItemCount = 0;
}

}  // namespace

GroupOPtion* createGroupOPtion(GroupOPtion** out) {
    GroupOPtion* group = kel::allocRecords<GroupOPtion>(1);
    if (out) *out = group;
    return group;
}

int32_t praseOPtionXmlFile(const char* path, GroupOPtion* group) {
    if (!group) return 1;
    kel::Converter converter;
    return kel::readFile(
        path, [&] { releaseItems(*group); },
        [&](xmlNode* root) {
            return kel::readArray(
                root, "optionItem", group->optionItems, group->optionItemCount,
                [&](OptionItem& item, xmlNode* node) { return readItem(item, node, converter); });
        },
        [] {});
}

void freeGroupOPtion(GroupOPtion** group) {
    if (!group || !*group) return;
    releaseItems(**group);
    std::free(*group);
    *group = nullptr;
}
