#pragma once
// Scene files by name: where they live, and loading and saving them as the
// application does (a load is a step of the history).

#include "app/ProgramFiles.h"
#include "util/String.h"

namespace app
{

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

} // namespace app
