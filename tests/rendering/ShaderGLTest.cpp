// The shader programs of the data folder, compiled by the GL of the test's window. Runs under Xvfb; without
// a display it skips.
#include "GLTestWindow.h"

#include "logging/Log.h"
#include "rendering/Shader.h"
#include "rendering/ShaderManager.h"
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace
{
constexpr int WIDTH = 64;
constexpr int HEIGHT = 64;

// The uniforms that the drawing code hands each program.
const std::map<std::string, std::vector<std::string>> PROGRAMS = {
    {"box", {"InsideColor", "BorderColor", "BorderWidth", "PixelSize", "HalfSize"}},
    {"circle",
     {"InsideColor", "BorderColor", "BorderWidth", "PixelSize", "Radius", "SquareScale", "CakeSize",
      "CakeSlizeColor"}},
    {"polygon", {"InsideColor", "BorderColor", "BorderWidth", "PixelSize", "DistSampler", "DistScale"}},
    {"plane", {"InsideColor", "BorderColor", "BorderWidth", "PixelSize", "Plane"}},
    {"line", {"Color", "Width", "PixelSize"}},
    {"water", {"Cutoff", "Color"}},
};

GLhandleARB CurrentProgram()
{
    return glGetHandleARB(GL_PROGRAM_OBJECT_ARB);
}

class ShaderGL : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QLEX_OPEN_GL_WINDOW(s_window, WIDTH, HEIGHT);
        if (!rendering::HasShaderSupport())
            GTEST_SKIP() << "this GL runs no shaders";
        if (!s_logger)
        {
            s_logger = QLEX_NEW new logging::FunctionLogger(logging::Warning, [](const std::string& text)
                                                            { s_warnings.push_back(text); });
            logging::Logger::GetInstancePtr()->AddLogger(s_logger);
        }
        s_warnings.clear();
        rendering::ShaderManager::SetShadersOn(true);
    }
    void TearDown() override
    {
        rendering::ShaderManager::SetShadersOn(false);
        util::FileSystem::GetInstancePtr()->SetWorkDir(s_stageDir);
    }
    static void TearDownTestSuite()
    {
        if (s_logger)
            logging::Logger::GetInstancePtr()->RemoveLogger(s_logger);
        s_logger = nullptr;
    }

    // The drawing's fixed path stands in when the proxy holds no program of its own.
    static bool FellBack(const rendering::ShaderProxy& shader)
    {
        return !rendering::ShaderManager::IsUsable(shader);
    }

    // A work folder whose shader `name` is the given pair.
    static void UseBadPair(const std::string& name, const std::string& vertex, const std::string& fragment)
    {
        const std::string dir = ::testing::TempDir() + "qlex_shader_test/";
        std::filesystem::create_directories(dir + "data/shaders");
        util::FileSystem::WriteFile(dir + "data/shaders/" + name + ".vert", vertex);
        util::FileSystem::WriteFile(dir + "data/shaders/" + name + ".frag", fragment);
        util::FileSystem::GetInstancePtr()->SetWorkDir(dir);
    }

    static GLTestWindow s_window;
    inline static util::SharedPtr<logging::ILogger> s_logger;
    inline static std::vector<std::string> s_warnings;
    inline static const std::string s_stageDir = util::FileSystem::GetInstancePtr()->WorkDir();
};
GLTestWindow ShaderGL::s_window;
} // namespace

TEST_F(ShaderGL, EveryProgramOfTheDataFolderCompilesAndLinksWithEveryUniformFound)
{
    for (const auto& [name, uniforms] : PROGRAMS)
    {
        rendering::ShaderProxy shader = rendering::ShaderManager::GetInstancePtr()->Load(name);
        ASSERT_FALSE(FellBack(shader)) << name << ": " << (s_warnings.empty() ? "" : s_warnings.back());
        EXPECT_EQ(shader->GetName(), name);
        EXPECT_NE(shader->GetHandle(), GLhandleARB(0));
        for (const std::string& uniform : uniforms)
            EXPECT_NE(shader->GetUniformLocation(uniform), -1) << name << ": " << uniform;
    }
    EXPECT_TRUE(s_warnings.empty()) << s_warnings.front();
    EXPECT_NO_THROW(CheckForGLError());
}

TEST_F(ShaderGL, ThePrefetchRegistersEveryPairOfTheFolderUnderItsName)
{
    rendering::ShaderManager& manager = *rendering::ShaderManager::GetInstancePtr();
    manager.Prefetch();
    // Registered, the names give back the mentors made by the prefetch.
    for (const auto& entry : PROGRAMS)
    {
        const rendering::ShaderProxy again = manager.Load(entry.first);
        EXPECT_TRUE(again == manager.Load(entry.first));
        EXPECT_FALSE(FellBack(again)) << entry.first;
    }
}

TEST_F(ShaderGL, BindingNestsAndTheLastUnbindLeavesNoProgram)
{
    const rendering::ShaderProxy box = rendering::ShaderManager::GetInstancePtr()->Load("box");
    const rendering::ShaderProxy water = rendering::ShaderManager::GetInstancePtr()->Load("water");
    box->Bind();
    EXPECT_EQ(CurrentProgram(), box->GetHandle());
    water->Bind();
    EXPECT_EQ(CurrentProgram(), water->GetHandle());
    water->Unbind();
    EXPECT_EQ(CurrentProgram(), box->GetHandle());
    box->Bind();
    box->Unbind();
    EXPECT_EQ(CurrentProgram(), box->GetHandle());
    box->Unbind();
    EXPECT_EQ(CurrentProgram(), GLhandleARB(0));
}

