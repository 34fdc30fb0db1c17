// Parsing a file the way every read does: only a regular file within the
// size limit, with the library's own parser settings whatever the calling
// thread's libxml2 defaults, libxml2's messages kept quiet, entity
// expansion within a budget; and the one shape of every reader.
#pragma once

#include <cstdint>

#include "core/memory.h"
#include "core/tree.h"
#include "kelProfile.h"

namespace kel {

// Keeps libxml2's error and warning messages off stderr for its lifetime:
// the library reports through result codes only.
class QuietErrors {
public:
    QuietErrors() noexcept;
    ~QuietErrors();
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    xmlGenericErrorFunc oldFunc_;
    void* oldCtx_;
};

// A parsed file. Empty when the file is missing, unreadable, not a regular
// file, larger than kMaxFileSize or not well formed, when its text with
// every entity reference expanded would exceed its own size by more than
// kMaxExpansion, or when the document has no root element. While it lives,
// the records of the read may allocate at most RecordBudget::kBytes.
class ReadDoc {
public:
    static constexpr long long kMaxFileSize = KELPROFILE_FILE_BYTES;
    static_assert(RecordBudget::kBytes == KELPROFILE_RECORD_BYTES, "the header states the bound");
    static constexpr std::size_t kMaxExpansion = std::size_t{8} << 20;
    explicit ReadDoc(const char* path) noexcept;
    xmlNode* root() const noexcept { return root_; }
    explicit operator bool() const noexcept { return root_ != nullptr; }
    // Ends a successful read: releases the tree and returns 0. libxml2's
    // process-wide state is left as it is.
    int32_t finish() noexcept;
    // After a failed read has given back all it allocated: the read is not
    // charged against an enclosing bound (a folder load's).
    void refund() noexcept { budget_.refund(); }

private:
    RecordBudget budget_;
    DocPtr doc_;
    xmlNode* root_ = nullptr;
};

// The one shape of every reader, so that each follows the library's failure
// rule the same way: empty() clears the record, the file is parsed, and
// fill(root) fills the record, false when an allocation failed; undo()
// then gives back what the read allocated, and the record is cleared again.
// 0 when the file was read, 1 when it could not be parsed or a read failed.
template <class Empty, class Fill, class Undo>
int32_t readFile(const char* path, Empty&& empty, Fill&& fill, Undo&& undo) noexcept {
    empty();
    ReadDoc doc(path);
    if (!doc) return 1;
    if (fill(doc.root())) return doc.finish();
    undo();
    empty();
    doc.refund();
    return 1;
}

}  // namespace kel
