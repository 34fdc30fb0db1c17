// kelprofile get and kelprofile set: one value of any file, named by a
// dotted path below the root element.
#include <iostream>

#include "commands.h"
#include "xml.h"

namespace tool {

namespace {

enum class Lookup { Unreadable, Missing, Found };

Lookup lookUp(const std::string& file, const std::string& path, std::string& value) {
    // The first call tells the value's length; a second one takes it whole.
    char small[256];
    long length = getXmlValue(file.c_str(), path.c_str(), small, sizeof small);
    if (length == -1) return Lookup::Unreadable;
    if (length < 0) return Lookup::Missing;
    if (static_cast<std::size_t>(length) < sizeof small) {
        value = small;
        return Lookup::Found;
    }
    std::string buffer(static_cast<std::size_t>(length) + 1, '\0');
    if (getXmlValue(file.c_str(), path.c_str(), buffer.data(), buffer.size()) != length)
        return Lookup::Unreadable;
    value = buffer.c_str();
    return Lookup::Found;
}

// Whether the file is XML the library may read, else the error printed:
// the tool's own parse names the place, as show does.
bool readable(const std::string& file) {
    Parsed parsed = parseXml(file);
    if (!parsed.doc) std::cerr << parsed.error << '\n';
    return parsed.doc != nullptr;
}

// Reports a look-up that found no value; the exit status.
int fail(Lookup result, const std::string& file, const std::string& path) {
    if (result == Lookup::Unreadable)
        fileError(file, "the library cannot read it");
    else
        fileError(file, "no element at '" + path +
                            "' (a path names one or two levels below the root, as in Main.Name)");
    return kFailed;
}

int get(const std::vector<std::string>& args) {
    if (args.size() != 2) {
        error("get needs FILE and PATH");
        return kUsage;
    }
    if (!readable(args[0])) return kFailed;
    std::string value;
    Lookup result = lookUp(args[0], args[1], value);
    if (result != Lookup::Found) return fail(result, args[0], args[1]);
    std::cout << value << '\n';
    return kOk;
}

int set(const std::vector<std::string>& args) {
    if (args.size() != 3) {
        error("set needs FILE, PATH and VALUE");
        return kUsage;
    }
    if (!readable(args[0])) return kFailed;
    // The library would rewrite the file even for a path that names nothing.
    std::string old;
    Lookup result = lookUp(args[0], args[1], old);
    if (result != Lookup::Found) return fail(result, args[0], args[1]);
    // The value is meant literally, "&amp;" included: every '&' is escaped.
    std::string value;
    for (char c : args[2]) value += c == '&' ? std::string("&amp;") : std::string(1, c);
    // Read the value back, so that a value XML cannot hold is reported too.
    std::string now;
    if (setXmlValue(args[0].c_str(), args[1].c_str(), value.c_str()) != 0 ||
        lookUp(args[0], args[1], now) != Lookup::Found || now != args[2]) {
        fileError(args[0],
                  "the new value did not reach the file (not writable, or a value XML cannot "
                  "hold)");
        return kFailed;
    }
    return kOk;
}

}  // namespace

const Command kGet = {"get", "FILE PATH",
                      "prints the text of the element PATH names, e.g. Main.Name (one or two "
                      "levels\n      below the root, first match of each name)",
                      get};
const Command kSet = {"set", "FILE PATH VALUE",
                      "replaces the text of the element PATH names with VALUE, taken literally, "
                      "and\n      rewrites FILE as it was laid out",
                      set};

}  // namespace tool
