/* The public header used from C: the records are plain structures and the
 * file functions have C linkage. */
#include <stdio.h>
#include <string.h>

#include "kelProfile.h"

int main(void) {
    TempOption options;
    Profile profile;
    DVDSubpicture overlay;
    memset(&profile, 0, sizeof profile);
    memset(&overlay, 0, sizeof overlay);
    freeProfile(&profile);
    if (saveDVDMenuXml("/nonexistent/folder/menu.xml", &overlay) != 1) return 1;
    if (praseOptionXmlFile("/nonexistent/kelprofile.xml", &options) != 1) return 1;
    if (options.tempItems != NULL || options.tempItemCount != 0 || options.profileName[0] != 0)
        return 1;
    if (sizeof overlay.buttons / sizeof overlay.buttons[0] != 15) return 1;
    puts("1 passed, 0 failed");
    return 0;
}
