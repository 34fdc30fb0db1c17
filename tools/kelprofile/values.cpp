// kelprofile get and kelprofile set: one value of any file, named by a
// dotted path below the root element.
#include <libxml/parser.h>

#include <cstring>
#include <iostream>
#include <memory>

#include "kelProfile.h"
#include "tool.h"

namespace {

enum class Lookup { Unreadable, Missing, Found };

// XML text cannot hold the character U+0001, so a buffer still starting
// with it after a look-up was not written: the path named nothing.
constexpr char kUnwritten = '\x01';

// The library copies a value whole into the buffer it is handed. Any
// element's text is one run of the root element's text, so a buffer of that
// size always holds it.
std::size_t valueBound(const std::string& file) {
    std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> doc(
        xmlReadFile(file.c_str(), nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        xmlFreeDoc);
    xmlNode* root = doc ? xmlDocGetRootElement(doc.get()) : nullptr;
    if (!root) return 0;
    std::unique_ptr<xmlChar, void (*)(void*)> text(xmlNodeGetContent(root), xmlFree);
    return (text ? std::strlen(reinterpret_cast<const char*>(text.get())) : 0) + 1;
}

Lookup lookUp(const std::string& file, const std::string& path, std::string& value) {
    std::size_t bound = valueBound(file);
    if (bound == 0) return Lookup::Unreadable;
    std::string buffer(bound, '\0');
    buffer[0] = kUnwritten;
    if (getXmlValue(file.c_str(), path.c_str(), buffer.data()) != 0) return Lookup::Unreadable;
    if (buffer[0] == kUnwritten) return Lookup::Missing;
    value = buffer.c_str();
    return Lookup::Found;
}

// Reports a look-up that found no value; the exit status.
int fail(Lookup result, const std::string& file, const std::string& path) {
    if (result == Lookup::Unreadable)
        tool::error(file + ": missing, unreadable or not XML");
    else
        tool::error(file + ": no element at '" + path +
                    "' (a path names one or two levels below the root, as in Main.Name)");
    return tool::kFailed;
}

int get(const std::vector<std::string>& args) {
    if (args.size() != 2) {
        tool::error("get needs FILE and PATH");
        return tool::kUsage;
    }
    std::string value;
    Lookup result = lookUp(args[0], args[1], value);
    if (result != Lookup::Found) return fail(result, args[0], args[1]);
    std::cout << value << '\n';
    return tool::kOk;
}

int set(const std::vector<std::string>& args) {
    if (args.size() != 3) {
        tool::error("set needs FILE, PATH and VALUE");
        return tool::kUsage;
    }
    // The library would rewrite the file even for a path that names nothing.
    std::string old;
    Lookup result = lookUp(args[0], args[1], old);
    if (result != Lookup::Found) return fail(result, args[0], args[1]);
    // The library reads '&' as the start of a reference; the value is meant
    // literally.
    std::string value;
    for (char c : args[2]) value += c == '&' ? std::string("&amp;") : std::string(1, c);
    // The library does not report a save that failed: read the value back.
    std::string now;
    if (setXmlValue(args[0].c_str(), args[1].c_str(), value.c_str()) != 0 ||
        lookUp(args[0], args[1], now) != Lookup::Found || now != args[2]) {
        tool::error(args[0] +
                    ": the new value did not reach the file (not writable, or a value "
                    "XML cannot hold)");
        return tool::kFailed;
    }
    return tool::kOk;
}

tool::RegisterCommand getCommand(
    {"get", "FILE PATH",
     "prints the text of the element PATH names, e.g. Main.Name (one or two levels\n"
     "      below the root, first match of each name)",
     get});
tool::RegisterCommand setCommand(
    {"set", "FILE PATH VALUE",
     "replaces the text of the element PATH names with VALUE, taken literally, and\n"
     "      rewrites FILE as it was laid out",
     set});

}  // namespace
