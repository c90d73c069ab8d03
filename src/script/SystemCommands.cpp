#include "script/SystemCommands.h"

#include "script/Attributes.h"
#include "script/Reflected.h"
#include "util/Random.h"
#include "util/SharedPtr.h"
#include "util/Timer.h"

namespace script
{

namespace
{
float CurrentTime()
{
    return static_cast<float>(util::Timer::GetCurrentTime());
}

int ObjectCurrent()
{
    return static_cast<int>(util::Pointee::GetInstanceCount());
}

int ObjectHandleCurrent()
{
    return static_cast<int>(util::PointeeHandle::GetInstanceCount());
}

int ObjectTotal()
{
    return static_cast<int>(util::Pointee::GetAllocateCount());
}
} // namespace

void AddClockAndObjectCountCommands(Reflected& system)
{
    system.AddCmd("time", &CurrentTime);
    system.AddCmd("objectCurrent", &ObjectCurrent);
    system.AddCmd("objectHandleCurrent", &ObjectHandleCurrent);
    system.AddCmd("objectTotal", &ObjectTotal);
}

void AddRandomSeedAttribute(Reflected& system)
{
    // The seed is unsigned; scripts see its bits as an int.
    util::SharedPtr<AttribGetSet<int>> seed = QLEX_NEW new AttribGetSet<int>(
        "randomSeed", [] { return static_cast<int>(util::Random::GetSeed()); },
        [](const int& value) { util::Random::SetSeed(static_cast<unsigned>(value)); });
    seed->SetSaved(false);
    system.AddVariable(seed);
}

} // namespace script
