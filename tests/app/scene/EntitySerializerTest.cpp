#include "app/EntitySerializer.h"
#include "script/Expressions.h"
#include "script/Parser.h"

#include <gtest/gtest.h>

namespace
{

TEST(EntitySerializer, GetOfMissingKeyThrowsAndHasTellsFirst)
{
    app::EntitySerializer record;
    EXPECT_FALSE(record.Has("size"));
    try
    {
        record.Get<float>("size");
        FAIL() << "no exception";
    }
    catch (BadDataException& e)
    {
        EXPECT_NE(std::string(e.what()).find("Failed to find attribute \"size\""), std::string::npos);
    }
}

TEST(EntitySerializer, IntegerReadsAsFloatAndLaterSetWins)
{
    app::EntitySerializer record;
    record.Set("radius", 2);
    EXPECT_FLOAT_EQ(record.Get<float>("radius"), 2.0f);
    record.Set("radius", 3.5f);
    EXPECT_FLOAT_EQ(record.Get<float>("radius"), 3.5f);
    EXPECT_EQ(record.Size(), 1u);
    EXPECT_THROW(record.Get<math::Vec2>("radius"), std::exception);
}

TEST(EntitySerializer, PrintsOneKeyOnOneLineAndMoreKeysIndented)
{
    app::EntitySerializer water;
    water.Set("vecs", std::vector<math::Vec2>());
    EXPECT_EQ(water.ToFunctionCall("Scene.addWater")->ToCode(), "Scene.addWater {vecs = []}");

    app::EntitySerializer box;
    box.Set("angle", 0.5f);
    box.Set("size", math::Vec2(1.0f, 2.0f));
    const std::string code = box.ToFunctionCall("Scene.addBox")->ToCode();
    // Key order is the hash table's, so either order may stand; the shape of the text may not vary.
    EXPECT_TRUE(code == "Scene.addBox {\n    angle = 0.5;\n    size = [1.0, 2.0]\n}" ||
                code == "Scene.addBox {\n    size = [1.0, 2.0];\n    angle = 0.5\n}")
        << code;
}

TEST(EntitySerializer, ClosureOfInlineFunctionBecomesRecord)
{
    script::Parser* parser = script::Parser::GetInstancePtr();
    script::ObjectPtr object = parser->Execute("{ a = 1; b = \"text\"; c = [1.5, 2] }");
    auto function = util::dynamic_pointer_cast<script::Function>(object);
    ASSERT_TRUE(function);
    function->Call(script::ObjectList());
    app::EntitySerializer record(function->GetLastCallClosure());
    EXPECT_EQ(record.Get<int>("a"), 1);
    EXPECT_EQ(record.Get<std::string>("b"), "text");
    EXPECT_EQ(record.Get<math::Vec2>("c"), math::Vec2(1.5f, 2.0f));
}

} // namespace
