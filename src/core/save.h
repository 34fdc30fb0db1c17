// Saving a document: only text XML can hold, to a temporary file beside the
// target with the target's permissions, flushed to the disk, then renamed
// over the target.
#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <cstdint>

namespace kel {

// Whether XML can hold text as it is: valid UTF-8 of characters XML allows
// (no control character but tab and line ends, no U+FFFE or U+FFFF), and
// no longer than libxml2 reads a text (kMaxXmlText bytes).
constexpr std::size_t kMaxXmlText = 10000000;
bool isXmlText(const char* text) noexcept;

// Saves doc at path in UTF-8, indented or as parsed. The document goes to a
// temporary file beside path, written through its descriptor and flushed to
// the disk, then renamed over path only once the save succeeded, so a
// failed save (a full disk, say) leaves the old file as it was and no
// temporary file behind. A document holding a text or attribute value that
// XML cannot hold (isXmlText) is not saved at all: the file would not read
// back. The target keeps its permissions, and its owner where the process
// may give it; a new file gets 0666 less the umask, applied by the kernel
// (the umask is never set). A target the process may not write in place is
// not replaced. A link is written through; a link to nothing is refused.
// Other hard links to the old file keep the old content. 0 saved, 1 not.
int32_t saveDoc(xmlDoc* doc, const char* path, bool indent) noexcept;

}  // namespace kel
