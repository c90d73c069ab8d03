#pragma once

// INTERIM STAND-IN for input::DirInput, which the input subsystem builds: the abstract source and a
// Deserialize that knows no form yet (it logs and gives null, as for an unknown form). The build uses this
// folder only while src/input/DirInput.h does not exist; delete it when it does.

#include "logging/Log.h"
#include "math/Math.h"
#include "util/SharedPtr.h"
#include "util/String.h"

namespace input
{
class DirInput;
using DirInputPtr = util::SharedPtr<DirInput>;

class DirInput : public util::Pointee
{
public:
    ~DirInput() override = default;
    virtual math::TVector2<float> GetDir() const = 0;
    virtual util::String Serialize() const = 0;

    static DirInputPtr Deserialize(const util::String& text)
    {
        Log(logging::Error, "Failed to find DirInput \"" + text + "\"");
        return nullptr;
    }
};
} // namespace input
