#pragma once
// Settings of other parts of the program found by their script names ("App.borders"), so that the
// scene's file and history reach them whichever program (windowed or headless) provides them.

#include "script/ScriptFwd.h"
#include "util/String.h"

namespace app
{

// The variable of a dotted name below the script root, or null when some part of the name is missing.
script::VariablePtr FindSetting(const util::String& dottedName);
// Puts an attribute back to its default; names that aren't attributes are left alone.
void ResetSettingToDefault(const util::String& dottedName);

} // namespace app
