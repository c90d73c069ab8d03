#include "rendering/ShaderManager.h"

#include "logging/Log.h"
#include "util/FileSystem.h"

namespace rendering
{
namespace
{
const char* const FRAGMENT_EXTENSION = ".frag";
const char* const VERTEX_EXTENSION = ".vert";

// GLSL is text: a zero byte or a control character other than white space means a damaged or wrong file,
// which a driver may not even report sensibly.
void CheckSource(const util::String& source, const util::String& path)
{
    if (source.empty())
        QLEX_THROW(BadDataException("Shader file \"" + path + "\" is empty"));
    for (const char c : source)
    {
        const unsigned char u = static_cast<unsigned char>(c);
        if (u < 32 && c != '\n' && c != '\r' && c != '\t' && c != '\f' && c != '\v')
            QLEX_THROW(BadDataException("Shader file \"" + path + "\" is not text"));
    }
}

// Shaders that fail for want of support must not be tried again each time a proxy is used.
template <class F> Shader* RememberingMissingSupport(F make)
{
    try
    {
        return make();
    }
    catch (const FatalException&)
    {
        ShaderManager::MarkSupportMissing();
        throw;
    }
}
} // namespace

ShaderManager::ShaderManager()
{
    util::Mentor<Shader>::s_default = QLEX_NEW new util::Mentor<Shader>(&CreateDefaultShader);
}

ShaderManager::~ShaderManager()
{
    util::Mentor<Shader>::s_default.Reset();
}

ShaderProxy ShaderManager::Load(util::String name)
{
    if (ShaderMentorPtr* known = m_byName.TryGet(name))
        return ShaderProxy(*known);
    ShaderMentorPtr mentor = QLEX_NEW new util::Mentor<Shader>([name] { return LoadFromFiles(name); });
    m_byName.Insert(name, mentor);
    return ShaderProxy(mentor);
}

void ShaderManager::Prefetch()
{
    const util::String dir = util::FileSystem::GetInstancePtr()->ShaderDir();
    const size_t n = std::char_traits<char>::length(FRAGMENT_EXTENSION);
    for (const util::String& file : util::FileSystem::FilesInDir(dir, "*"))
    {
        if (file.size() > n && file.compare(file.size() - n, n, FRAGMENT_EXTENSION) == 0)
            Load(file.substr(0, file.size() - n));
    }
}

bool ShaderManager::IsUsable(const ShaderProxy& shader)
{
    return s_shadersOn && !s_supportMissing && HasGLLoaded() && shader;
}

Shader* LoadFromFiles(const util::String& name)
{
    if (!ShaderManager::AreShadersOn() || ShaderManager::IsSupportKnownMissing())
        return nullptr;
    const util::String base = util::FileSystem::GetInstancePtr()->ShaderDir() + name;
    const util::String vertexPath = base + VERTEX_EXTENSION;
    const util::String fragmentPath = base + FRAGMENT_EXTENSION;
    const util::String vertex = util::FileSystem::ReadWholeFile(vertexPath);
    const util::String fragment = util::FileSystem::ReadWholeFile(fragmentPath);
    CheckSource(vertex, vertexPath);
    CheckSource(fragment, fragmentPath);
    return RememberingMissingSupport([&] { return new Shader(vertex, fragment, name); });
}

Shader* CreateDefaultShader()
{
    // Without support the stand-in can't be made either; the one message is the named shader's.
    if (ShaderManager::IsSupportKnownMissing() || !HasGLLoaded())
        return nullptr;
    const auto make = [] { return new Shader("", "", "[NAME MISSING]"); };
    if (ShaderManager::AreShadersOn())
        return RememberingMissingSupport(make);
    // With shaders off nobody draws with it: a driver without support is no news worth a message.
    try
    {
        return make();
    }
    catch (const FatalException&)
    {
        ShaderManager::MarkSupportMissing();
        return nullptr;
    }
}

} // namespace rendering
