#pragma once

#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Singleton.h"

#include <cstddef>
#include <functional>
#include <typeinfo>

namespace core
{

// Every GL object dies with the window. This turns that into two bulk operations over every mentor of the
// program, unload all and load all, and holds the settings that change how resources are made. Users hold
// proxies and never notice.
class ResourceManager : public script::Reflected, public util::Singleton<ResourceManager>
{
public:
    ResourceManager();

    void UnloadAll();
    // With `reload`, everything is dropped and the images are read from disk again first.
    void LoadAll(bool reload);
    // Loads the mentors of resources of one type; with `reload` they are dropped first.
    void LoadType(const std::type_info& type, bool reload);
    template <class T> void LoadClass(bool reload) { LoadType(typeid(T), reload); }
    // Registers the resources that exist as files, so that they load with the rest. Once, after the first
    // window.
    void Prefetch();
    void ReloadTextures();
    void ReloadShaders();
    // Makes every font again from its files: the change callback of the GUI's "font".
    void ReloadFonts();
    // Bytes of video memory of all live graphics resources.
    size_t CalcVRamUsage() const;
    void OnShaderOnOffChange();

    script::AttribWrapper<bool> m_shaders;
    script::AttribWrapper<bool> m_force16BitTextures;

private:
    void OnForce16BitTexturesChange();

};

} // namespace core
