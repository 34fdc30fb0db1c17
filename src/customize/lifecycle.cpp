// Releasing what a Customize record owns: the player block and the two
// advert arrays, each one heap block that owns nothing further.
#include <cstdlib>

#include "kelProfile.h"

void freeCustomize(Customize* record) {
    if (!record) return;
    std::free(record->playOption);
    std::free(record->adOptions);
    std::free(record->insertADOptions);
}

void freePtrCustomize(Customize** holder) {
    if (!holder) return;
    freeCustomize(*holder);
    std::free(holder);
}
