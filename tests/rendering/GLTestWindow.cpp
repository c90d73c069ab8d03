#include "GLTestWindow.h"

#include <SDL/SDL.h>

#include <cstdlib>
#include <sstream>

bool GLTestWindow::Open(int width, int height)
{
    if (!std::getenv("DISPLAY"))
    {
        m_error = "DISPLAY is not set";
        return false;
    }
    if (!m_sdlUp)
    {
        if (SDL_Init(SDL_INIT_VIDEO) != 0)
        {
            m_error = std::string("SDL_Init: ") + SDL_GetError();
            return false;
        }
        m_sdlUp = true;
    }
    return SetMode(width, height);
}

bool GLTestWindow::SetMode(int width, int height)
{
    SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_ALPHA_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 24);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    if (!SDL_SetVideoMode(width, height, 0, SDL_OPENGL | SDL_RESIZABLE))
    {
        m_error = std::string("SDL_SetVideoMode: ") + SDL_GetError();
        return false;
    }
    if (glewInit() != GLEW_OK)
    {
        m_error = "glewInit failed";
        return false;
    }
    m_width = width;
    m_height = height;
    // Mesa's software GL takes a new window size into its buffers at the next swap.
    SDL_GL_SwapBuffers();
    glViewport(0, 0, width, height);
    GLHasLoaded();
    while (glGetError() != GL_NO_ERROR)
    {
    }
    return true;
}

bool GLTestWindow::Resize(int width, int height)
{
    return SetMode(width, height);
}

void GLTestWindow::Close()
{
    if (m_sdlUp)
        SDL_Quit();
    m_sdlUp = false;
}

void GLTestWindow::Swap()
{
    SDL_GL_SwapBuffers();
}

math::TVector4<int> GLTestWindow::ReadPixel(int x, int y) const
{
    unsigned char p[4] = {0, 0, 0, 0};
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_BACK);
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, p);
    return math::TVector4<int>(p[0], p[1], p[2], p[3]);
}

void GLTestWindow::SetGUIProjection() const
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, m_width, m_height, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

::testing::AssertionResult ColorNear(const math::TVector4<int>& actual, const math::TVector4<int>& expected,
                                     int tolerance, bool checkAlpha)
{
    const bool near = std::abs(actual.x - expected.x) <= tolerance &&
                      std::abs(actual.y - expected.y) <= tolerance &&
                      std::abs(actual.z - expected.z) <= tolerance &&
                      (!checkAlpha || std::abs(actual.w - expected.w) <= tolerance);
    std::ostringstream text;
    text << "(" << actual.x << ", " << actual.y << ", " << actual.z << ", " << actual.w << ") against ("
         << expected.x << ", " << expected.y << ", " << expected.z << ", " << expected.w << ")";
    return near ? ::testing::AssertionSuccess() << text.str() : ::testing::AssertionFailure() << text.str();
}
