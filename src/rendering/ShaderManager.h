#pragma once

#include "rendering/Shader.h"
#include "util/HashMap.h"
#include "util/Singleton.h"

namespace rendering
{

// Shares shader programs by name. A name stands for the pair NAME.vert and NAME.frag of the shader folder.
class ShaderManager : public util::Pointee, public util::Singleton<ShaderManager>
{
public:
    using ShaderMentorPtr = util::SharedPtr<util::Mentor<Shader>>;

    // Sets up the stand-in of a shader that can't be had: an empty program.
    ShaderManager();
    ~ShaderManager() override;

    ShaderProxy Load(util::String name);
    // Registers every pair of the shader folder, so that they load with the rest of the resources.
    void Prefetch();

    // Whether shaders are wanted: set by the resource settings. Off, no file is read, and the drawing takes
    // its fixed-function path.
    static void SetShadersOn(bool on) { s_shadersOn = on; }
    static bool AreShadersOn() { return s_shadersOn; }
    // False once a shader failed for want of driver support: the next ones are not tried again, and the
    // drawing falls back without a message of its own.
    static bool IsSupportKnownMissing() { return s_supportMissing; }
    static void MarkSupportMissing() { s_supportMissing = true; }

    // Whether a proxy holds a working program of its own, rather than the stand-in or nothing.
    static bool IsUsable(const ShaderProxy& shader);

private:
    util::HashMap<util::String, ShaderMentorPtr> m_byName;

    inline static bool s_shadersOn = false;
    inline static bool s_supportMissing = false;
};

// The loader of a named shader: null with shaders off. Throws BadDataException for a file that is empty or
// not text, and what the Shader constructor throws.
Shader* LoadFromFiles(const util::String& name);
// The stand-in: an empty program named "[NAME MISSING]".
Shader* CreateDefaultShader();

} // namespace rendering
