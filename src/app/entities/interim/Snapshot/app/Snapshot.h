#pragma once

// INTERIM STAND-IN for app::Snapshot, which the history builds: a snapshot that records nothing. The build
// uses this folder only while src/app/Snapshot.h does not exist; delete it when it does.

#include "util/SharedPtr.h"

namespace app
{
class Snapshot;
using SnapshotPtr = util::SharedPtr<Snapshot>;

class Snapshot : public util::Pointee
{
public:
    static SnapshotPtr TakeSnapshot() { return QLEX_NEW new Snapshot(); }
};
} // namespace app
