#pragma once

#include "app/AppSettings.h"
#include "app/Background.h"
#include "app/WaterDrawer.h"
#include "app/entities/Entity.h"
#include "gui/components/Component.h"
#include "math/Math.h"
#include "rendering/Shader.h"
#include "rendering/Texture.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Mentor.h"
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
// interface, steps the world from its Update and draws it from its DrawComp, by the settings of
// app::AppSettings, whose measures of the screen it keeps in step with the window.
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
    // The settings the drawing goes by, and the measures of the screen.
    AppSettings& GetSettings() const { return *m_settings; }

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
    rendering::ShaderProxy m_waterShader;
    util::SharedPtr<AppSettings> m_settings;
    bool m_firstTime = false;
};

} // namespace app
