#include "app/SceneFiles.h"

#include "app/FileInfo.h"
#include "app/SceneLoader.h"
#include "app/Serializer.h"
#include "app/Undoer.h"
#include "logging/Log.h"
#include "physics/Simulation.h"
#include "util/FileSystem.h"
#include "util/StringUtil.h"

#include <filesystem>

namespace app
{

namespace
{
const char* const EXTENSION = ".qlx";

bool EndsWithExtension(const util::String& name)
{
    const size_t n = std::char_traits<char>::length(EXTENSION);
    return name.size() >= n && util::iequals(name.substr(name.size() - n), EXTENSION);
}

util::String StripExtension(util::String name)
{
    if (EndsWithExtension(name))
        name.resize(name.size() - std::char_traits<char>::length(EXTENSION));
    return name;
}

util::String SceneDir()
{
    return util::FileSystem::GetInstancePtr()->SceneDir();
}
} // namespace

util::String MakeLongFileName(const util::String& name)
{
    util::String result = name;
    if (!EndsWithExtension(result))
        result += EXTENSION;
    if (result.find('/') == util::String::npos)
        result = SceneDir() + result;
    return result;
}

util::String MakeShortFileName(const util::String& path)
{
    util::String name = path;
    const util::String dir = SceneDir();
    if (name.size() >= dir.size() && util::iequals(name.substr(0, dir.size()), dir))
        name = name.substr(dir.size());
    return StripExtension(name);
}

util::String NameFromDir(const util::String& path)
{
    const size_t slash = path.find_last_of('/');
    return StripExtension(slash == util::String::npos ? path : path.substr(slash + 1));
}

void LoadSceneFile(util::String name, bool automatic)
{
    for (char& c : name)
    {
        if (c == '\\')
            c = '/';
    }
    if (!automatic)
        FileInfo::GetInstancePtr()->SetFileName(name);
    name = MakeLongFileName(name);
    physics::Simulation::GetInstancePtr()->m_running = false;
    Undoer::GetInstancePtr()->Do(QLEX_NEW new SceneLoader(false, name));
}

bool SaveSceneFile(const util::String& name, bool automatic)
{
    if (!automatic)
        FileInfo::GetInstancePtr()->SetFileName(name);
    const util::String path = MakeLongFileName(name);
    const util::String text = Serializer::GetInstancePtr()->SerializeScene();
    // The scene folder of a fresh work directory may not exist yet.
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty())
        std::filesystem::create_directories(folder, error);
    util::FileSystem::WriteFile(path, text);
    // WriteFile doesn't report failure: a file that isn't there with the text afterwards failed.
    bool written = false;
    try
    {
        written = util::FileSystem::ReadWholeFile(path) == text;
    }
    catch (std::exception&)
    {
        written = false;
    }
    if (!written)
        Log(logging::Error, "Couldn't write scene to " + path);
    else if (!automatic)
        Log(logging::Info, "Scene saved to " + name);
    return written;
}

void ImportQlexletFile(const util::String& name)
{
    Undoer::GetInstancePtr()->Do(QLEX_NEW new SceneLoader(true, name));
}

} // namespace app
