// Error lines and record blocks, as every command gives and fills them.
#include "tool.h"

#include <cstdlib>
#include <iostream>
#include <new>

namespace tool {

void error(const std::string& message) {
    std::cerr << "kelprofile: " << message << '\n';
}

void fileError(const std::string& path, const std::string& message) {
    std::cerr << path << ": error: " << message << '\n';
}

void* allocate(std::size_t count, std::size_t size) {
    void* block = std::calloc(count ? count : 1, size);
    if (!block) throw std::bad_alloc();
    return block;
}

void* Fields::allocate(const char*, std::size_t count, std::size_t size) {
    return tool::allocate(count, size);
}

void settleCount(Fields& f, const char* name, int32_t& count, int declared, int filled,
                 int capacity, const char* list, int least) {
    if (!f.filling()) return;
    count = filled;
    if (declared > capacity)
        f.refuse(name, std::to_string(declared) + "; the record holds at most " +
                           std::to_string(capacity));
    else if (filled != declared || filled < least)
        f.refuse(name, std::to_string(declared) + ", but \"" + list + "\" has " +
                           std::to_string(filled) + (filled == 1 ? " slot" : " slots") +
                           (least ? " (a read gives " + std::to_string(least) + " to " +
                                        std::to_string(capacity) + ")"
                                  : ""));
}

}  // namespace tool
