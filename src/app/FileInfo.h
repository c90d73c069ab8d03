#pragma once
// The meta data of the scene file that is open: its name, title, author and description, and the
// version of the format it was written in. Scene files set these through "FileInfo.title" and the like.

#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Singleton.h"

namespace app
{

class FileInfo : public script::Reflected, public util::Singleton<FileInfo>
{
public:
    static constexpr int VERSION_LATEST = 2;
    // The first version whose colours carry alpha.
    static constexpr int VERSION_BETA_4 = 2;

    FileInfo();

    const util::String& GetFileName() const { return m_fileName; }
    void SetFileName(const util::String& name) { m_fileName = name; }
    // Title, author and description become empty; the version stays.
    void ClearStrings();

    script::AttribWrapper<util::String> m_title;
    script::AttribWrapper<util::String> m_author;
    script::AttribWrapper<util::String> m_description;
    script::AttribWrapper<int> m_version;

private:
    void OnVersionChange();

    util::String m_fileName;
};

} // namespace app
