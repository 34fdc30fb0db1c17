// Every profile file below a folder.
#include "foundation/folder_loader.h"
#include "kelProfile.h"

int praseXMLFolder(const char* folder, RecordArray* result) {
    return kel::loadFolder<Profile, praseXmlFile>(folder, result);
}
