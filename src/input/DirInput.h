#pragma once

#include "math/Math.h"
#include "util/SharedPtr.h"
#include "util/String.h"

#include <SDL/SDL.h>

#include <functional>
#include <vector>

namespace input
{
class DirInput;
using DirInputPtr = util::SharedPtr<DirInput>;

// A vector longer than 1 made length 1 in its own direction: the square that two axes or four keys span
// is mapped into the unit disc, so that a diagonal is no stronger than a straight push.
math::TVector2<float> IntoUnitDisc(math::TVector2<float> dir);

// A direction in the unit disc that steers a geometry: four keys, a joystick's axis pair or a joystick's
// hat. Its text form stands in scene files.
class DirInput : public util::Pointee
{
public:
    ~DirInput() override = default;
    virtual math::TVector2<float> GetDir() const = 0;
    virtual util::String Serialize() const = 0;

    // "keys up right down left", "joy 0 axis 0 1", "joy 1 hat 0"; null, with a message in the log, for a
    // text it can't read or a joystick form with no joystick connected. A key name it doesn't know is
    // logged and leaves key 0 in its place. A joystick or axis word that is no number raises the
    // conversion's exception.
    static DirInputPtr Deserialize(const util::String& text);

    // Joystick sources need the open joysticks, which the event pump keeps: it registers the maker of the
    // "joy" forms here. It gets the words of the text and the text; without one no joystick is connected.
    using JoystickMaker = std::function<DirInputPtr(const std::vector<util::String>&, const util::String&)>;
    static void SetJoystickMaker(JoystickMaker maker);
};

// Four keys: up, right, down, left. Two keys held for a diagonal give length 1, and opposites cancel. A key
// 0 stands for a name that couldn't be read; it is never down and is written as an empty name.
class KeyDirInput : public DirInput
{
public:
    KeyDirInput(SDLKey up, SDLKey right, SDLKey down, SDLKey left);
    math::TVector2<float> GetDir() const override;
    util::String Serialize() const override;

protected:
    SDLKey m_up;
    SDLKey m_right;
    SDLKey m_down;
    SDLKey m_left;
};

} // namespace input
