#pragma once

#include <functional>

namespace core
{
class System;

// Puts the script objects of the subsystems under the script root: "System", "Sim", "SPH", then what
// `windowParts` adds (the parts only the windowed program has), then "Console", "Keys", "App", "Scene" and
// the scene's file commands. Both programs join through here, in this one order, so that the configuration
// either writes reads the same in the other.
void JoinSubsystems(System& system, const std::function<void()>& windowParts = {});

} // namespace core
