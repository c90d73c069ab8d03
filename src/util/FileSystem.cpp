#include "util/FileSystem.h"

#include "logging/Log.h"
#include "util/FILEWrapper.h"
#include "util/StringUtil.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <unistd.h>

namespace util
{

namespace
{
const char* const NAME_AND_VERSION = "Qlex beta 4.21";
const size_t READ_CHUNK_BYTES = 1024;

String WithSlash(String dir)
{
    std::replace(dir.begin(), dir.end(), '\\', '/');
    if (!dir.empty() && dir.back() != '/')
        dir += '/';
    return dir;
}
} // namespace

FileSystem::FileSystem() = default;

void FileSystem::CalcWorkDir(const String& argv0)
{
    SetWorkDir(ExecutableDir(argv0));
    std::cout << "workdir =  " << m_workDir << std::endl;
}

void FileSystem::SetWorkDir(const String& dir)
{
    m_workDir = WithSlash(dir);
}

String FileSystem::ExecutableDir(const String& argv0)
{
    std::error_code error;
    std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error || exe.empty())
    {
        String path = argv0;
        std::replace(path.begin(), path.end(), '\\', '/');
        exe = std::filesystem::path(path);
    }
    String dir = exe.parent_path().string();
    return dir.empty() ? String("./") : WithSlash(dir);
}

String FileSystem::NameAndVersion()
{
    return NAME_AND_VERSION;
}

bool FileSystem::FileExists(const String& path)
{
    std::error_code error;
    return std::filesystem::exists(path, error);
}

void FileSystem::EraseFile(const String& path)
{
    std::error_code error;
    std::filesystem::remove(path, error);
}

long FileSystem::GetFileSize(const String& path)
{
    FILEWrapper file(path, "rb");
    // The wrapper doesn't own the file: close it on the way out of a failed seek too.
    try
    {
        file.Seek(0, SEEK_END);
    }
    catch (...)
    {
        file.Close();
        throw;
    }
    long size = file.Tell();
    file.Close();
    return size;
}

String FileSystem::ReadWholeFile(const String& path)
{
    FILEWrapper file(path, "r");
    String text;
    char buffer[READ_CHUNK_BYTES];
    size_t got;
    // fread rather than line reads, so that a stray zero byte doesn't cut a line short.
    while ((got = std::fread(buffer, 1, sizeof(buffer), file.Get())) > 0)
        text.append(buffer, got);
    file.Close();
    return text;
}

void FileSystem::WriteFile(const String& path, const String& text)
{
    std::ofstream out(path.c_str(), std::ios::out | std::ios::trunc | std::ios::binary);
    out << text;
}

void FileSystem::RenameFile(const String& from, const String& to)
{
    std::error_code error;
    std::filesystem::rename(from, to, error);
    if (error)
        Log(logging::Error, "Failed to rename \"" + from + "\" to \"" + to + "\": " + error.message());
}

std::vector<String> FileSystem::DirsInDir(const String& path)
{
    std::vector<String> names;
    std::error_code error;
    for (std::filesystem::directory_iterator it(path, error), end; !error && it != end; it.increment(error))
    {
        std::error_code typeError;
        if (it->is_directory(typeError))
            names.push_back(it->path().filename().string());
    }
    return names;
}

std::vector<String> FileSystem::FilesInDir(const String& path, const String& pattern)
{
    std::vector<String> names;
    std::error_code error;
    for (std::filesystem::directory_iterator it(path, error), end; !error && it != end; it.increment(error))
    {
        std::error_code typeError;
        if (it->is_directory(typeError))
            continue;
        String name = it->path().filename().string();
        if (WildcardMatcher(name.c_str(), pattern.c_str()))
            names.push_back(name);
    }
    return names;
}

} // namespace util
