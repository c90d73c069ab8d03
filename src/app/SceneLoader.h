#pragma once
// Loading a scene, or importing a qlexlet, as one step of the history: undo brings back the scene of
// before, also when the file turned out to be broken.

#include "app/Action.h"

namespace app
{

class SceneLoader : public Action
{
public:
    // A bare file name is looked for in the scene directory.
    SceneLoader(bool import, const util::String& fileName);
    void Do() override;
    void Undo() override;

    // The pan that a file without camera settings leaves behind, so that the load can tell.
    static const math::Vec2 PAN_SENTINEL;

private:
    void Load();

    bool m_import;
    util::String m_fileName;
    SnapshotPtr m_snapshot;
};

} // namespace app
