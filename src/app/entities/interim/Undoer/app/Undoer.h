#pragma once

// INTERIM STAND-IN for app::Undoer, which the history builds: it keeps the names of the steps only. The
// build uses this folder only while src/app/Undoer.h does not exist; delete it when it does.

#include "app/Snapshot.h"
#include "util/Singleton.h"
#include "util/String.h"

#include <vector>

namespace app
{
class Undoer : public util::Pointee, public util::Singleton<Undoer>
{
public:
    void AddUndo(SnapshotPtr, const util::String& name) { m_names.push_back(name); }
    const std::vector<util::String>& GetUndoNames() const { return m_names; }

private:
    std::vector<util::String> m_names;
};
} // namespace app
