#include "app/tools/JointTools.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PenEntity.h"
#include "app/tools/ToolActions.h"
#include "input/Key.h"

namespace app
{
namespace
{
float JointSize()
{
    return AppSettings::GetInstancePtr()->GetDefaultJointSize();
}

template <class J> util::SharedPtr<Entity> JointAt(math::Vec2 p)
{
    const util::SharedPtr<J> joint = QLEX_NEW new J(JointSize());
    const math::Vec2 ends[2] = {p, p};
    joint->AttachAt(ends);
    return joint;
}
} // namespace

void ClickJointTool::OnClick(const input::ClickEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || event.clickCount != 1)
        return;
    Scene& scene = *Scene::GetInstancePtr();
    const math::Vec2 p = scene.GetCamera()->GUIToWorld(event.position);
    // A joint needs something to join; a click elsewhere goes on to select or to close a popup.
    if (!scene.GetEntityAt(p))
        return;
    AddUndoable(Make(p), UndoName());
    event.SetHandled();
}

util::SharedPtr<Entity> FixJointTool::Make(math::Vec2 p) const
{
    return JointAt<FixJointEntity>(p);
}

util::SharedPtr<Entity> HingeTool::Make(math::Vec2 p) const
{
    return JointAt<HingeEntity>(p);
}

util::SharedPtr<Entity> PenTool::Make(math::Vec2 p) const
{
    const util::SharedPtr<PenEntity> pen = QLEX_NEW new PenEntity(JointSize());
    pen->AttachAt(p);
    return pen;
}

} // namespace app
