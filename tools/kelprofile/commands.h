// The commands of kelprofile, each in a file of its own (cmd_*.cpp), and
// listed by main.cpp in the order --help gives them.
#pragma once

#include <ostream>
#include <string>

#include "tool.h"

namespace tool {

extern const Command kCheck;
extern const Command kDvd;
extern const Command kGet;
extern const Command kLint;
extern const Command kPublish;
extern const Command kSet;
extern const Command kShow;
extern const Command kWrite;

// kelprofile write on a JSON text read from name: saves out from the record
// it holds, or prints on errors why not (out then untouched); the exit
// status.
int writeRecord(const std::string& text, const std::string& name, const std::string& out,
                std::ostream& errors);

}  // namespace tool
