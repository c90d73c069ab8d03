#include "util/Profiler.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST(Profiler, ANodeTakesNineChildrenAndTheTenthIsAnError)
{
    util::Profiler& profiler = *util::Profiler::GetInstancePtr();
    profiler.Reset();
    profiler.SetActive(true);
    static const char* const names[] = {"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "c9"};
    for (int i = 0; i < 9; ++i)
        util::ScopeProfiler child(names[i]);
    profiler.Update();
    EXPECT_EQ(profiler.GetOutput().find("ERROR"), std::string::npos) << profiler.GetOutput();
    {
        util::ScopeProfiler child(names[9]);
    }
    profiler.Update();
    EXPECT_EQ(profiler.GetOutput().rfind("ERROR: Too many children of node Main\n", 0), 0u)
        << profiler.GetOutput();
    profiler.Reset();
}

namespace
{
// A run of the given length in whole milliseconds, without waiting for it. It ends just after the clock
// ticked, so that the clock reads the same in here and in End.
void Timed(util::StaticProfilerData& data, unsigned ms)
{
    const unsigned before = util::ProfilerTicks();
    while (util::ProfilerTicks() == before)
    {
    }
    data.End(util::ProfilerTicks() - ms);
}

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
        lines.push_back(text.substr(start, end - start));
    return lines;
}
} // namespace

TEST(Profiler2, TheTableSumsFramesSortsByNameAndShowsSpikes)
{
    util::Profiler2& flat = *util::Profiler2::GetInstancePtr();
    static util::StaticProfilerData zeta("zz::Late");
    static util::StaticProfilerData alpha("aa::Early");
    flat.SetActive(false);
    EXPECT_EQ(flat.GetOutput(), "Not active.");
    EXPECT_TRUE(flat.OnKeyPress(268)); // on, with the table written at the next frame
    EXPECT_FALSE(flat.OnKeyPress(269));
    EXPECT_TRUE(flat.IsActive());

    // Frame 1: two calls of 4 and 6 ms; frame 2: one of 30 ms. Four frames of 0.25 s make a second.
    Timed(zeta, 4);
    Timed(zeta, 6);
    Timed(alpha, 1);
    flat.Update(0.25);
    const std::string first = flat.GetOutput();
    EXPECT_EQ(first.rfind("FPS: 4.00\n\n", 0), 0u) << first; // forced out after one frame of 0.25 s
    Timed(zeta, 30);
    flat.Update(0.25);
    flat.Update(0.25);
    EXPECT_EQ(flat.GetOutput(), first); // not yet a second since the forced table
    flat.Update(0.25);
    flat.Update(0.25);
    const std::vector<std::string> lines = Lines(flat.GetOutput());
    ASSERT_GE(lines.size(), 4u) << flat.GetOutput();
    EXPECT_EQ(lines[0], "FPS: 4.00");
    EXPECT_EQ(lines[2], std::string(27, ' ') +
                            " Name   %total   \xB5s/frame  frame-spike  call-spike   \xB5s/call" +
                            "   calls/frame");
    size_t a = 0, z = 0;
    for (size_t i = 4; i < lines.size(); ++i)
    {
        if (lines[i].find("aa::Early") != std::string::npos)
            a = i;
        if (lines[i].find("zz::Late") != std::string::npos)
            z = i;
    }
    ASSERT_TRUE(a && z) << flat.GetOutput();
    EXPECT_LT(a, z);
    // 30 ms in 1 s is 3 %, 7500 us a frame; the one frame of 30 ms and the call of 30 ms are the spikes.
    EXPECT_EQ(lines[z], std::string(32 - 8, ' ') + "zz::Late    3.0 %       7500        30 ms       30 ms" +
                            "     30000       0.2");
    // No calls since the last table: the time per call is no number.
    EXPECT_NE(lines[a].find("nan"), std::string::npos) << lines[a];
    flat.SetActive(false);
    EXPECT_EQ(flat.GetOutput(), "Not active.");
}
