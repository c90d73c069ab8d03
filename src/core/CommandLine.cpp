#include "core/CommandLine.h"

#include "app/Serializer.h"
#include "script/Parser.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace core
{
namespace
{
const std::string SCENE_EXTENSION = ".qlx";
const std::string FILE_SCHEME = "file:///";
// Enough of a file to tell text from other data: a binary format shows a control character within its
// first few bytes.
const std::streamsize SNIFFED_BYTES = 64 * 1024;

namespace fs = std::filesystem;

bool EqualsIgnoringCase(const std::string& a, const std::string& b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) {
                                                  return std::tolower(static_cast<unsigned char>(x)) ==
                                                         std::tolower(static_cast<unsigned char>(y));
                                              });
}

int HexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// An address writes some bytes of a path as "%" and two hex digits; a "%" without them stands for itself.
std::string DecodeEscapes(const std::string& address)
{
    std::string path;
    for (size_t i = 0; i < address.size(); ++i)
    {
        if (address[i] == '%' && i + 2 < address.size() && HexDigit(address[i + 1]) >= 0 &&
            HexDigit(address[i + 2]) >= 0)
        {
            path += static_cast<char>(HexDigit(address[i + 1]) * 16 + HexDigit(address[i + 2]));
            i += 2;
        }
        else
        {
            path += address[i];
        }
    }
    return path;
}

// Tabs, line ends and form feeds are text; every other control character, NUL above all, is data.
bool IsText(const std::string& bytes)
{
    return std::none_of(bytes.begin(), bytes.end(),
                        [](char c)
                        {
                            const unsigned char u = static_cast<unsigned char>(c);
                            return (u < 0x20 && u != '\t' && u != '\n' && u != '\r' && u != '\f') ||
                                   u == 0x7f;
                        });
}

// The beginnings of what Qlex writes: scenes and qlexlets, and the files of its older versions.
bool BeginsAsQlexFile(const std::string& text)
{
    for (const char* beginning :
         {app::Serializer::SCENE_HEADER, app::Serializer::QLEXLET_HEADER, "version = ", "{"})
    {
        if (text.compare(0, std::char_traits<char>::length(beginning), beginning) == 0)
        {
            return true;
        }
    }
    return false;
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

bool AsksForHelp(const std::vector<std::string>& arguments)
{
    return std::any_of(arguments.begin(), arguments.end(),
                       [](const std::string& argument) { return argument == "--help" || argument == "-h"; });
}

std::string HelpText()
{
    return "Usage: qlex [-version] [--help] [SCENE.qlx]\n"
           "  SCENE.qlx   opens this scene at start: a path, relative to the current folder or a name in the "
           "scenes folder, or a file:/// address; without it, the scene of the last run or the welcome "
           "scene\n"
           "  -version    prints the name and version and ends (/version as well, also within a longer "
           "argument)\n"
           "  --help, -h  prints these lines and ends\n";
}

bool AsksForVersion(const std::vector<std::string>& arguments)
{
    return std::any_of(arguments.begin(), arguments.end(),
                       [](const std::string& argument) {
                           return argument.find("-version") != std::string::npos ||
                                  argument.find("/version") != std::string::npos;
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
    if (path.size() >= FILE_SCHEME.size() &&
        EqualsIgnoringCase(path.substr(0, FILE_SCHEME.size()), FILE_SCHEME))
    {
        // The third slash is the root of the absolute path the address names, so it stays.
        path = DecodeEscapes(path.substr(FILE_SCHEME.size() - 1));
    }
    return path;
}

std::string ResolveScenePath(const std::string& path, const std::string& currentDir,
                             const std::string& sceneDir)
{
    const fs::path given(path);
    if (given.is_absolute())
    {
        return path;
    }
    std::error_code error;
    const fs::path here = (fs::path(currentDir) / given).lexically_normal();
    const fs::path inScenes = fs::path(sceneDir) / given;
    if (!fs::exists(here, error) && !given.has_parent_path() && fs::exists(inScenes, error))
    {
        return inScenes.string();
    }
    return here.string();
}

std::optional<std::string> WhyNoScene(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status))
    {
        return "there is no such file";
    }
    if (fs::is_directory(status))
    {
        return "it is a folder";
    }
    if (!fs::is_regular_file(status))
    {
        return "it is no ordinary file";
    }
    std::ifstream file(path, std::ios::binary);
    std::string head(static_cast<size_t>(SNIFFED_BYTES), '\0');
    if (!file.is_open() || (!file.read(&head[0], SNIFFED_BYTES) && file.bad()))
    {
        return "it can't be read";
    }
    head.resize(static_cast<size_t>(file.gcount()));
    if (head.empty())
    {
        return "it is empty";
    }
    if (!IsText(head))
    {
        return "it is not text";
    }
    if (BeginsAsQlexFile(head))
    {
        return std::nullopt;
    }
    // Written by hand, perhaps: whatever parses is a scene, and the loader reports what fails as it runs.
    file.clear();
    file.seekg(0);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!IsText(text))
    {
        return "it is not text";
    }
    if (!script::Parser::GetInstancePtr()->Parse(text))
    {
        return "its text is no script that Qlex can read";
    }
    return std::nullopt;
}
} // namespace core
