#pragma once
// The commands of "System" that the windowed and the headless program share: the clock and the object
// counts, which scripts use to watch for leaks.

namespace script
{
class Reflected;

// Adds "time", "objectCurrent", "objectHandleCurrent" and "objectTotal" to `system`.
void AddClockAndObjectCountCommands(Reflected& system);

// Adds the attribute "randomSeed": the seed of every random choice of the run. Setting it starts the
// sequence again. It isn't written to configuration files, so that each run starts from the clock unless
// a script or the command line sets it.
void AddRandomSeedAttribute(Reflected& system);
} // namespace script
