#pragma once

#include <gtest/gtest.h>

#include <functional>

namespace input::test
{

// The environment of test executables that use input without a display: SDL's event queue and modifier
// state work under the dummy video driver. At the end the singletons go down before static destruction,
// which would take the trackers down under them: first those of the layers above input, through
// `destroyAbove`, then input itself, then SDL.
class SdlEnvironment : public ::testing::Environment
{
public:
    explicit SdlEnvironment(std::function<void()> destroyAbove = nullptr);

    void SetUp() override;
    void TearDown() override;

private:
    std::function<void()> m_destroyAbove;
};

} // namespace input::test
