#include "app/FileInfo.h"

#include "logging/Log.h"

namespace app
{

namespace
{
const char* const WEB_SITE = "https://qlex.example.org/";
}

FileInfo::FileInfo()
    : script::Reflected("FileInfo"), m_title(this, "title", ""), m_author(this, "author", ""),
      m_description(this, "description", ""), m_version(this, "version", VERSION_LATEST)
{
    m_version->AddChangeCallback(util::MakeCallback(&FileInfo::OnVersionChange, this));
}

void FileInfo::ClearStrings()
{
    m_title = "";
    m_author = "";
    m_description = "";
}

void FileInfo::OnVersionChange()
{
    if (m_version > VERSION_LATEST)
        Log(logging::Warning, util::String("Loading scene from a newer version of Qlex. Go to ") + WEB_SITE +
                                  " and download the latest version!");
}

} // namespace app
