#pragma once
// The directory layout around one work directory, and the file operations that everything shares.

#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/String.h"

#include <vector>

namespace util
{

class FileSystem : public Pointee, public Singleton<FileSystem>
{
public:
    FileSystem();

    // The work directory becomes the folder of the running program; prints it to standard output.
    void CalcWorkDir(const String& argv0);
    // Sets the work directory as given (a slash is added when missing); prints nothing.
    void SetWorkDir(const String& dir);
    // The folder of the running executable, ending in a slash; `argv0`'s folder if that can't be found.
    static String ExecutableDir(const String& argv0);

    const String& WorkDir() const { return m_workDir; }
    const String& ConfigDir() const { return m_workDir; }
    String DataDir() const { return m_workDir + "data/"; }
    String FontsDir() const { return DataDir() + "fonts/"; }
    String LanguageDir() const { return DataDir() + "language/"; }
    String ShaderDir() const { return DataDir() + "shaders/"; }
    String TextureDir() const { return DataDir() + "textures/"; }
    String CursorDir() const { return TextureDir() + "cursors/"; }
    String SceneDir() const { return m_workDir + "scenes/"; }
    String QlexletDir() const { return SceneDir() + "qlexlets/"; }

    static String NameAndVersion();

    static bool FileExists(const String& path);
    static void EraseFile(const String& path);
    static long GetFileSize(const String& path);
    // Throws as FILEWrapper does when the file can't be opened.
    static String ReadWholeFile(const String& path);
    // Empties the file first; failure isn't reported.
    static void WriteFile(const String& path, const String& text);
    // Failure is logged, not thrown.
    static void RenameFile(const String& from, const String& to);
    // Leaf names of the sub-directories, in the directory's own order; none for a missing path.
    static std::vector<String> DirsInDir(const String& path);
    // Leaf names of everything else that matches `pattern` ("*" matches all).
    static std::vector<String> FilesInDir(const String& path, const String& pattern);

private:
    String m_workDir;
};

} // namespace util
