#pragma once

#include "math/Math.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"

namespace app
{
// The settings of the sky behind the scene, "App.Background" of the scripts. Scene files save them, so they
// belong to the document and stand in a program without a window too; app::Background draws them.
class Sky
{
public:
    Sky();

    math::Vec3 GetSkyColor() const;
    math::Vec4 GetSkyColor4() const { return m_skyColor; }
    void SetSkyColor(const math::Vec4& color) { m_skyColor = color; }
    void SetDrawClouds(bool draw) { m_drawClouds = draw; }
    // Returns the three attributes to their defaults, as a new scene does.
    void ResetToDefaults();

    const util::SharedPtr<script::Reflected>& GetReflected() const { return m_reflected; }

private:
    // Made before the settings, which join it as they are made.
    util::SharedPtr<script::Reflected> m_reflected;

public:
    script::AttribWrapper<math::Vec4> m_skyColor;
    script::AttribWrapper<float> m_cloudOpacity;
    script::AttribWrapper<bool> m_drawClouds;
};

} // namespace app
