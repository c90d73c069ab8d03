#include "ScriptFixture.h"

#include "script/AttribWrapper.h"

#include <limits>

namespace
{
// A program object with settings of several kinds.
class Settings : public script::Reflected
{
public:
    Settings()
        : script::Reflected("Settings"), speed(this, "speed", 1.5f), on(this, "on", true),
          gravity(this, "gravity", math::Vec2(0.0f, -9.8f)), count(this, "count", 3),
          name(this, "name", std::string("plain")), size(this, "size", math::TVector2<int>(4, 5)),
          outside(this, "outside", this, &Settings::GetOutside, &Settings::SetOutside),
          remote(this, "remote", &m_remoteValue)
    {
        speed->AddChangeCallback(util::MakeCallback(&Settings::OnSpeed, this));
    }

    float GetOutside() const { return m_outside; }
    void SetOutside(float x) { m_outside = x < 0.0f ? 0.0f : x; }
    void OnSpeed() { ++m_speedChanges; }

    // Before the attributes: the outside one reads it when it is made.
    float m_outside = 2.0f;
    script::AttribWrapper<float> speed;
    script::AttribWrapper<bool> on;
    script::AttribWrapper<math::Vec2> gravity;
    script::AttribWrapper<int> count;
    script::AttribWrapper<std::string> name;
    script::AttribWrapper<math::TVector2<int>> size;
    script::AttribWrapper<float> outside;
    int m_remoteValue = 7;
    script::AttribWrapper<int> remote;
    int m_speedChanges = 0;
};

class Attributes : public ScriptFixture
{
protected:
    void SetUp() override
    {
        ScriptFixture::SetUp();
        m_settings = QLEX_NEW new Settings();
        Root()->AddReflectedChild(m_settings);
    }
    void TearDown() override
    {
        Root()->RemoveVariable("Settings");
        m_settings = nullptr;
        ScriptFixture::TearDown();
    }

    util::SharedPtr<Settings> m_settings;
};
} // namespace

TEST_F(Attributes, ReadAndWriteLikePlainMembersAndLikeVariables)
{
    Settings& s = *m_settings;
    EXPECT_EQ(1.5f, float(s.speed));
    EXPECT_EQ("1.5", Run("Settings.speed"));
    s.speed = 2.0f;
    EXPECT_EQ("2", Run("Settings.speed"));
    Run("Settings.speed = 5");
    EXPECT_EQ(5.0f, float(s.speed)); // an int is taken for a float
    Run("Settings.gravity = [1, -2.5]");
    EXPECT_EQ(math::Vec2(1.0f, -2.5f), math::Vec2(s.gravity));
    Run("Settings.size = [640, 480]; Settings.name = \"x\\\"y\"; Settings.on = false; Settings.count = -2");
    EXPECT_EQ(640, math::TVector2<int>(s.size).x);
    EXPECT_EQ("x\"y", std::string(s.name));
    EXPECT_FALSE(bool(s.on));
    EXPECT_EQ(-2, int(s.count));
    EXPECT_FALSE(s.count->IsDefaultValue());
    s.count->SetToDefault();
    EXPECT_TRUE(s.count->IsDefaultValue());
    EXPECT_EQ("3", Run("Settings.count"));
}

TEST_F(Attributes, ABadTypeIsLoggedAndTheOldValueStays)
{
    Settings& s = *m_settings;
    struct Case
    {
        const char* statement;
        const char* name;
    };
    const Case cases[] = {{"Settings.speed = \"x\"", "speed"},
                          {"Settings.speed = true", "speed"},
                          {"Settings.count = 1.5", "count"},
                          {"Settings.size = [1.0, 2.0]", "size"},
                          {"Settings.gravity = [1, 2, 3]", "gravity"},
                          {"Settings.on = 1", "on"},
                          {"Settings.name = 5", "name"},
                          {"Settings.speed = (a)=>{ a }", "speed"}};
    for (const Case& c : cases)
    {
        m_log.clear();
        Run(c.statement);
        EXPECT_TRUE(Reported(std::string("!! ERROR: ") + c.name + " was bound to bad type")) << c.statement;
    }
    EXPECT_EQ(1.5f, float(s.speed));
    EXPECT_EQ("1.5", Run("Settings.speed"));
    EXPECT_EQ("[4, 5]", Run("Settings.size"));
    EXPECT_EQ("[0, -9.80000019]", Run("Settings.gravity"));
    EXPECT_EQ(3, int(s.count));
    EXPECT_FALSE(s.speed->IsBound());
    EXPECT_EQ(0u, script::AbstractAttrib::GetDynamicAttributeCount());
}

