#include "core/ResourceManager.h"

#include "app/entities/GLEntityPainter.h"
#include "gui/Font.h"
#include "logging/Log.h"
#include "rendering/GLContext.h"
#include "rendering/GraphicsResource.h"
#include "rendering/ImageManager.h"
#include "rendering/Shader.h"
#include "rendering/ShaderManager.h"
#include "rendering/Texture.h"
#include "rendering/TextureManager.h"
#include "util/Mentor.h"
#include "util/StringUtil.h"
#include "util/TypeName.h"

namespace core
{

ResourceManager::ResourceManager()
    : script::Reflected("Resources"), m_shaders(this, "shaders", false),
      m_force16BitTextures(this, "force16BitTextures", false)
{
    rendering::ShaderManager::SetShadersOn(m_shaders);
    m_shaders->AddChangeCallback(util::MakeCallback(&ResourceManager::OnShaderOnOffChange, this));
    m_force16BitTextures->AddChangeCallback(
        util::MakeCallback(&ResourceManager::OnForce16BitTexturesChange, this));
    AddMemberCmd("unloadAll", &ResourceManager::UnloadAll);
    AddVoidCmd("loadAll", [this] { LoadAll(false); });
    AddVoidCmd("reloadAll", [this] { LoadAll(true); });
    AddMemberCmd("reloadTextures", &ResourceManager::ReloadTextures);
    AddMemberCmd("reloadShaders", &ResourceManager::ReloadShaders);
    AddCmd("vramUsage", std::function<script::ObjectPtr()>(
                            [this] { return script::ValueToObject(static_cast<int>(CalcVRamUsage())); }));
}

void ResourceManager::UnloadAll()
{
    Log(logging::Debug, "Destroying GL resources");
    for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
        mentor->Unload();
}

void ResourceManager::LoadType(const std::type_info& type, bool reload)
{
    for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
    {
        if (mentor->GetType() != type)
            continue;
        if (reload)
        {
            Log(logging::Debug, "Reloading " + util::TypeName(type));
            mentor->Unload();
        }
        mentor->Load();
    }
}

void ResourceManager::LoadAll(bool reload)
{
    const util::VectorPOD<util::AbstractMentor*> mentors = util::AbstractMentor::GetAllClassInstances();
    if (reload)
    {
        Log(logging::Debug, "Unloading the old");
        for (util::AbstractMentor* mentor : mentors)
            mentor->Unload();
        rendering::ImageManager::GetInstancePtr()->ReloadAll();
    }
    // Textures first: the rest (fonts among them) are made of them.
    LoadClass<rendering::Texture>(reload);
    if (m_shaders)
        LoadClass<rendering::Shader>(reload);
    Log(logging::Debug, "Loading the rest...");
    for (util::AbstractMentor* mentor : mentors)
        mentor->Load();
    Log(logging::Info, util::ToString(int(mentors.size())) + " resources loaded");
}

void ResourceManager::Prefetch()
{
    Log(logging::Info, "Prefetching resources");
    rendering::TextureManager::GetInstancePtr()->Prefetch();
    app::GLEntityPainter::LoadResources();
    rendering::ShaderManager::GetInstancePtr()->Prefetch();
}

void ResourceManager::ReloadTextures()
{
    rendering::ImageManager::GetInstancePtr()->ReloadAll();
    LoadClass<rendering::Texture>(true);
}

void ResourceManager::ReloadShaders()
{
    LoadClass<rendering::Shader>(true);
}

void ResourceManager::ReloadFonts()
{
    LoadClass<gui::Font>(true);
}

size_t ResourceManager::CalcVRamUsage() const
{
    size_t bytes = 0;
    for (const rendering::GraphicsResource* resource : rendering::GraphicsResource::GetAllClassInstances())
        bytes += resource->MemoryUsage();
    return bytes;
}

void ResourceManager::OnShaderOnOffChange()
{
    rendering::ShaderManager::SetShadersOn(m_shaders);
    if (!HasGLLoaded())
        return;
    Log(logging::Debug, util::String("Resources.shaders changed value to ") + (m_shaders ? "true" : "false"));
    // Turned off, the shaders stay loaded: the drawing asks whether they are on before it uses one.
    if (!m_shaders)
        return;
    Log(logging::Debug, "LoadClass<Shader>");
    LoadClass<rendering::Shader>(true);
}

void ResourceManager::OnForce16BitTexturesChange()
{
    rendering::Texture::SetForce16BitTextures(m_force16BitTextures);
    LoadClass<rendering::Texture>(true);
}

} // namespace core
