#pragma once

// INTERIM STAND-IN for app::FileInfo, which the scene files build: only the version being read. The build
// uses this folder only while src/app/FileInfo.h does not exist; delete it when it does.

#include "script/AttribWrapper.h"
#include "util/Singleton.h"

namespace app
{
class FileInfo : public script::Reflected, public util::Singleton<FileInfo>
{
public:
    static constexpr int VERSION_LATEST = 2;
    static constexpr int VERSION_BETA_4 = 2;

    FileInfo() : m_version(this, "version", VERSION_LATEST) { SetReflectedName("FileInfo"); }
    script::AttribWrapper<int> m_version;
};
} // namespace app
