// Reading the scripted driver's lines: words separated by spaces or tabs,
// a "#" at the start of a word begins a comment that runs to the end of the
// line (a "#" inside a word, as in an address's anchor, is text), a
// carriage return before the newline is ignored.
//
// Pure functions; any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// The words of one line (none for a blank or comment line).
std::vector<std::string> ZelDriveWords(std::string_view line);

// Words `from` ... end joined by single spaces ("preset AM Radio" -> "AM Radio").
std::string ZelDriveRestOfLine(const std::vector<std::string>& words, std::size_t from);

ZEL_NAMESPACE_END