TEST_F(Attributes, NaNIsRefusedAndInfinityWhereOnlyFiniteNumbersMayGo)
{
    Settings& s = *m_settings;
    s.gravity->RequireFinite();
    Run("Settings.speed = 0.0 / 0.0");
    EXPECT_TRUE(Reported("!! ERROR: speed must be a number, not NaN; it keeps 1.5"));
    Run("Settings.gravity = [1.0 / 0.0, 0.0]");
    EXPECT_TRUE(
        Reported("!! ERROR: gravity must be a finite number, not [+inf, 0]; it keeps [0, -9.80000019]"));
    Run("Settings.outside = 0.0 / 0.0");
    EXPECT_TRUE(Reported("!! ERROR: outside must be a number, not NaN; it keeps 2"));
    EXPECT_EQ(1.5f, float(s.speed));
    EXPECT_EQ(math::Vec2(0.0f, -9.8f), s.gravity.Get());
    EXPECT_EQ(2.0f, float(s.outside));

    // Where nothing forbids it, infinity stays: it prints as +inf and reads back.
    EXPECT_EQ("+inf", Run("Settings.speed = 1.0 / 0.0"));
    EXPECT_EQ("+inf", Run("Settings.speed"));
    // A binding that turns NaN unbinds and keeps the last good value.
    Run("Settings.speed = 2.0");
    Run("Settings.speed = { 0.0 / 0.0 }");
    EXPECT_EQ(2.0f, float(s.speed));
    EXPECT_FALSE(s.speed->IsBound());

    // The program's own values are its business.
    s.speed = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(math::IsNaN(float(s.speed)));
}

TEST_F(Attributes, BoundExpressionsAreRecalculatedEachUpdate)
{
    Settings& s = *m_settings;
    Run("k = 2.0; Settings.speed = { k * 3.0 }");
    EXPECT_TRUE(s.speed->IsBound());
    EXPECT_EQ(6.0f, float(s.speed));
    Run("k = 4.0"); // every execution ends with an update
    EXPECT_EQ(12.0f, float(s.speed));
    m_settings->m_speedChanges = 0;
    m_parser->Update();
    m_parser->Update();
    EXPECT_EQ(0, m_settings->m_speedChanges); // an equal value runs no callback
    // While bound, the variable holds the function: a binding that reads itself recurses and unbinds.
    m_log.clear();
    Run("Settings.count = { Settings.count + 1 }");
    EXPECT_TRUE(Reported("count was bound to bad type"));
    EXPECT_EQ(3, int(s.count));

    // The program's own write unbinds.
    s.speed = 1.0f;
    EXPECT_FALSE(s.speed->IsBound());
    Run("k = 10.0");
    EXPECT_EQ(1.0f, float(s.speed));
    Run("Settings.count = 0");
    EXPECT_EQ(0u, script::AbstractAttrib::GetDynamicAttributeCount());
}

TEST_F(Attributes, AFailingBindingUnbindsAtItsFirstFailure)
{
    Settings& s = *m_settings;
    Run("Settings.speed = { 7.0 }");
    EXPECT_EQ(7.0f, float(s.speed));
    Run("Settings.speed = { nothere * 2.0 }");
    EXPECT_TRUE(Reported("speed was bound to bad type"));
    EXPECT_FALSE(s.speed->IsBound());
    EXPECT_EQ(7.0f, float(s.speed));

    Run("v = 3.0; Settings.speed = { v }");
    EXPECT_EQ(3.0f, float(s.speed));
    m_log.clear();
    Run("v = \"text\"");
    EXPECT_TRUE(Reported("speed was bound to bad type"));
    EXPECT_FALSE(s.speed->IsBound());
    EXPECT_EQ("3", Run("Settings.speed"));
}

TEST_F(Attributes, AssigningTheSameObjectAgainChangesNothing)
{
    Settings& s = *m_settings;
    script::ObjectPtr value = script::ValueToObject(9.0f);
    s.speed->SetObject(value);
    EXPECT_EQ(1, m_settings->m_speedChanges);
    s.speed->SetObject(value);
    EXPECT_EQ(1, m_settings->m_speedChanges);
    s.speed->SetObject(script::ValueToObject(9.0f));
    EXPECT_EQ(1, m_settings->m_speedChanges);
    s.speed->SetObject(script::ValueToObject(8.0f));
    EXPECT_EQ(2, m_settings->m_speedChanges);
}

TEST_F(Attributes, OutsideValuesAreFollowedFromTheNextPoke)
{
    Settings& s = *m_settings;
    EXPECT_EQ("2", Run("Settings.outside"));
    m_settings->m_outside = 4.0f;
    EXPECT_EQ("2", Root()->GetVariable("Settings") ? m_settings->GetVariable("outside")->GetObject()->ToText()
                                                   : "");
    m_parser->Update();
    EXPECT_EQ("4", Run("Settings.outside"));
    // The setter may refuse: the variable follows what the getter says.
    Run("Settings.outside = -3.0");
    EXPECT_EQ(0.0f, float(s.outside));
    EXPECT_EQ("0", Run("Settings.outside"));

    m_settings->m_remoteValue = 11;
    m_parser->Update();
    EXPECT_EQ("11", Run("Settings.remote"));
    Run("Settings.remote = 12");
    EXPECT_EQ(12, m_settings->m_remoteValue);
}

TEST_F(Attributes, AnAttributeThatDiesWhileBoundLeavesTheSet)
{
    {
        util::SharedPtr<Settings> other = QLEX_NEW new Settings();
        script::VariablePtr speed = other->GetVariable("speed");
        speed->SetObject(m_parser->Execute("{ 2.0 }"));
        EXPECT_EQ(1u, script::AbstractAttrib::GetDynamicAttributeCount());
    }
    m_parser->Update();
    EXPECT_EQ(0u, script::AbstractAttrib::GetDynamicAttributeCount());
}
