#include "rendering/Shader.h"

#include "logging/Log.h"

namespace rendering
{

namespace
{
// A vector of N-component vectors as one flat float array, for the glUniform*fv calls.
template <class V> const float* FlatData(const std::vector<V>& values)
{
    static_assert(sizeof(V) % sizeof(float) == 0, "vectors of floats only");
    return values.empty() ? nullptr : &values[0].x;
}
} // namespace

Shader::Shader(util::String vertexSource, util::String fragmentSource, util::String name)
    : m_name(std::move(name))
{
    if (!HasGLLoaded())
        QLEX_THROW(FatalException("Tried to create shader when GL wasn't loaded"));
    AssertShaderSupport();
    m_program = glCreateProgramObjectARB();
    try
    {
        if (!vertexSource.empty())
        {
            const GLhandleARB vertex = LoadShader(GL_VERTEX_SHADER_ARB, vertexSource, m_name);
            glAttachObjectARB(m_program, vertex);
            // Attached, it lives as long as the program.
            glDeleteObjectARB(vertex);
        }
        if (!fragmentSource.empty())
        {
            const GLhandleARB fragment = LoadShader(GL_FRAGMENT_SHADER_ARB, fragmentSource, m_name);
            glAttachObjectARB(m_program, fragment);
            glDeleteObjectARB(fragment);
        }
        glLinkProgramARB(m_program);
        const util::String log = GetProgramLog(m_program);
        if (!log.empty())
            Log(logging::Info, "-- Link results for shader: " + m_name + "\n" + log);
        GLint linked = 0;
        glGetObjectParameterivARB(m_program, GL_OBJECT_LINK_STATUS_ARB, &linked);
        if (!linked)
            QLEX_THROW(BadDataException("Failed to link shader"));
    }
    catch (...)
    {
        glDeleteObjectARB(m_program);
        m_program = 0;
        throw;
    }
    CheckForGLError();
}

Shader::~Shader()
{
    // The context may be gone with the window already; its objects went with it.
    if (m_program && HasGLLoaded())
        glDeleteObjectARB(m_program);
}

void Shader::BindImpl() const
{
    CheckForGLError();
    glUseProgramObjectARB(m_program);
    CheckForGLError();
}

void Shader::UnbindImpl() const
{
    CheckForGLError();
    glUseProgramObjectARB(0);
    CheckForGLError();
}

void Shader::SetUniform(int location, const int& value) const
{
    glUniform1iARB(location, value);
}

void Shader::SetUniform(int location, const float& value) const
{
    glUniform1fARB(location, value);
}

void Shader::SetUniform(int location, const bool& value) const
{
    glUniform1iARB(location, value ? 1 : 0);
}

void Shader::SetUniform(int location, const math::TVector2<float>& value) const
{
    glUniform2fvARB(location, 1, &value.x);
}

void Shader::SetUniform(int location, const math::TVector3<float>& value) const
{
    glUniform3fvARB(location, 1, &value.x);
}

void Shader::SetUniform(int location, const math::TVector4<float>& value) const
{
    glUniform4fvARB(location, 1, &value.x);
}

void Shader::SetUniform(int location, const math::TMatrix4<float>& value) const
{
    // Our matrices are row-major; GL transposes them on the way in.
    glUniformMatrix4fvARB(location, 1, GL_TRUE, value.m);
}

void Shader::SetUniform(int location, const std::vector<float>& value) const
{
    glUniform1fvARB(location, GLsizei(value.size()), value.empty() ? nullptr : value.data());
}

void Shader::SetUniform(int location, const std::vector<math::TVector2<float>>& value) const
{
    glUniform2fvARB(location, GLsizei(value.size()), FlatData(value));
}

void Shader::SetUniform(int location, const std::vector<math::TVector3<float>>& value) const
{
    glUniform3fvARB(location, GLsizei(value.size()), FlatData(value));
}

void Shader::SetUniform(int location, const std::vector<math::TVector4<float>>& value) const
{
    glUniform4fvARB(location, GLsizei(value.size()), FlatData(value));
}

int Shader::GetUniformLocation(const std::string& name) const
{
    if (!m_program)
        return -1;
    const int location = glGetUniformLocationARB(m_program, name.c_str());
    if (location == -1)
        Log(logging::Warning, "Uniform \"" + name + "\" not found in shader");
    return location;
}

int Shader::GetAttributeLocation(const std::string& name) const
{
    if (!m_program)
        return -1;
    const int location = glGetAttribLocationARB(m_program, name.c_str());
    if (location == -1)
        Log(logging::Warning, "Attribute \"" + name + "\" not found.");
    return location;
}

util::String GetShaderLog(GLhandleARB shader)
{
    GLint length = 0;
    glGetObjectParameterivARB(shader, GL_OBJECT_INFO_LOG_LENGTH_ARB, &length);
    if (length <= 1)
        return util::String();
    std::string log(size_t(length), '\0');
    GLsizei written = 0;
    glGetInfoLogARB(shader, length, &written, &log[0]);
    log.resize(size_t(written));
    return log;
}

util::String GetProgramLog(GLhandleARB program)
{
    // The ARB objects keep one kind of log for both.
    return GetShaderLog(program);
}

GLhandleARB LoadShader(int type, const util::String& source, const util::String& name)
{
    const GLhandleARB shader = glCreateShaderObjectARB(GLenum(type));
    if (shader == 0)
        QLEX_THROW(BadDataException("CreateShader returned 0"));
    const GLcharARB* text = source.c_str();
    const GLint length = GLint(source.size());
    glShaderSourceARB(shader, 1, &text, &length);
    glCompileShaderARB(shader);
    GLint compiled = 0;
    glGetObjectParameterivARB(shader, GL_OBJECT_COMPILE_STATUS_ARB, &compiled);
    const util::String log = GetShaderLog(shader);
    if (!log.empty())
        Log(logging::Info, "-- Compilation results for shader: " + name + "\n" + log);
    if (!compiled)
    {
        glDeleteObjectARB(shader);
        QLEX_THROW(BadDataException("Failed to compile shader"));
    }
    return shader;
}

void AssertShaderSupport()
{
    // The program and language extensions come with the objects; a driver that hides the objects can't
    // run our shaders whatever it says of the rest.
    if (!GLEW_ARB_vertex_program || !GLEW_ARB_fragment_program || !GLEW_ARB_shader_objects ||
        !GLEW_ARB_vertex_shader || !GLEW_ARB_fragment_shader)
    {
        QLEX_THROW(FatalException(
            "This system doesn't support shaders. Please update your graphics driver and try again"));
    }
    struct Function
    {
        const void* pointer;
        const char* name;
    };
    const Function functions[] = {
        {reinterpret_cast<const void*>(glGetObjectParameterivARB), "gl_GetShaderiv"},
        {reinterpret_cast<const void*>(glGetInfoLogARB), "gl_GetShaderInfoLog"},
        {reinterpret_cast<const void*>(glCreateShaderObjectARB), "gl_CreateShader"},
        {reinterpret_cast<const void*>(glShaderSourceARB), "gl_ShaderSource"},
        {reinterpret_cast<const void*>(glCompileShaderARB), "gl_CompileShader"},
        {reinterpret_cast<const void*>(glCreateProgramObjectARB), "gl_CreateProgram"},
        {reinterpret_cast<const void*>(glAttachObjectARB), "gl_AttachShader"},
        {reinterpret_cast<const void*>(glLinkProgramARB), "gl_LinkProgram"},
        {reinterpret_cast<const void*>(glDeleteObjectARB), "gl_DeleteShader"},
        {reinterpret_cast<const void*>(glGetUniformLocationARB), "gl_GetUniformLocation"},
        {reinterpret_cast<const void*>(glGetAttribLocationARB), "gl_GetAttribLocation"},
        {reinterpret_cast<const void*>(glUseProgramObjectARB), "gl_UseProgram"},
        {reinterpret_cast<const void*>(glUniform1iARB), "gl_Uniform1i"},
        {reinterpret_cast<const void*>(glUniform2fvARB), "gl_Uniform2fv"},
        {reinterpret_cast<const void*>(glUniformMatrix4fvARB), "gl_UniformMatrix4fv"},
        {reinterpret_cast<const void*>(glUniform1fvARB), "gl_Uniform1fv"},
        {reinterpret_cast<const void*>(glUniform3fvARB), "gl_Uniform3fv"},
        {reinterpret_cast<const void*>(glUniform4fvARB), "gl_Uniform4fv"},
    };
    for (const Function& f : functions)
    {
        if (!f.pointer)
            QLEX_THROW(FatalException(std::string("Unsupported shader function: ") + f.name));
    }
}

bool HasShaderSupport()
{
    try
    {
        AssertShaderSupport();
        return true;
    }
    catch (const FatalException&)
    {
        return false;
    }
}

ShaderVariable::ShaderVariable(ShaderProxy shader, util::String name)
    : m_shader(std::move(shader)), m_name(std::move(name))
{
    if (!m_shader.GetMentor())
        return;
    m_onCreate = QLEX_NEW new util::Callback([this] { OnShaderCreate(); }, this);
    m_onDestroy = QLEX_NEW new util::Callback([this] { OnShaderDestroy(); }, this);
    m_shader.GetMentor()->OnLoad().Add(m_onCreate);
    m_shader.GetMentor()->OnUnload().Add(m_onDestroy);
}

ShaderVariable::~ShaderVariable()
{
    if (!m_shader.GetMentor())
        return;
    m_shader.GetMentor()->OnLoad().Remove(m_onCreate);
    m_shader.GetMentor()->OnUnload().Remove(m_onDestroy);
}

int ShaderVariable::GetLocation() const
{
    if (m_location == -1)
        m_location = GetLocationImpl();
    return m_location;
}

int Uniform::GetLocationImpl() const
{
    Shader* shader = GetShader().get();
    return shader ? shader->GetUniformLocation(GetName()) : -1;
}

int Attribute::GetLocationImpl() const
{
    Shader* shader = GetShader().get();
    return shader ? shader->GetAttributeLocation(GetName()) : -1;
}

} // namespace rendering
