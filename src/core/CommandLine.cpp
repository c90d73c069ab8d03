#include "core/CommandLine.h"

#include <algorithm>
#include <cctype>

namespace core
{
namespace
{
const std::string SCENE_EXTENSION = ".qlx";
const std::string FILE_SCHEME = "file:///";

bool EqualsIgnoringCase(const std::string& a, const std::string& b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}
} // namespace

std::vector<std::string> ArgumentsOf(int argc, char** argv)
{
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i)
    {
        arguments.emplace_back(argv[i]);
    }
    return arguments;
}

bool AsksForVersion(const std::vector<std::string>& arguments)
{
    return std::any_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
        return argument.find("-version") != std::string::npos || argument.find("/version") != std::string::npos;
    });
}

std::optional<std::string> SceneToOpen(const std::vector<std::string>& arguments)
{
    if (arguments.empty())
    {
        return std::nullopt;
    }
    const std::string& last = arguments.back();
    if (last.size() < SCENE_EXTENSION.size() ||
        !EqualsIgnoringCase(last.substr(last.size() - SCENE_EXTENSION.size()), SCENE_EXTENSION))
    {
        return std::nullopt;
    }
    std::string path;
    for (size_t i = 0; i < arguments.size(); ++i)
    {
        path += (i == 0 ? "" : " ") + arguments[i];
    }
    if (path.size() >= FILE_SCHEME.size() && EqualsIgnoringCase(path.substr(0, FILE_SCHEME.size()), FILE_SCHEME))
    {
        // The third slash is the root of the absolute path the address names, so it stays.
        path.erase(0, FILE_SCHEME.size() - 1);
    }
    return path;
}
} // namespace core
