#pragma once

#include "gui/components/Component.h"
#include "gui/components/Console.h"
#include "input/InputListener.h"
#include "input/InputSettings.h"
#include "logging/Log.h"
#include "rendering/Texture.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Callback.h"
#include "util/Singleton.h"

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
    // noexcept: InputSettings, a plain interface, has a non-throwing destructor to be matched.
    ~GUI() noexcept override;

    // What scripts see as "GUI". The GUI is an input listener, and so can't be a script object itself;
    // the shell adds this one to the script root in its place.
    const util::SharedPtr<script::Reflected>& GetReflected() const { return m_reflected; }

private:
    // Made before the attributes, which join it.
    util::SharedPtr<script::Reflected> m_reflected;

public:
    // Settings: attributes of "GUI".
    // GUI units within which a press and its release stay a click.
    script::AttribWrapper<float> m_clickTolerance;
    // Seconds within which a press stays a click and further clicks count as multi-clicks.
    script::AttribWrapper<float> m_clickTimeTolerance;
    // Stored and saved; nothing reads it.
    script::AttribWrapper<bool> m_forceOSCursor;
    // Base name of the main font in the fonts directory; a change runs the font-change callbacks.
    script::AttribWrapper<util::String> m_font;
    script::AttribWrapper<bool> m_crispFonts;
    script::AttribWrapper<float> m_crispFontFactor;
    script::AttribWrapper<bool> m_fontShadow;
    // In units of the font's height.
    script::AttribWrapper<math::Vec2> m_fontShadowOffset;
    // Pixels per GUI unit; a change runs OnScaleChange.
    script::AttribWrapper<float> m_scale;
    // Alpha of the colour in force when the tree is drawn.
    script::AttribWrapper<float> m_opaqueness;

    void SetScale(float scale) { m_scale = scale; }
    // Pixels per GUI unit in effect: the attribute, or 1 while the attribute is no positive number.
    float GetScale() const;
    void SetFont(const util::String& font) { m_font = font; }
    // The fonts live with the resources, which know the GUI and not the other way round: they reload
    // through a callback here when "font" changes.
    void AddFontChangeCallback(util::CallbackPtr callback);

    // The size of the screen in GUI units.
    math::Vec2 GetSize() const;
    math::Vec2 PosFromPixel(int x, int y) const override;
    float GetClickTolerance() const override { return m_clickTolerance; }
    float GetClickTimeTolerance() const override { return m_clickTimeTolerance; }

    void OnNewWindowSize(int width, int height);
    void OnScaleChange();
    void OnFontChange();

    // Mouse-over first, then the tree: a panel opened above a component takes the mouse from it at the
    // next frame even without motion.
    void Update(float dt);
    void OnMouseMove(const input::MouseEvent& event) override;
    void UpdateMouseOverComp();

    void Begin();
    void End();
    void Draw();

    // The picture drawn at the mouse. A null proxy, or the default cursor, leaves the mouse to the
    // operating system.
    void SetCursor(rendering::TextureProxy cursor);
    const rendering::TextureProxy& GetCursor() const { return m_cursor; }
    const rendering::TextureProxy& GetDefaultCursor() const { return m_defaultCursor; }

    const util::SharedPtr<Component>& GetRootComponent() const { return m_rootComponent; }
    const util::SharedPtr<Component>& GetMainComponent() const { return m_mainComponent; }
    const util::SharedPtr<Component>& GetTooltipLayer() const { return m_tooltipLayer; }
    // Above the tooltips, and first to see keys.
    const util::SharedPtr<Console>& GetConsole() const { return m_console; }

private:
    util::CallbackSet m_fontChangeCallbacks;
    util::SharedPtr<Component> m_rootComponent;
    util::SharedPtr<Component> m_mainComponent;
    util::SharedPtr<Component> m_tooltipLayer;
    util::SharedPtr<Console> m_console;
    // Errors, warnings and information of the log, shown in the console.
    util::SharedPtr<logging::ILogger> m_consoleLogger;
    util::SharedPtr<input::InputListener> m_profilerKeys;
    rendering::TextureProxy m_cursor;
    rendering::TextureProxy m_defaultCursor;
    int m_windowWidth = 0;
    int m_windowHeight = 0;
    bool m_textProbeChecked = false;
};

// Sets the mouse-over flags of c and all under it for a mouse at pos (in c's local coordinates): among
// siblings only the topmost branch that contains the mouse has it. Returns whether c or one of its
// descendants has the mouse.
bool UpdateMouseOver(Component& c, bool mayBeOver, math::Vec2 pos);
// Clears the flag in c and in all that lies under it.
void SetMouseNotOver(Component& c);

} // namespace gui
