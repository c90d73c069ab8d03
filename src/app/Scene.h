#pragma once

// The document as far as the drawing of the world needs it: the camera, a reflected child under the name
// "Camera", and the per-frame upkeep, which has nothing to keep while the scene holds no entities. The full
// scene (entities, groups, selection, its commands) takes the place of this class under the same names.

#include "app/Camera.h"
#include "script/Reflected.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"

namespace app
{

class Scene : public script::Reflected, public util::Singleton<Scene>
{
public:
    Scene();
    ~Scene() override;

    const util::SharedPtr<Camera>& GetCamera() const { return m_camera; }
    void Update(float dt);

private:
    util::SharedPtr<Camera> m_camera;
};

} // namespace app
