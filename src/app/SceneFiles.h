#pragma once
// Scene files by name: where they live, which one opens at start, and loading and saving them as the
// application does (a load is a step of the history).

#include "util/String.h"

#include <vector>

namespace app
{

// The files the program chooses by itself, all in the scene directory.
extern const char* const Scene_Autosave;
extern const char* const Scene_Last;
extern const char* const Scene_Welcome;

// Adds ".qlx" where it is missing, and the scene directory before a bare name.
util::String MakeLongFileName(const util::String& name);
// Removes a final ".qlx" and a leading scene directory: the name to show.
util::String MakeShortFileName(const util::String& path);
// The leaf name without ".qlx": the title of a file that has none.
util::String NameFromDir(const util::String& path);

// Loads a scene as one step of the history; the simulation stops first. `automatic` is true for loads the
// program makes by itself.
void LoadSceneFile(util::String name, bool automatic);
// Writes the scene; false when the file can't be written.
bool SaveSceneFile(const util::String& name, bool automatic);
// Imports a qlexlet at the mouse as one step of the history.
void ImportQlexletFile(const util::String& name);

// The first of "_AUTOSAVE.qlx", "_ONEXITSAVE.qlx" and "welcome.qlx" that exists; nothing if none does.
void LoadScene();
// The scene named by the last argument if it ends in ".qlx" (a path with blanks arrives in pieces and is
// joined again), else the automatic choice. `args` are the arguments after the program's name.
void LoadStartScene(const std::vector<util::String>& args);
// The scene of an orderly end: written to "_ONEXITSAVE.qlx", and the autosave goes.
void SaveSceneOnExit();

} // namespace app
