#include "app/Scene.h"

#include "util/Profiler.h"

namespace app
{

Scene::Scene() : script::Reflected("Scene"), m_camera(QLEX_NEW new Camera())
{
    AddReflectedChild(m_camera);
}

Scene::~Scene() = default;

void Scene::Update(float)
{
    util::ScopeProfiler profile("Scene::Update");
}

} // namespace app
