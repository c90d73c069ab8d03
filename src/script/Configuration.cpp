#include "script/Configuration.h"

#include "logging/Log.h"
#include "script/Parser.h"
#include "util/FileSystem.h"

namespace script
{

const char* const Configuration::CONFIG_FILE = "config.cfg";
const char* const Configuration::AUTOSAVE_FILE = "config.autosave.cfg";
const char* const Configuration::AUTOEXEC_FILE = "autoexec.cfg";

Configuration::StartResult Configuration::LoadAtStart(const util::String& configDir)
{
    Parser* parser = Parser::GetInstancePtr();
    // Read even when it is missing: the warning in the log then tells a user where their start-up file
    // would go.
    parser->LoadConfig(configDir + AUTOEXEC_FILE);

    util::String autosave = configDir + AUTOSAVE_FILE;
    if (util::FileSystem::FileExists(autosave))
    {
        Log(logging::Info, "Recovering " + autosave + " from previous crash");
        parser->LoadConfig(autosave);
        return RECOVERED;
    }
    if (util::FileSystem::FileExists(configDir + CONFIG_FILE))
    {
        parser->LoadConfig(configDir + CONFIG_FILE);
        return LOADED;
    }
    return FIRST_RUN;
}

void Configuration::SaveAutosave(const util::String& configDir)
{
    Parser::GetInstancePtr()->SaveConfig(configDir + AUTOSAVE_FILE);
}

void Configuration::SaveAtExit(const util::String& configDir)
{
    Parser::GetInstancePtr()->SaveConfig(configDir + CONFIG_FILE);
    util::FileSystem::EraseFile(configDir + AUTOSAVE_FILE);
}

} // namespace script
