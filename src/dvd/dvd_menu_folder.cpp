// Every DVD menu template below a folder.
#include "foundation/folder_loader.h"
#include "kelProfile.h"

int praseDVDXMLFolder(const char* folder, RecordArray* result) {
    return kel::loadFolder<DVDMenu, praseDVDMenuXmlFile>(folder, result);
}
