#pragma once

// INTERIM STAND-IN for the scene, which a later piece of work builds: only the camera it owns and the
// per-frame update, which has nothing to do while there are no entities. The build picks this folder up
// only while src/app/Scene.h does not exist; delete it when it does.

#include "app/Camera.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"

namespace app
{
class Scene : public script::Reflected, public util::Singleton<Scene>
{
public:
    Scene() : m_camera(QLEX_NEW new Camera()) { SetReflectedName("Scene"); }
    const util::SharedPtr<Camera>& GetCamera() const { return m_camera; }
    void Update(float) {}

private:
    util::SharedPtr<Camera> m_camera;
};
} // namespace app
