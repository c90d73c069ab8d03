#pragma once
// One object of every tool, and the choice of the current one: a tool whose key is held, else the
// temporary tool of the present gesture (set by AppGUI), else the tool the user selected.

#include "app/tools/Tool.h"
#include "util/Singleton.h"

#include <SDL/SDL.h>

#include <set>
#include <utility>

namespace app
{
class BoxTool;
class ChainTool;
class CircleTool;
class PanTool;
class PlaneTool;
class SketchTool;

class Tools : public input::InputListener, public util::Singleton<Tools>
{
public:
    using ToolPtr = util::SharedPtr<Tool>;

    Tools();

    // The only way anyone learns the current tool.
    ToolPtr GetTool() const;
    // The user's choice: the former selected tool's gesture ends, and the temporary tool with it.
    void Select(const ToolPtr& tool);
    // The tool of one gesture; null ends it.
    void SetActive(const ToolPtr& tool);
    const ToolPtr& GetSelected() const { return m_selected; }
    const ToolPtr& GetActive() const { return m_active; }

    SDLKey KeyFromTool(const ToolPtr& tool) const;
    ToolPtr ToolFromKey(SDLKey key) const;

    // A tap of a tool's key selects the tool; a key held longer than a click switches to the tool while
    // it is held. Nothing with Ctrl; the key of the current tool is left to others.
    void OnKeyEvent(const input::KeyEvent& event) override;
    // The current tool's update, then its cursor.
    void Update(float dt);

    // In the order they are made.
    ToolPtr m_move, m_clone, m_rotate;
    util::SharedPtr<PanTool> m_pan;
    util::SharedPtr<SketchTool> m_sketch;
    ToolPtr m_brush, m_drag;
    util::SharedPtr<PlaneTool> m_plane;
    util::SharedPtr<CircleTool> m_circle;
    util::SharedPtr<BoxTool> m_box;
    util::SharedPtr<ChainTool> m_chain;
    ToolPtr m_spring, m_fixJoint, m_hinge, m_pen, m_scale;

private:
    void UpdateCursor();
    void DisbandCurrent();

    ToolPtr m_selected;
    ToolPtr m_active;
    ToolPtr m_pending;
    std::set<std::pair<SDLKey, ToolPtr>> m_shortcuts;
    SDLKey m_heldKey = SDLK_UNKNOWN;
    // Seconds of the frame clock.
    double m_pressTime = 0;
    util::String m_cursorName;
    bool m_cursorSet = false;
};

} // namespace app
