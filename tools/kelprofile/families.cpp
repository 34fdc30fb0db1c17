// The families kelprofile knows, in the order that decides a file more
// than one would take and that --help lists: those known by their root
// element's name first, then the menu template, whose root's name is free
// and which is known by what its root holds. So a "root" element holding
// both a customization's "profileName" and a template's "frames" is a
// customization.
#include <cstring>

#include "family.h"

namespace tool {

const std::vector<const Family*>& families() {
    static const std::vector<const Family*> table = {
        &kProfiles,     &kCustomizations, &kWebPlayerProjects, &kTemporaryOptions,
        &kOptionGroups, &kProducts,       &kDvdMenus,
    };
    return table;
}

const Family* familyOf(const xmlNode* root) {
    for (const Family* f : families()) {
        bool taken = f->root ? std::strcmp(reinterpret_cast<const char*>(root->name), f->root) == 0
                             : f->recognise(root);
        if (taken) return f;
    }
    return nullptr;
}

const Family* familyNamed(const std::string& name) {
    for (const Family* f : families())
        if (name == f->name) return f;
    return nullptr;
}

}  // namespace tool
