// kelprofile write: the input taken as the JSON of one record. A refused
// record leaves no file; a saved one is a file of its family that the
// library reads back.
#include <sstream>

#include "../tools/kelprofile/commands.h"
#include "../tools/kelprofile/printer.h"
#include "../tools/kelprofile/xml.h"
#include "support.h"

KELFUZZ_TARGET(json_write) {
    std::string out = kelfuzz::scratchFile("written.xml");
    std::remove(out.c_str());
    std::ostringstream errors;
    int status = tool::writeRecord(std::string(reinterpret_cast<const char*>(data), size), "input",
                                   out, errors);
    KELFUZZ_CHECK(status == tool::kOk || status == tool::kFailed);
    KELFUZZ_CHECK((status == tool::kOk) == errors.str().empty());
    if (status != tool::kOk) {
        KELFUZZ_CHECK(kelfuzz::readBytes(out).empty());
        return 0;
    }
    tool::Parsed parsed = tool::identify(out);
    KELFUZZ_CHECK(parsed.family != nullptr);
    KELFUZZ_CHECK(parsed.family->write != nullptr);
    std::ostringstream shown;
    KELFUZZ_CHECK(parsed.family->show(out.c_str(), *tool::textFields(shown)));
    return 0;
}
