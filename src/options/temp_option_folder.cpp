// Every temporary option file below a folder.
#include "foundation/folder_loader.h"
#include "kelProfile.h"

int praseOPtionXMLFolder(const char* folder, RecordArray* result) {
    return kel::loadFolder<TempOption, praseOptionXmlFile>(folder, result);
}
