#pragma once
// The configuration files of the work directory, and the order in which the program reads and writes
// them. "config.autosave.cfg" exists exactly while a run goes on or after one that died: the periodic
// save writes it, an orderly end erases it, and its presence at start means recovery.

#include "util/String.h"

namespace script
{

class Configuration
{
public:
    static const char* const CONFIG_FILE;
    static const char* const AUTOSAVE_FILE;
    static const char* const AUTOEXEC_FILE;

    enum StartResult
    {
        RECOVERED, // config.autosave.cfg was read: the last run didn't end in order
        LOADED,    // config.cfg was read
        FIRST_RUN  // neither exists
    };

    // Runs "autoexec.cfg" if present, then "config.autosave.cfg" if present, else "config.cfg".
    // `configDir` ends in a slash.
    static StartResult LoadAtStart(const util::String& configDir);
    // The periodic save during a run.
    static void SaveAutosave(const util::String& configDir);
    // Writes "config.cfg" and erases "config.autosave.cfg", the mark of an orderly end.
    static void SaveAtExit(const util::String& configDir);
};

} // namespace script
