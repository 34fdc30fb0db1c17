// Loading every XML file below a folder into one block of records. Each file
// family instantiates the loader with its record type and its per-file
// reader, next to that reader, so the foundation never calls into a family.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "core/memory.h"
#include "kelProfile.h"

namespace kel {

constexpr int kMaxFolderFiles = KELPROFILE_FOLDER_FILES;  // names one scan collects
// A file path with its terminator.
constexpr std::size_t kMaxFolderPath = KELPROFILE_FOLDER_PATH + 1;

// Reads every XML file below folder with Read into one zero-filled block of
// Records. Only files that read advance the count, so a file that fails is
// overwritten by the next one (Read clears its record first) and the first
// count records are the valid ones. The block cannot be allocated: records
// null and count 0. The block and every record's own allocations share one
// bound of budget bytes, besides each read's own: a file that would pass it
// is not read, so a folder of files that each stay within their own bound
// cannot claim more memory in all than the host can give. Always returns 0.
template <class Record, int32_t (*Read)(const char*, Record*)>
int loadFolder(const char* folder, RecordArray* result,
               std::size_t budget = RecordBudget::kFolderBytes) noexcept {
    if (!result) return 0;
    result->count = 0;
    RecordBudget bound(budget);
    char* names[kMaxFolderFiles];
    int found = 0;
    // The scan only reads the folder path.
    getXMLName(const_cast<char*>(folder), &found, names);

    auto* records = allocRecords<Record>(static_cast<std::size_t>(found));
    result->records = records;
    int filled = 0;
    for (int i = 0; i < found; ++i) {
        if (records && Read(names[i], &records[filled]) == 0) ++filled;
        std::free(names[i]);
    }
    result->count = filled;
    return 0;
}

}  // namespace kel
