#pragma once

#include "app/Background.h"
#include "app/WaterDrawer.h"
#include "app/entities/Entity.h"
#include "gui/components/Component.h"
#include "math/Math.h"
#include "rendering/Texture.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Mentor.h"
#include "util/Random.h"
#include "util/Singleton.h"

#include <vector>

namespace physics
{
class Contact;
}

namespace app
{
class AppGUI;
class Camera;

// The root component of the document side: it fills the window, owns the background and the application
// interface, holds the settings that belong to neither physics nor interface, steps the world from its
// Update and draws it from its DrawComp. Everything that needs a measure of the screen asks here.
class App : public gui::Component, public util::Singleton<App>
{
public:
    App();
    ~App() override;

    void Update(float dt) override;
    void DrawComp() const override;
    void OnFormChange() override;
    // The autosaved scene goes only at an orderly end: after a crash the next start finds it first.
    void OnShutdown();
    void CreateGUI();
    void SetFirstTimeRunning();
    bool IsFirstTimeRunning() const { return m_firstTime; }

    // The splats of all water particles into the water texture, through the back buffer.
    void DrawMetaTex(const std::vector<WaterParticle>& particles) const;

    math::Vec2 GetMousePos() const;
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
    // Asks for the entity to be mirrored in this frame's update, together with every other entity whose
    // mirror key is the same button, about one axis.
    void MirrorMe(input::ButtonInput button, EntityPtr entity);
    // The entities of the frame being drawn: empty outside DrawComp.
    const std::vector<EntityPtr>& GetDrawList() const { return m_drawList; }

    Background& GetBackground() const { return *m_background; }
    AppGUI& GetAppGUI() const { return *m_appGUI; }
    Camera& GetCamera() const;
    // The world box the component shows.
    WorldBox CalcViewBox() const;
    // The contacts of the last update, kept for drawing.
    const std::vector<util::SharedPtr<physics::Contact>>& GetContacts() const { return m_contacts; }

    // The particles of the simulation as the drawing sees them.
    static std::vector<WaterParticle> GatherWater();

    // "App" of the scripts: the settings below are its attributes, the background its child.
    const util::SharedPtr<script::Reflected>& GetReflected() const { return m_reflected; }

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
    using TextureMentorPtr = util::SharedPtr<util::Mentor<rendering::Texture>>;

    void SyncViewSize();
    void PanWithArrowKeys(float dt);
    // The trail of the last frames, and the water surface: the whole component with the corner of a big
    // texture that matches the viewport.
    void DrawBigTextureRect() const;
    void DrawWater(const std::vector<WaterParticle>& particles) const;
    void DrawDebugOverlays(const std::vector<WaterParticle>& particles) const;
    void DrawBodyCenters() const;
    void DrawParticleCenters(const std::vector<WaterParticle>& particles) const;
    void DrawParticleNeighbors() const;
    void DrawCollisions() const;
    void FillDrawList() const;
    void DrawEntities() const;
    void DrawSelectionOBB() const;
    void ServeMirrorRequests();
    math::Vec2 BigTextureCoords() const;

    // Rebuilt in each DrawComp from the entities in view, and emptied at its end.
    mutable std::vector<EntityPtr> m_drawList;
    std::vector<util::SharedPtr<physics::Contact>> m_contacts;
    util::SharedPtr<Background> m_background;
    util::SharedPtr<AppGUI> m_appGUI;
    TextureMentorPtr m_frameTextureMentor;
    TextureMentorPtr m_waterTextureMentor;
    TextureMentorPtr m_metaBallTextureMentor;
    rendering::TextureProxy m_frameTexture;
    rendering::TextureProxy m_waterTexture;
    rendering::TextureProxy m_metaBallTexture;
    rendering::TextureProxy m_simpleWaterTexture;
    util::Random m_random;
    bool m_firstTime = false;
    util::HashMap<input::ButtonInput, EntitySet, input::ButtonInput::Hasher> m_mirrorRequests;
};

} // namespace app
