// The one include of every reader and writer: the tree of a document, how
// a read parses a file, and how a write saves one.
#pragma once

#include "core/parse.h"
#include "core/save.h"
#include "core/tree.h"
