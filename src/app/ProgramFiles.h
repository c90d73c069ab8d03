#pragma once

// The file names the program itself knows. Configuration files live in the configuration directory, scenes
// in the scene directory.
namespace app
{
inline constexpr const char* CONFIG_FILE = "config.cfg";
// Written periodically while a run goes on and erased at an orderly end: found at start, it tells of a crash.
inline constexpr const char* CONFIG_AUTOSAVE = "config.autosave.cfg";
inline constexpr const char* CONFIG_AUTOEXEC = "autoexec.cfg";

inline constexpr const char* Scene_Autosave = "_AUTOSAVE.qlx";
inline constexpr const char* Scene_Last = "_ONEXITSAVE.qlx";
inline constexpr const char* Scene_Welcome = "welcome.qlx";
} // namespace app
