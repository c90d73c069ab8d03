#include "script/SystemCommands.h"

#include "script/Reflected.h"
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

} // namespace script