TEST_F(ShaderGL, AMissingUniformIsLoggedAtEachCallAndSetsNothing)
{
    const rendering::ShaderProxy water = rendering::ShaderManager::GetInstancePtr()->Load("water");
    water->Bind();
    water->SetUniform("Missing", 1.0f);
    water->SetUniform("Missing", 1.0f);
    water->SetUniform("Cutoff", 0.25f);
    float cutoff = 0;
    glGetUniformfvARB(water->GetHandle(), water->GetUniformLocation("Cutoff"), &cutoff);
    water->Unbind();
    EXPECT_FLOAT_EQ(cutoff, 0.25f);
    // The logger folds a warning repeated within one frame into one line.
    ASSERT_EQ(s_warnings.size(), 1u);
    EXPECT_NE(s_warnings[0].find("Uniform \"Missing\" not found in shader"), std::string::npos)
        << s_warnings[0];
    EXPECT_NO_THROW(CheckForGLError());
}

TEST_F(ShaderGL, AUniformFindsItsLocationAgainAfterTheProgramIsMadeAgain)
{
    // Counts the look-ups, which only a forgotten location causes.
    class CountingUniform : public rendering::Uniform
    {
    public:
        using Uniform::Uniform;
        int GetLocationImpl() const override
        {
            ++lookups;
            return Uniform::GetLocationImpl();
        }
        mutable int lookups = 0;
    };
    const rendering::ShaderProxy line = rendering::ShaderManager::GetInstancePtr()->Load("line");
    util::SharedPtr<CountingUniform> width = QLEX_NEW new CountingUniform(line, "Width");
    const int first = width->GetLocation();
    EXPECT_NE(first, -1);
    EXPECT_EQ(width->GetLocation(), first);
    EXPECT_EQ(width->lookups, 1);
    line.GetMentor()->Unload();
    line.GetMentor()->Load();
    EXPECT_NE(width->GetLocation(), -1);
    EXPECT_EQ(width->lookups, 2);
}

TEST_F(ShaderGL, AProgramOfOneStageLinks)
{
    const rendering::Shader vertexOnly("void main() { gl_Position = ftransform(); }", "", "vertex only");
    EXPECT_NE(vertexOnly.GetHandle(), GLhandleARB(0));
    const rendering::Shader empty("", "", "empty");
    EXPECT_NE(empty.GetHandle(), GLhandleARB(0));
}

TEST_F(ShaderGL, EmptyTruncatedOrBinaryFilesAreRefusedWithAMessageAndTheStandInTakesOver)
{
    const std::string vertex = util::FileSystem::ReadWholeFile(s_stageDir + "data/shaders/box.vert");
    const std::string fragment = util::FileSystem::ReadWholeFile(s_stageDir + "data/shaders/box.frag");
    ASSERT_FALSE(fragment.empty());
    struct Case
    {
        std::string what;
        std::string vertex;
        std::string fragment;
        std::string message;
    };
    const std::string binary("\x7f"
                             "ELF\x02\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00",
                             16);
    const std::vector<Case> cases = {
        {"empty", vertex, "", "is empty"},
        {"truncated", vertex, fragment.substr(0, fragment.size() / 2), "Failed to compile shader"},
        {"binary", binary, fragment, "is not text"},
    };
    for (const Case& c : cases)
    {
        UseBadPair("bad_" + c.what, c.vertex, c.fragment);
        s_warnings.clear();
        const rendering::ShaderProxy bad = rendering::ShaderManager::GetInstancePtr()->Load("bad_" + c.what);
        EXPECT_TRUE(FellBack(bad)) << c.what;
        ASSERT_NE(bad.get(), nullptr) << c.what;
        EXPECT_EQ(bad->GetName(), "[NAME MISSING]") << c.what;
        ASSERT_EQ(s_warnings.size(), 1u) << c.what;
        EXPECT_NE(s_warnings[0].find(c.message), std::string::npos) << c.what << ": " << s_warnings[0];
        // Used again, it neither loads nor complains again.
        EXPECT_TRUE(FellBack(bad));
        EXPECT_EQ(s_warnings.size(), 1u) << c.what;
    }
    EXPECT_NO_THROW(CheckForGLError());
}

TEST_F(ShaderGL, WithShadersOffNoFileIsReadAndTheDrawingFallsBack)
{
    rendering::ShaderManager::SetShadersOn(false);
    UseBadPair("bad_while_off", "", "");
    const rendering::ShaderProxy bad = rendering::ShaderManager::GetInstancePtr()->Load("bad_while_off");
    EXPECT_TRUE(FellBack(bad));
    EXPECT_TRUE(s_warnings.empty()) << s_warnings.front();
    // Turned off after loading, a good program stays loaded but is not used.
    util::FileSystem::GetInstancePtr()->SetWorkDir(s_stageDir);
    rendering::ShaderManager::SetShadersOn(true);
    const rendering::ShaderProxy water = rendering::ShaderManager::GetInstancePtr()->Load("water");
    ASSERT_FALSE(FellBack(water));
    rendering::ShaderManager::SetShadersOn(false);
    EXPECT_TRUE(water.GetMentor()->IsLoaded());
    EXPECT_TRUE(FellBack(water));
}
