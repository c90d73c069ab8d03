#pragma once
// The commands of "System" that the windowed and the headless program share: the clock and the object
// counts, which scripts use to watch for leaks.

namespace script
{
class Reflected;

// Adds "time", "objectCurrent", "objectHandleCurrent" and "objectTotal" to `system`.
void AddClockAndObjectCountCommands(Reflected& system);
} // namespace script
