#pragma once

// Stand-ins for the parts of the program that the shell calls into before those parts exist. Each is the
// least that keeps the frame loop honest, and each lives in one source file of this folder, so that the
// real part replaces it by deleting that file and changing the calls named here.

#include <SDL.h>

#include <string>

namespace core
{
class Subsystem;
}

namespace core::interim
{
// --- Directory layout (FileSystem.cpp), until util::FileSystem exists. ---
// The work directory becomes the executable's folder; "workdir =  " and the path go to standard output.
void CalcWorkDir(const std::string& argv0);
const std::string& WorkDir();
std::string ConfigDir();
std::string SceneDir();
bool FileExists(const std::string& path);
void EraseFile(const std::string& path);

// --- Event pump (Events.cpp), until input::Input exists. ---
// The raw SDL event with the handled flag that a listener sets.
struct InputEvent
{
    SDL_Event event;
    mutable bool handled = false;
};
// Empties the SDL queue and offers each event that is neither key nor mouse to the subsystem.
void PumpEvents(Subsystem& subsystem);

// --- GUI (Gui.cpp), until gui::GUI, app::App and app::AppGUI exist. ---
// The interface update of one frame: only the periodic autosave of the configuration.
void GuiUpdate(double dt);
// Clears the window: there is nothing to draw yet.
void GuiDraw();
void GuiOnNewWindowSize(int width, int height);
// app::AppGUI's "trapUser": nobody can set it yet.
bool TrapUser();
// app::AppGUI::LoadScene: scenes can't be read yet, which is said in the log.
void LoadSceneFile(const std::string& path, bool automatic);

// --- Configuration files (Config.cpp), until script::Parser exists. ---
// Nothing is read.
void LoadConfig(const std::string& path);
// Writes a configuration without statements: the generated header only.
void SaveConfig(const std::string& path);

// --- GL error check (GLErrors.cpp), until the renderer's CheckForGLError exists. ---
void CheckForGLError();

} // namespace core::interim
