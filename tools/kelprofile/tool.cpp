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

}  // namespace tool
