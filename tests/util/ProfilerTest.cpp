#include "util/Profiler.h"

#include <gtest/gtest.h>

TEST(Profiler, ScopesFormATreeAndUncoveredTimeShowsAsMissing)
{
    util::Profiler& profiler = *util::Profiler::GetInstancePtr();
    profiler.Reset();
    profiler.SetActive(true);
    for (int frame = 0; frame < 3; ++frame)
    {
        util::ScopeProfiler step("Step");
        {
            util::ScopeProfiler inner("Collide");
        }
    }
    profiler.OnKeyPress(269); // off
    profiler.OnKeyPress(269); // on again, with the force flag: the next update writes the table
    {
        util::ScopeProfiler step("Step");
    }
    profiler.Update();
    const std::string out = profiler.GetOutput();
    EXPECT_NE(out.find("Profile data for Main"), std::string::npos) << out;
    EXPECT_NE(out.find("*0   "), std::string::npos) << out; // "Step" has a child, so it is marked
    EXPECT_NE(out.find("MISSING TIME"), std::string::npos) << out;
    // Enter descends into the heaviest child that has children; period comes back.
    EXPECT_TRUE(profiler.OnKeyPress(271));
    {
        util::ScopeProfiler step("Step");
    }
    profiler.Update();
    EXPECT_NE(profiler.GetOutput().find("Profile data for Step"), std::string::npos);
    EXPECT_TRUE(profiler.OnKeyPress(266));
}

TEST(Profiler, AnUnbalancedEndStopsUpdatesWithAnError)
{
    util::Profiler& profiler = *util::Profiler::GetInstancePtr();
    profiler.Reset();
    profiler.SetActive(true);
    profiler.End();
    profiler.Update();
    EXPECT_EQ(profiler.GetOutput(), "ERROR: Too many calls to End()\n"
                                    "This problem must be fixed before any profiling can be done.");
    profiler.Reset();
}
