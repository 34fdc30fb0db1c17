#include <kelProfile.h>

#include <cstdio>

int main() {
    char buffer[16];
    TempOption options;
    int missing = praseOptionXmlFile("/nonexistent.xml", &options);
    std::printf("%s %d\n", itoa(42, buffer, 10), missing);
    return missing == 1 ? 0 : 1;
}
