#include "app/AppGUI.h"

#include "app/Action.h"
#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/FileInfo.h"
#include "app/ProgramFiles.h"
#include "app/Scene.h"
#include "app/SceneFiles.h"
#include "app/Serializer.h"
#include "app/Undoer.h"
#include "app/entities/FiniteGeomEntity.h"
#include "app/tools/PanTool.h"
#include "app/tools/SketchTool.h"
#include "app/tools/Tools.h"
#include "input/Input.h"
#include "input/Key.h"
#include "input/KeyState.h"
#include "logging/Log.h"
#include "physics/Simulation.h"
#include "script/Configuration.h"
#include "script/Expressions.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"
#include "util/Timer.h"

#include <cmath>

namespace app
{
namespace
{
AppGUI::ShellActions s_shell;

// Until the file dialogs stand, Ctrl+S and Ctrl+O save and load this one scene of the scene folder.
const char* const QUICK_SCENE = "quicksave.qlx";

// The menus the popup can show, by what lies under the mouse.
const char* const ENTITY_MENU = "EntityMenu";
const char* const WATER_MENU = "WaterMenu";
const char* const BACKGROUND_MENU = "BackgroundMenu";

Scene& TheScene()
{
    return *Scene::GetInstancePtr();
}

AppSettings& Settings()
{
    return *AppSettings::GetInstancePtr();
}

bool IsRunning()
{
    return physics::Simulation::GetInstancePtr()->m_running;
}

bool IsDown(int key)
{
    return input::KeyState::IsDown(static_cast<SDLKey>(key));
}

Tools& TheTools()
{
    return *Tools::GetInstancePtr();
}
} // namespace

void AppGUI::SetShellActions(ShellActions actions)
{
    s_shell = std::move(actions);
}

AppGUI::AppGUI() : m_popupHolder(QLEX_NEW new gui::Component()), m_lastAutosave(util::Timer::GetCurrentTime())
{
    SetFillOwner(true);
    AddComponent(m_popupHolder);
    // The tools hear every event this component forwards, before it acts itself.
    AddListener(Tools::GetInstancePtr());
    Rebuild();
}

const util::SharedPtr<script::Reflected>& AppGUI::GetReflected() const
{
    return Settings().GetGUIReflected();
}

script::ExpressionPtr AppGUI::ToExpression() const
{
    return GetReflected()->ToExpression();
}

bool AppGUI::IsUserTrapped() const
{
    return Settings().m_trapUser;
}

GroupPtr AppGUI::GetSelection() const
{
    return TheScene().GetSelection();
}

const std::vector<EntityPtr>& AppGUI::GetAppEntities() const
{
    return TheScene().GetEntities();
}

math::Vec2 AppGUI::GetMousePos() const
{
    return TheScene().GetMousePos();
}

math::Vec2 AppGUI::ToWorld(const math::Vec2& guiPos) const
{
    // This component fills the application, which fills the window: GUI positions are its own.
    return TheScene().GetCamera()->GUIToWorld(guiPos);
}

void AppGUI::OnClick(const input::ClickEvent& event)
{
    gui::Component::OnClick(event);
    if (!IsMouseOverInner())
        return;
    TheTools().GetTool()->OnClick(event);
    const math::Vec2 p = ToWorld(event.position);
    Scene& scene = TheScene();
    const bool left = event.button == input::Key::MOUSE_LEFT;
    if (!event.IsHandled() && (event.button == input::Key::MOUSE_RIGHT || (left && event.clickCount == 2) ||
                               (left && Settings().m_leftClickMenus)))
    {
        // A right click on one of several selected entities keeps them all for the menu.
        const EntityPtr under = scene.GetEntityAt(p);
        if (!under || !scene.GetSelection()->Contains(under))
            scene.SelectAt(p);
        OpenMenu();
        event.SetHandled();
    }
    if (!event.IsHandled() && left && event.clickCount == 1)
    {
        scene.SelectAt(p);
        ClosePopup();
        event.SetHandled();
    }
}

void AppGUI::OnDragBegin(const input::DragEvent& event)
{
    gui::Component::OnDragBegin(event);
    if (event.IsHandled() || !IsMouseOverInner())
        return;
    Tools& tools = TheTools();
    Scene& scene = TheScene();
    const EntityPtr under = scene.GetEntityAt(ToWorld(event.startPos));
    const bool left = event.button == input::Key::MOUSE_LEFT;
    const bool ctrl = input::Input::GetInstancePtr()->CheckModifier(input::Ctrl);
    // A sketch that starts on the selection moves it instead (or clones it, or drags it while running).
    if (tools.GetTool() == tools.m_sketch && left && under && GetSelection()->Contains(under))
    {
        const bool oneBody =
            dynamic_cast<const FiniteGeomEntity*>(under.get()) && GetSelection()->Size() == 1;
        if (IsRunning() && oneBody)
            tools.SetActive(tools.m_drag);
        else
            tools.SetActive(ctrl ? tools.m_clone : tools.m_move);
    }
    tools.GetTool()->OnDragBegin(event);
    if (event.IsHandled())
        return;
    Tools::ToolPtr temporary;
    if (left)
        temporary = under ? (ctrl ? tools.m_clone : tools.m_move) : tools.m_brush;
    else if (event.button == input::Key::MOUSE_RIGHT)
        temporary = under ? tools.m_rotate : Tools::ToolPtr(tools.m_pan);
    if (!temporary)
        return;
    tools.SetActive(temporary);
    temporary->OnDragBegin(event);
}

void AppGUI::OnDrag(const input::DragEvent& event)
{
    gui::Component::OnDrag(event);
    Tools& tools = TheTools();
    // The middle button, or both main buttons, pan the view in the middle of any other gesture: the pan
    // tool gets a whole small gesture of its own.
    const bool panGesture = IsDown(input::Key::MOUSE_MIDDLE) ||
                            (IsDown(input::Key::MOUSE_LEFT) && IsDown(input::Key::MOUSE_RIGHT));
    if (panGesture && tools.GetActive() != tools.m_pan)
    {
        const SDLKey left = static_cast<SDLKey>(input::Key::MOUSE_LEFT);
        const math::Vec2 none(0, 0);
        PanTool& pan = *tools.m_pan;
        pan.OnDragBegin(input::DragEvent(event.position, none, event.position, left));
        pan.OnDrag(input::DragEvent(event.position - event.delta, event.delta, event.position, left));
        pan.OnDragEnd(input::DragEvent(event.position, none, event.position, left));
        event.SetHandled();
        return;
    }
    tools.GetTool()->OnDrag(event);
}

void AppGUI::OnDragEnd(const input::DragEvent& event)
{
    gui::Component::OnDragEnd(event);
    Tools& tools = TheTools();
    tools.GetTool()->OnDragEnd(event);
    if (tools.GetActive())
        tools.SetActive(nullptr);
}

void AppGUI::OnKeyEvent(const input::KeyEvent& event)
{
    gui::Component::OnKeyEvent(event);
    if (event.IsHandled())
        return;
    if (event.pressed && OnWheelOrSpace(event))
        return;
    if (event.pressed)
    {
        OnShortcut(event);
        if (event.IsHandled())
            return;
        OnEditingKey(event);
        if (event.IsHandled())
            return;
    }
    // Releases too: the sketch tool ends a straight run of its stroke when Shift comes up.
    TheTools().GetTool()->OnKeyEvent(event);
}

bool AppGUI::OnWheelOrSpace(const input::KeyEvent& event)
{
    const int key = event.key;
    if (key == input::Key::MOUSE_WHEEL_UP || key == input::Key::MOUSE_WHEEL_DOWN)
    {
        const bool up = key == input::Key::MOUSE_WHEEL_UP;
        if (event.shift)
        {
            if (up)
                TheScene().MoveToBack(GetSelection());
            else
                TheScene().MoveToFront(GetSelection());
        }
        else
            ZoomAt(event.position, up);
        event.SetHandled();
        return true;
    }
    if (key == SDLK_SPACE)
    {
        // Starting is a step of the history, so that undo returns to the moment of the start.
        if (!IsRunning())
            Undoer::GetInstancePtr()->Do(QLEX_NEW new SimStart());
        else
            physics::Simulation::GetInstancePtr()->m_running = false;
    }
    return false;
}

void AppGUI::OnShortcut(const input::KeyEvent& event)
{
    const int key = event.key;
    if (key == SDLK_RETURN && event.alt)
    {
        ToggleFullscreen();
        event.SetHandled();
    }
    if (!event.ctrl)
        return;
    Scene& scene = TheScene();
    Undoer& undoer = *Undoer::GetInstancePtr();
    const bool hasSelection = !GetSelection()->IsEmpty();
    switch (key)
    {
    case SDLK_f:
        ToggleFullscreen();
        event.SetHandled();
        break;
    case SDLK_c:
    case SDLK_x:
        if (hasSelection)
        {
            CopySelection(key == SDLK_x);
            event.SetHandled();
        }
        break;
    case SDLK_v:
    {
        const util::String text = input::Input::GetInstancePtr()->GetClipboardText();
        if (!text.empty() && Paste(text, GetMousePos()))
            event.SetHandled();
        break;
    }
    case SDLK_z:
        undoer.Undo();
        event.SetHandled();
        break;
    case SDLK_y:
        undoer.Redo();
        event.SetHandled();
        break;
    case SDLK_a:
        for (const EntityPtr& entity : scene.GetEntities())
            GetSelection()->Add(entity);
        event.SetHandled();
        break;
    case SDLK_s:
        // Stands in for the save dialog, which comes with the file dialogs.
        SaveSceneAs(QUICK_SCENE, false);
        event.SetHandled();
        break;
    case SDLK_o:
        // Stands in for the load dialog, which comes with the file dialogs.
        LoadScene(QUICK_SCENE, false);
        event.SetHandled();
        break;
    case SDLK_n:
        scene.NewSceneUndoable();
        event.SetHandled();
        break;
    case SDLK_q:
        if (!IsUserTrapped())
        {
            if (s_shell.exit)
                s_shell.exit();
            event.SetHandled();
        }
        break;
    case SDLK_g:
        if (hasSelection)
        {
            GroupSelection();
            event.SetHandled();
        }
        break;
    case SDLK_u:
        if (hasSelection)
        {
            UngroupSelection();
            event.SetHandled();
        }
        break;
    default:
        break;
    }
}

void AppGUI::OnEditingKey(const input::KeyEvent& event)
{
    const int key = event.key;
    if (key == SDLK_ESCAPE)
    {
        // A gesture in progress goes first; only with none does the popup close.
        if (TheTools().GetTool()->Disband())
            event.SetHandled();
        else if (IsPopupOpen())
        {
            ClosePopup();
            event.SetHandled();
        }
    }
    if ((key == SDLK_DELETE || key == SDLK_BACKSPACE) && !GetSelection()->IsEmpty())
    {
        Undoer::GetInstancePtr()->Do(QLEX_NEW new EraseEntities(GetSelection()->GetEntities()));
        event.SetHandled();
    }
}

bool AppGUI::ZoomAt(const math::Vec2& guiPos, bool in)
{
    Camera& camera = *TheScene().GetCamera();
    if (in ? camera.GetZoom() >= Camera::GetMaxZoom() : camera.GetZoom() <= Camera::GetMinZoom())
        return false;
    const float factor = std::pow(2.0f, in ? Settings().m_zoomFactor.Get() : -Settings().m_zoomFactor.Get());
    using M = math::TMatrix3<float>;
    // On the GUI side: to the mouse as origin, scale, and back, so the point under the mouse stays.
    camera.SetWorldToGUI(M::Translation2D(guiPos) * M::Scale2D(math::Vec2(factor, factor)) *
                         M::Translation2D(-guiPos) * camera.WorldToGUITarget());
    return true;
}

void AppGUI::CopySelection(bool cut)
{
    const GroupPtr selection = GetSelection();
    if (selection->IsEmpty())
        return;
    input::Input::GetInstancePtr()->SetClipboardText(
        Serializer::GetInstancePtr()->SerializeQlexlet(selection));
    if (!cut)
        return;
    const EntitySet entities = selection->GetEntities();
    for (const EntityPtr& entity : entities)
        TheScene().RemoveEntity(entity);
}

bool AppGUI::Paste(const util::String& text, const math::Vec2& at)
{
    const SnapshotPtr before = Snapshot::TakeSnapshot();
    // Any scene text runs: what a user copied from a file or a message as well as our own qlexlets.
    const GroupPtr group = Serializer::GetInstancePtr()->Deserialize(text);
    if (!group || group->IsEmpty())
        return false;
    Scene& scene = TheScene();
    scene.SetSelection(group);
    const math::BoundingBox2 box = group->CalcFiniteAABB();
    if (!box.IsEmpty() && box.IsFinite())
        scene.MoveTransform(group, math::Mat2D::Translation(at - box.GetCenter()), false);
    Undoer::GetInstancePtr()->AddUndo(before, "UndoCodePaste");
    return true;
}

void AppGUI::GroupSelection()
{
    const SnapshotPtr before = Snapshot::TakeSnapshot();
    TheScene().AddGroup(QLEX_NEW new Group(GetSelection()->GetEntities()));
    Undoer::GetInstancePtr()->AddUndo(before, "UndoGroupAssignment");
}

void AppGUI::UngroupSelection()
{
    const SnapshotPtr before = Snapshot::TakeSnapshot();
    Scene& scene = TheScene();
    const GroupPtr selection = GetSelection();
    const util::HashSet<GroupPtr> groups = scene.GetGroups();
    for (const GroupPtr& group : groups)
    {
        if (group == selection)
            continue;
        group->RemoveAll(selection);
        if (group->IsEmpty())
            scene.RemoveGroup(group);
    }
    Undoer::GetInstancePtr()->AddUndo(before, "UndoGroupRemoval");
}

void AppGUI::Update(float dt)
{
    util::ScopeProfiler profile("AppGUI::Update");
    gui::Component::Update(dt);
    const double now = util::Timer::GetCurrentTime();
    if (now - m_lastAutosave > Settings().m_autosaveTime)
    {
        script::Configuration::SaveAutosave(util::FileSystem::GetInstancePtr()->ConfigDir());
        SaveSceneAs(Scene_Autosave, true);
        m_lastAutosave = now;
    }
    TheTools().Update(dt);
}

void AppGUI::DrawCompAndChildren() const
{
    util::ScopeProfiler profile("AppGUI::Draw");
    gui::Component::DrawCompAndChildren();
}

void AppGUI::OpenMenu()
{
    // The popup works on the entities selected when it opened, whatever the selection does later.
    const GroupPtr selected = GetSelection()->ShallowClone();
    selected->SetName(GetSelection()->GetDescriptiveName());
    if (!selected->IsEmpty())
        m_openMenu = ENTITY_MENU;
    else if (TheScene().IsWaterAt(GetMousePos()))
        m_openMenu = WATER_MENU;
    else
        m_openMenu = BACKGROUND_MENU;
    // The menus themselves come with the widgets; until then the popup is an empty holder of the choice.
    Log(logging::Debug, "Popup menu " + m_openMenu + " for " + selected->GetName());
    util::SharedPtr<gui::Component> popup = QLEX_NEW new gui::Component();
    SetPopup(popup);
}

void AppGUI::SetPopup(util::SharedPtr<gui::Component> popup)
{
    ClosePopup();
    m_popupHolder->AddComponent(popup);
    // Added again, the holder comes to the end of the children: in front of every panel.
    RemoveComponent(m_popupHolder);
    AddComponent(m_popupHolder);
}

void AppGUI::ClosePopup()
{
    m_popupHolder->RemoveAllComponents();
}

bool AppGUI::IsPopupOpen() const
{
    return !m_popupHolder->GetChildren().empty();
}

void AppGUI::LoadScene(const util::String& name, bool automatic)
{
    if (!automatic)
        ClosePopup();
    LoadSceneFile(name, automatic);
}

void AppGUI::SaveSceneAs(const util::String& name, bool automatic)
{
    if (!automatic)
        ClosePopup();
    SaveSceneFile(name, automatic);
}

void AppGUI::RegisterSlider(util::SharedPtr<gui::LabeledSlider> slider)
{
    QLEX_ASSERT(slider);
    gui::Slider& bar = *slider->GetSlider();
    bar.AddBeginChangeCallback(util::MakeCallback(&AppGUI::OnSliderBegin, this));
    const std::string name = slider->GetName();
    bar.AddEndChangeCallback(QLEX_NEW new util::Callback([this, name] { OnSliderEnd(name); }, this));
}

void AppGUI::OnSliderBegin()
{
    m_sliderSnapshot = Snapshot::TakeSnapshot();
}

void AppGUI::OnSliderEnd(std::string name)
{
    // Every slider's change goes by one name in the history; the slider's own name is not part of it.
    (void)name;
    if (!m_sliderSnapshot)
        return;
    Undoer::GetInstancePtr()->AddUndo(m_sliderSnapshot, "UndoSliderChange");
    m_sliderSnapshot = nullptr;
}

void AppGUI::TakeSnapshot()
{
    Undoer::GetInstancePtr()->Do(QLEX_NEW new SnapshotAction());
}

void AppGUI::AssignToEmptyGroup(const EntitySet& entities)
{
    TheScene().AddGroup(QLEX_NEW new Group(entities));
}

void AppGUI::InvertSelection()
{
    ClosePopup();
    EntitySet others;
    for (const EntityPtr& entity : TheScene().GetEntities())
    {
        if (!GetSelection()->Contains(entity))
            others.insert(entity);
    }
    GetSelection()->Set(others);
}

void AppGUI::EraseWater()
{
    ClosePopup();
    physics::Simulation::GetInstancePtr()->EraseWater();
}

void AppGUI::ToggleFullscreen()
{
    if (s_shell.toggleFullscreen)
        s_shell.toggleFullscreen();
}

bool AppGUI::DrawFixJointsAndHinges() const
{
    return !IsRunning() || Settings().m_drawHingesWhenRunning;
}

} // namespace app
