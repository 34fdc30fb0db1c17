// Customization files: the attributes of each element bound to the fields
// of the records they feed. The reader and the writer share these tables,
// each in the order the writer puts the attributes in the file, so the two
// cannot disagree on a name.
#pragma once

#include "core/xml.h"
#include "kelProfile.h"

namespace kel::customize {

// "swfTypeInfo": which outputs a publication produces.
inline const Binding kSwfTypeInfo[] = {
    KEL_INT(Customize, GenerateFLV, "GenerateFLV"),
    KEL_INT(Customize, GenerateSWF, "GenerateSWF"),
    KEL_INT(Customize, swfType, "swfType"),
    KEL_INT(Customize, GenerateHTML, "GenerateHTML"),
    KEL_INT(Customize, GenerateThumbnail, "GenerateThumbnail"),
};

// "playOption": hiding behaviour and colour of the player.
inline const Binding kPlayOption[] = {
    KEL_INT(PlayOption, skinAutoHide, "skinAutoHide"),
    KEL_INT(PlayOption, mouseAutoHide, "mouseAutoHide"),
    KEL_INT(PlayOption, hideDelay, "hideDelay"),
    KEL_INT(PlayOption, r, "r"),
    KEL_INT(PlayOption, g, "g"),
    KEL_INT(PlayOption, b, "b"),
};

// "insertADOption" and its "textContent" child.
inline const Binding kInsertAd[] = {
    KEL_TEXT(InsertADOption, name, "name"),
    KEL_INT(InsertADOption, enable, "enable"),
    KEL_INT(InsertADOption, positionType, "positionType"),
    KEL_INT(InsertADOption, startTime, "startTime"),
    KEL_INT(InsertADOption, duration, "duration"),
    KEL_INT(InsertADOption, fileType, "fileType"),
    KEL_INT(InsertADOption, r, "r"),
    KEL_INT(InsertADOption, g, "g"),
    KEL_INT(InsertADOption, b, "b"),
};
inline const Binding kInsertAdText[] = {
    KEL_INT(InsertADOption, size, "size"),
    KEL_INT(InsertADOption, textR, "r"),
    KEL_INT(InsertADOption, textG, "g"),
    KEL_INT(InsertADOption, textB, "b"),
    KEL_TEXT(InsertADOption, fontX, "fontX"),
    KEL_TEXT(InsertADOption, fontY, "fontY"),
    KEL_TEXT(InsertADOption, fontHeight, "fontHeight"),
    KEL_TEXT(InsertADOption, typeName, "typeName"),
};

// "ADOption" and its "imageInfo" and "textContent" children.
inline const Binding kAd[] = {
    KEL_TEXT(ADOption, name, "name"),         KEL_INT(ADOption, enable, "enable"),
    KEL_INT(ADOption, fileType, "fileType"),  KEL_TEXT(ADOption, clickTarget, "clickTarget"),
    KEL_TEXT(ADOption, clickURL, "clickURL"), KEL_INT(ADOption, position, "position"),
    KEL_INT(ADOption, duration, "duration"),
};
inline const Binding kAdImage[] = {
    KEL_TEXT(ADOption, imageX, "imageX"),
    KEL_TEXT(ADOption, imageY, "imageY"),
    KEL_TEXT(ADOption, imageWidth, "imageWidth"),
    KEL_TEXT(ADOption, imageHeight, "imageHeight"),
};
inline const Binding kAdText[] = {
    KEL_INT(ADOption, size, "size"),
    KEL_TEXT(ADOption, typeName, "typeName"),
    KEL_INT(ADOption, textR, "r"),
    KEL_INT(ADOption, textG, "g"),
    KEL_INT(ADOption, textB, "b"),
    KEL_TEXT(ADOption, fontX, "fontX"),
    KEL_TEXT(ADOption, fontY, "fontY"),
    KEL_TEXT(ADOption, fontWidth, "fontWidth"),
    KEL_TEXT(ADOption, fontHeight, "fontHeight"),
};

}  // namespace kel::customize
