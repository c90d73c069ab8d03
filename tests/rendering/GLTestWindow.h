#pragma once

#include "math/Math.h"
#include "rendering/GLContext.h"

#include <gtest/gtest.h>

#include <string>

// A real SDL 1.2 window with a GL context for tests that read pixels back. Tests run under Xvfb with
// Mesa's software GL; without a display they are skipped.
class GLTestWindow
{
public:
    // False (with the reason in GetError) when no window could be had.
    bool Open(int width, int height);
    // Makes the window again at a new size, as a resize does: the old context and its objects are gone.
    bool Resize(int width, int height);
    void Close();
    void Swap();

    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }
    const std::string& GetError() const { return m_error; }

    // The colour at a pixel, counted from the lower left corner, as bytes.
    math::TVector4<int> ReadPixel(int x, int y) const;
    // The same with y counted from the top, as the interface counts.
    math::TVector4<int> ReadPixelFromTop(int x, int y) const { return ReadPixel(x, m_height - 1 - y); }

    // Projection of the interface: GUI units equal pixels, y down.
    void SetGUIProjection() const;

private:
    bool SetMode(int width, int height);

    int m_width = 0;
    int m_height = 0;
    bool m_sdlUp = false;
    std::string m_error;
};

// Skips the test when there is no display to open a window on.
#define QLEX_OPEN_GL_WINDOW(window, w, h)                                                                    \
    do                                                                                                       \
    {                                                                                                        \
        if (!(window).Open((w), (h)))                                                                        \
            GTEST_SKIP() << "No GL window: " << (window).GetError();                                         \
    } while (0)

// Colours compare within a small tolerance: software GL rounds.
::testing::AssertionResult ColorNear(const math::TVector4<int>& actual, const math::TVector4<int>& expected,
                                     int tolerance = 3, bool checkAlpha = false);
