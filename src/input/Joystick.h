#pragma once

#include "math/Math.h"
#include "util/SharedPtr.h"

#include <SDL/SDL.h>

#include <string>
#include <vector>

namespace input
{

// One opened SDL joystick, with the offsets of its calibration: the stick's position at calibration reads
// as the centre afterwards.
class Joystick : public util::Pointee
{
public:
    // Throws BadDataException when SDL cannot open the joystick.
    explicit Joystick(int id);
    ~Joystick() override;

    void Calibrate();
    int GetId() const { return m_id; }
    std::string GetName() const;
    // -1 to 1, less the calibration offset, clamped.
    float GetAxis(int axis) const;
    // The arithmetic of GetAxis: SDL's raw value from -32768 to 32767 less an offset, within -1 to 1.
    static float AxisValue(int raw, float offset);
    // A vector longer than 1 is normalised: the square of the stick's range is mapped into the unit disc.
    math::Vec2 GetAxis(int xAxis, int yAxis) const;

    int GetNumAxes() const;
    int GetNumButtons() const;
    int GetNumBalls() const;
    int GetNumHats() const;

private:
    int m_id;
    SDL_Joystick* m_handle;
    std::vector<float> m_offsets;
};

} // namespace input
