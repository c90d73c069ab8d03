#pragma once

#include <optional>
#include <string>
#include <vector>

namespace core
{
// The arguments after the program's own name.
std::vector<std::string> ArgumentsOf(int argc, char** argv);

// True when any argument asks only for the name and version ("-version", "/version", also inside a longer
// argument, as some desktops decorate it).
bool AsksForVersion(const std::vector<std::string>& arguments);

// The scene named on the command line, if the last argument names one (".qlx", any case). A path with
// blanks may arrive in pieces, so all arguments are joined again with one blank; a desktop may hand over a
// "file:///" address, which is cut down to its absolute path.
std::optional<std::string> SceneToOpen(const std::vector<std::string>& arguments);
} // namespace core
