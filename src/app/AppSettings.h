#pragma once

#include "app/Sky.h"
#include "app/entities/Entity.h"
#include "math/Math.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Random.h"
#include "util/Singleton.h"

#include <functional>

namespace app
{
// "App" of the scripts: the settings that belong to neither physics nor the toolkit, with the sky
// ("App.Background") and the interface's settings ("App.GUI") below it, and the measures of the screen that
// tools and entities size themselves by. Scene files and the configuration write these settings, so they
// stand in every program, with a window or without; app::App draws by them.
class AppSettings : public util::Pointee, public util::Singleton<AppSettings>
{
public:
    AppSettings();
    ~AppSettings() override;

    const util::SharedPtr<script::Reflected>& GetReflected() const { return m_reflected; }
    Sky& GetSky() { return m_sky; }
    const Sky& GetSky() const { return m_sky; }
    const util::SharedPtr<script::Reflected>& GetGUIReflected() const { return m_guiReflected; }

    // Where the size of a GUI pixel on the screen comes from; without a window, a GUI pixel is a pixel.
    void SetGUIScaleSource(std::function<float()> source) { m_guiScale = std::move(source); }

    // World length of one pixel.
    float GetPixelSize() const;
    // World length of a centimetre on the screen.
    float GetScreenCM() const;
    float GetDefaultJointSize() const;
    float GetObjectBorderWidth() const;
    float GetMinimumPointDist() const;
    float GetMaximumPointDist() const;

    // A colour spread evenly over the colour disc, its lightness biased towards the middle.
    math::Vec3 RandomColor3();
    // A random colour that stands out from the sky: never too dark, never close to the sky colour.
    math::Vec4 RandomEntityColor4();
    // The colour of an entity's outline, from its colour and its selected and marked looks.
    math::Vec4 GetBorderColor(const Entity* entity) const;

    // Asks for the entity to be mirrored at the next ServeMirrorRequests, together with every other entity
    // whose mirror key is the same button, about one axis.
    void MirrorMe(input::ButtonInput button, EntityPtr entity);
    void ServeMirrorRequests();

private:
    // Made before the settings, which join it as they are made.
    util::SharedPtr<script::Reflected> m_reflected;

public:
    // Settings, visible to scripts under their names without "m_".
    script::AttribWrapper<util::String> m_language;
    script::AttribWrapper<float> m_lineWidth;
    script::AttribWrapper<float> m_pointSize;
    script::AttribWrapper<bool> m_drawOBBs;
    script::AttribWrapper<bool> m_drawMapOBBs;
    script::AttribWrapper<bool> m_drawBCs;
    script::AttribWrapper<bool> m_drawSelectionOBB;
    script::AttribWrapper<bool> m_drawVertices;
    script::AttribWrapper<bool> m_drawCollisions;
    script::AttribWrapper<bool> m_drawBodyCenters;
    script::AttribWrapper<bool> m_drawParticleCenters;
    script::AttribWrapper<bool> m_drawParticleNeighbors;
    script::AttribWrapper<math::Vec2> m_polyTCFactor;
    script::AttribWrapper<math::Vec3> m_selectColor;
    script::AttribWrapper<math::Vec3> m_fadeColor;
    script::AttribWrapper<math::Vec2> m_fadeScale;
    script::AttribWrapper<math::Vec2> m_fadeTranslate;
    script::AttribWrapper<float> m_fadeRotate;
    script::AttribWrapper<float> m_minPointDist;
    script::AttribWrapper<float> m_maxPointDist;
    script::AttribWrapper<float> m_DPI;
    script::AttribWrapper<int> m_maxSPHSpawn;
    script::AttribWrapper<float> m_waterElongation;
    script::AttribWrapper<float> m_waterMaxElongation;
    script::AttribWrapper<float> m_metaCutoff;
    script::AttribWrapper<float> m_borderWidth;
    script::AttribWrapper<unsigned long> m_maxUndo;
    script::AttribWrapper<float> m_autosaveTime;
    script::AttribWrapper<float> m_chainDensityFactor;
    script::AttribWrapper<float> m_dragToolStrength;
    script::AttribWrapper<math::Vec4> m_waterColor;
    script::AttribWrapper<bool> m_simpleWater;
    script::AttribWrapper<float> m_waterFanceyFactor;
    script::AttribWrapper<bool> m_borders;

private:
    Sky m_sky;
    util::SharedPtr<script::Reflected> m_guiReflected;

public:
    // "App.GUI": the interface's settings. They stand here, with the document's, so that configuration and
    // scene files that set them read the same in every program.
    // The wheel zooms by 2 to the power of this per notch.
    script::AttribWrapper<float> m_zoomFactor;
    script::AttribWrapper<bool> m_freeDrawing;
    // What is placed sticks to the background.
    script::AttribWrapper<bool> m_autoGlue;
    // A plain left click opens the popup menu as a right click does.
    script::AttribWrapper<bool> m_leftClickMenus;
    script::AttribWrapper<bool> m_drawHingesWhenRunning;
    // No way out of the program while set.
    script::AttribWrapper<bool> m_trapUser;
    // Menus and panels show less.
    script::AttribWrapper<bool> m_simpleMode;

private:
    std::function<float()> m_guiScale;
    util::Random m_random;
    util::HashMap<input::ButtonInput, EntitySet, input::ButtonInput::Hasher> m_mirrorRequests;
};

} // namespace app
