#pragma once

#include <optional>
#include <string>
#include <vector>

namespace core
{
// The arguments after the program's own name.
std::vector<std::string> ArgumentsOf(int argc, char** argv);

// True when an argument asks for the list of arguments ("--help" or "-h").
bool AsksForHelp(const std::vector<std::string>& arguments);

// What `qlex --help` prints: a line of usage, then one line for each argument.
std::string HelpText();

// True when any argument asks only for the name and version ("-version", "/version", also inside a longer
// argument, as some desktops decorate it).
bool AsksForVersion(const std::vector<std::string>& arguments);

// The scene named on the command line, if the last argument names one (".qlx", any case). A path with
// blanks may arrive in pieces, so all arguments are joined again with one blank; a desktop may hand over a
// "file:///" address, which is cut down to its absolute path with its %-escapes decoded.
std::optional<std::string> SceneToOpen(const std::vector<std::string>& arguments);

// Where a scene named on the command line lies. A relative path is taken from the folder the program was
// started in; a bare name that isn't there but is one of the scenes folder means that one, as it always has.
std::string ResolveScenePath(const std::string& path, const std::string& currentDir,
                             const std::string& sceneDir);

// Why the file at `path` can't be opened as a scene, in words for the log; nothing when it can. A scene is
// text: a file that begins as Qlex writes its files, or script text that parses. Only the parse is tried
// here, nothing runs.
std::optional<std::string> WhyNoScene(const std::string& path);
} // namespace core
