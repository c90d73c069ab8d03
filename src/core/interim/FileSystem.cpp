#include "core/interim/StandIns.h"

#include "logging/Log.h"
#include "platform/Os.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <system_error>

namespace core::interim
{
namespace
{
std::string& WorkDirectory()
{
    static std::string s_workDir;
    return s_workDir;
}
} // namespace

void CalcWorkDir(const std::string& argv0)
{
    std::string dir = os::CalcDataDir(argv0);
    std::replace(dir.begin(), dir.end(), '\\', '/');
    WorkDirectory() = dir;
    logging::SetWorkDirectory(dir);
    std::cout << "workdir =  " << dir << std::endl;
}

const std::string& WorkDir() { return WorkDirectory(); }

std::string ConfigDir() { return WorkDirectory(); }

std::string SceneDir() { return WorkDirectory() + "scenes/"; }

bool FileExists(const std::string& path)
{
    std::error_code error;
    return std::filesystem::exists(path, error);
}

void EraseFile(const std::string& path)
{
    std::error_code error;
    std::filesystem::remove(path, error);
}
} // namespace core::interim
