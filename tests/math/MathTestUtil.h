#pragma once

#include "logging/Exception.h"
#include "math/Math.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace mathtest
{

inline ::testing::AssertionResult Near(const math::Vec2& a, const math::Vec2& b, float tolerance = 1e-5f)
{
    if (math::Distance(a, b) <= tolerance)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "(" << a.x << ", " << a.y << ") is not near (" << b.x << ", " << b.y << ")";
}

inline ::testing::AssertionResult Near(const math::Vec3& a, const math::Vec3& b, float tolerance = 1e-5f)
{
    if (math::Distance(a, b) <= tolerance)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") is not near ("
                                         << b.x << ", " << b.y << ", " << b.z << ")";
}

template <class M>::testing::AssertionResult NearMatrix(const M& a, const M& b, float tolerance = 1e-5f)
{
    const int n = int(sizeof(a.m) / sizeof(a.m[0]));
    for (int i = 0; i < n; ++i)
        if (!(std::fabs(a.m[i] - b.m[i]) <= tolerance))
            return ::testing::AssertionFailure() << "element " << i << ": " << a.m[i] << " vs " << b.m[i];
    return ::testing::AssertionSuccess();
}

// The text of the code assertion that f fails, or "" if it doesn't throw one.
inline std::string FailedAssertionText(const std::function<void()>& f)
{
    try
    {
        f();
    }
    catch (BadCoderException& e)
    {
        return e.what();
    }
    return "";
}

} // namespace mathtest
