#pragma once

#include "math/Math.h"
#include "math/Matrix.h"
#include "rendering/GLContext.h"
#include "util/Mentor.h"
#include "util/StackedBind.h"
#include "util/String.h"

#include <string>
#include <vector>

namespace rendering
{

// A GL program of one vertex and one fragment source, through the ARB shader objects. Binding nests: an
// inner Bind gives way to the outer program again at its Unbind.
class Shader : public util::Pointee, public util::StackedBind<Shader>
{
public:
    // Throws FatalException without GL or shader support, BadDataException when a stage doesn't compile or
    // the program doesn't link. An empty source leaves its stage out.
    Shader(util::String vertexSource, util::String fragmentSource, util::String name);
    ~Shader() override;

    // A fixed guess: the driver doesn't tell, and shaders aren't counted among the graphics resources.
    virtual size_t MemoryUsage() const { return 100; }
    void BindImpl() const override;
    void UnbindImpl() const override;

    // Uniforms apply to the bound program: call these between Bind and Unbind. A name the program lacks is
    // logged and ignored.
    template <class T> void SetUniform(const std::string& name, const T& value) const
    {
        const int location = GetUniformLocation(name);
        if (location != -1)
            SetUniform(location, value);
    }
    void SetUniform(int location, const int& value) const;
    void SetUniform(int location, const float& value) const;
    void SetUniform(int location, const bool& value) const;
    void SetUniform(int location, const math::TVector2<float>& value) const;
    void SetUniform(int location, const math::TVector3<float>& value) const;
    void SetUniform(int location, const math::TVector4<float>& value) const;
    void SetUniform(int location, const math::TMatrix4<float>& value) const;
    void SetUniform(int location, const std::vector<float>& value) const;
    void SetUniform(int location, const std::vector<math::TVector2<float>>& value) const;
    void SetUniform(int location, const std::vector<math::TVector3<float>>& value) const;
    void SetUniform(int location, const std::vector<math::TVector4<float>>& value) const;

    // -1 when the program is empty or has no such variable (logged).
    int GetUniformLocation(const std::string& name) const;
    int GetAttributeLocation(const std::string& name) const;

    GLhandleARB GetHandle() const { return m_program; }
    const util::String& GetName() const { return m_name; }

private:
    GLhandleARB m_program = 0;
    util::String m_name;
};

using ShaderProxy = util::MentorProxy<Shader>;
using ShaderPtr = util::SharedPtr<Shader>;

// Compiles one stage; its log, if any, goes to the log at the info level.
GLhandleARB LoadShader(int type, const util::String& source, const util::String& name);
util::String GetShaderLog(GLhandleARB shader);
util::String GetProgramLog(GLhandleARB program);
// Throws FatalException naming what is missing when the driver can't run our shaders.
void AssertShaderSupport();
// The same test without the exception.
bool HasShaderSupport();

// A named variable of a shader that keeps its location across reloads: the location is looked up on first
// use and forgotten when the shader is dropped with the window.
class ShaderVariable : public util::Pointee
{
public:
    ShaderVariable(ShaderProxy shader, util::String name);
    ~ShaderVariable() override;

    int GetLocation() const;
    virtual int GetLocationImpl() const = 0;
    virtual void OnShaderCreate() {}
    virtual void OnShaderDestroy() { m_location = -1; }

    const util::String& GetName() const { return m_name; }
    const ShaderProxy& GetShader() const { return m_shader; }

private:
    ShaderProxy m_shader;
    util::String m_name;
    mutable int m_location = -1;
    util::SharedPtr<util::Callback> m_onCreate;
    util::SharedPtr<util::Callback> m_onDestroy;
};

class Uniform : public ShaderVariable
{
public:
    using ShaderVariable::ShaderVariable;
    int GetLocationImpl() const override;
    // On the bound shader, at the remembered location.
    template <class T> void Set(const T& value) const
    {
        const int location = GetLocation();
        if (location != -1)
            GetShader()->SetUniform(location, value);
    }
};

class Attribute : public ShaderVariable
{
public:
    using ShaderVariable::ShaderVariable;
    int GetLocationImpl() const override;
};

} // namespace rendering
