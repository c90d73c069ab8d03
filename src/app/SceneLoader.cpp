#include "app/SceneLoader.h"

#include "app/Camera.h"
#include "app/FileInfo.h"
#include "app/Scene.h"
#include "app/SceneFiles.h"
#include "app/Serializer.h"
#include "app/Settings.h"
#include "logging/Log.h"
#include "script/Attributes.h"
#include "util/FileSystem.h"

namespace app
{

const math::Vec2 SceneLoader::PAN_SENTINEL(1337.42f, -42.1337f);

namespace
{
// The interface's "autoGlue": what is placed sticks to the background. Off where there is no interface.
bool AutoGlue()
{
    script::VariablePtr setting = FindSetting("App.GUI.autoGlue");
    auto* attrib = dynamic_cast<script::TAttrib<bool>*>(setting.get());
    return attrib && attrib->Get();
}
} // namespace

SceneLoader::SceneLoader(bool import, const util::String& fileName)
    : Action(import ? "UndoImportQlexlet" : "UndoLoadScene"), m_import(import), m_fileName(fileName)
{
}

void SceneLoader::Do()
{
    m_snapshot = Snapshot::TakeSnapshot();
    try
    {
        Load();
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Warning, util::String("Exception caught while loading scene: ") + e.what());
    }
    catch (...)
    {
        Log(logging::Warning, "An unknown error occurred while loading the scene " + m_fileName);
    }
}

void SceneLoader::Undo()
{
    if (m_snapshot)
        m_snapshot->Restore();
}

void SceneLoader::Load()
{
    util::String name = m_fileName;
    if (name.find('/') == util::String::npos && name.find('\\') == util::String::npos)
        name = util::FileSystem::GetInstancePtr()->SceneDir() + name;
    if (!util::FileSystem::FileExists(name))
    {
        Log(logging::Error, "Tried to load non-existing file: " + name);
        return;
    }

    Scene* scene = Scene::GetInstancePtr();
    FileInfo* info = FileInfo::GetInstancePtr();
    const util::String title = info->m_title;
    const util::String author = info->m_author;
    const util::String description = info->m_description;

    if (!m_import)
    {
        scene->NewScene();
        info->SetFileName(name);
        info->m_title = MakeShortFileName(name);
        info->m_author = "";
        info->m_description = "";
        scene->SetTitle(info->m_title);
        scene->GetCamera()->SetPan(PAN_SENTINEL);
    }

    const util::String text = util::FileSystem::ReadWholeFile(name);
    GroupPtr added = Serializer::GetInstancePtr()->Deserialize(text);

    if (util::String(scene->m_title).empty())
        scene->SetTitle(NameFromDir(name));

    if (!m_import)
    {
        if (scene->GetCamera()->GetPan() == PAN_SENTINEL)
        {
            scene->ZoomToScene();
            const math::Vec2 center = Camera::GetGroupCenter(scene->GetTrackedGroup());
            if (scene->GetCamera()->IsTracking() && math::IsFinite(center))
                scene->GetCamera()->SetPan(center);
        }
        if (!util::String(info->m_title).empty())
            scene->m_title = util::String(info->m_title);
        if (!util::String(info->m_author).empty())
            scene->m_author = util::String(info->m_author);
        if (!util::String(info->m_description).empty())
            scene->m_description = util::String(info->m_description);
        Log(logging::Info, "Loaded scene " + name);
        return;
    }

    scene->SetSelection(added);
    const math::BoundingBox2 box = added->CalcFiniteAABB();
    if (!box.IsEmpty())
        scene->MoveTransform(added, math::Mat2D::Translation(scene->GetMousePos() - box.GetCenter()), false);
    scene->MoveToFront(added);
    if (AutoGlue())
        added->GlueToBackground();
    info->m_title = title;
    info->m_author = author;
    info->m_description = description;
    Log(logging::Info, "Imported qlexlet " + name);
}

} // namespace app
