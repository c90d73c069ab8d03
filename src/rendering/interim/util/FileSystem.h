#pragma once

// INTERIM STAND-IN for the directory layout of the foundation, which is built elsewhere. Only what the
// texture and image code use is here, under the real names. The build picks this folder up only while
// src/util/FileSystem.h does not exist; delete this file when it does.

#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/String.h"

#include <filesystem>
#include <fnmatch.h>
#include <vector>

namespace util
{
class FileSystem : public Pointee, public Singleton<FileSystem>
{
public:
    static void SetWorkDir(const String& dir) { GetInstancePtr()->m_workDir = dir; }
    static String WorkDir() { return GetInstancePtr()->m_workDir; }
    static String ConfigDir() { return WorkDir(); }
    static String DataDir() { return WorkDir() + "data/"; }
    static String FontsDir() { return DataDir() + "fonts/"; }
    static String LanguageDir() { return DataDir() + "language/"; }
    static String ShaderDir() { return DataDir() + "shaders/"; }
    static String TextureDir() { return DataDir() + "textures/"; }
    static String CursorDir() { return TextureDir() + "cursors/"; }
    static String SceneDir() { return WorkDir() + "scenes/"; }

    static bool FileExists(const String& path)
    {
        std::error_code error;
        return std::filesystem::exists(path, error);
    }

    static std::vector<String> DirsInDir(const String& path) { return List(path, "*", true); }
    static std::vector<String> FilesInDir(const String& path, const String& pattern = "*")
    {
        return List(path, pattern, false);
    }

private:
    static std::vector<String> List(const String& path, const String& pattern, bool dirs)
    {
        std::vector<String> names;
        std::error_code error;
        for (std::filesystem::directory_iterator it(path.empty() ? "." : path, error), end;
             !error && it != end; it.increment(error))
        {
            if (it->is_directory(error) != dirs)
                continue;
            const String name = it->path().filename().string();
            if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0)
                names.push_back(name);
        }
        return names;
    }

    String m_workDir;
};
} // namespace util
