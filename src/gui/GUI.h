#pragma once

#include "gui/components/Component.h"
#include "input/InputListener.h"
#include "input/InputSettings.h"
#include "util/Singleton.h"

#include <string>

namespace gui
{

// Owns the root of the component tree, fixes the coordinate system of the interface (pixels over the
// scale, y down), keeps the mouse-over flags on the topmost branch under the mouse, draws the whole tree,
// and holds the settings of the interface.
//
// The shell calls, once a frame: Update(dt) after the event pump, and Draw() before the buffer swap; and
// OnNewWindowSize(w, h) whenever it makes a window.
class GUI : public input::InputListener, public input::InputSettings, public util::Singleton<GUI>
{
public:
    static const int PRIORITY = 100;

    GUI();
    ~GUI() override;

    // Script attributes, named as scripts see them ("clickTolerance", "clickTimeTolerance", ...).
    // GUI units within which a press and its release stay a click.
    float m_clickTolerance = DEFAULT_CLICK_TOLERANCE;
    // Seconds within which a press stays a click and further clicks count as multi-clicks.
    float m_clickTimeTolerance = DEFAULT_CLICK_TIME_TOLERANCE;
    // Stored and saved; nothing reads it.
    bool m_forceOSCursor = false;
    // Base name of the main font in the fonts directory; change through SetFont.
    std::string m_font = "arial_black";
    bool m_crispFonts = false;
    float m_crispFontFactor = 0.5f;
    bool m_fontShadow = true;
    math::Vec2 m_fontShadowOffset{0.0625f, 0.0625f};
    // Pixels per GUI unit; change through SetScale.
    float m_scale = 1.0f;
    // Alpha of the colour in force when the tree is drawn.
    float m_opaqueness = 0.9f;

    // The setters of the attributes whose change must be acted on at once.
    void SetScale(float scale);
    void SetFont(const std::string& font);

    // The size of the screen in GUI units.
    math::Vec2 GetSize() const;
    math::Vec2 PosFromPixel(int x, int y) const override;
    float GetClickTolerance() const override { return m_clickTolerance; }
    float GetClickTimeTolerance() const override { return m_clickTimeTolerance; }

    void OnNewWindowSize(int width, int height);
    void OnScaleChange();

    // Mouse-over first, then the tree: a panel opened above a component takes the mouse from it at the
    // next frame even without motion.
    void Update(float dt);
    void OnMouseMove(const input::MouseEvent& event) override;
    void UpdateMouseOverComp();

    void Begin();
    void End();
    void Draw();

    const util::SharedPtr<Component>& GetRootComponent() const { return m_rootComponent; }
    const util::SharedPtr<Component>& GetMainComponent() const { return m_mainComponent; }
    const util::SharedPtr<Component>& GetTooltipLayer() const { return m_tooltipLayer; }

private:
    util::SharedPtr<Component> m_rootComponent;
    util::SharedPtr<Component> m_mainComponent;
    util::SharedPtr<Component> m_tooltipLayer;
    util::SharedPtr<input::InputListener> m_profilerKeys;
    int m_windowWidth = 0;
    int m_windowHeight = 0;
};

// Sets the mouse-over flags of c and all under it for a mouse at pos (in c's local coordinates): among
// siblings only the topmost branch that contains the mouse has it. Returns whether c or one of its
// descendants has the mouse.
bool UpdateMouseOver(Component& c, bool mayBeOver, math::Vec2 pos);
// Clears the flag in c and in all that lies under it.
void SetMouseNotOver(Component& c);

} // namespace gui
