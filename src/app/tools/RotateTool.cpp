#include "app/tools/RotateTool.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Undoer.h"
#include "app/entities/GeomEntity.h"
#include "app/tools/MoveTool.h"
#include "input/Key.h"
#include "rendering/GLContext.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

#include <cmath>

namespace app
{
namespace
{
constexpr int WEDGE_STEPS = 64;

// The angle of a zero vector is 0, so that a pointer on the centre turns nothing.
float AngleOf(math::Vec2 v)
{
    return v.x == 0.0f && v.y == 0.0f ? 0.0f : std::atan2(v.y, v.x);
}
} // namespace

void RotateTool::OnDragBegin(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_RIGHT)
        return;
    const math::Vec2 p = Scene::GetInstancePtr()->GetCamera()->GUIToWorld(event.startPos);
    if (!SelectForGesture(p))
        return;
    m_group = SelectionForGesture();
    SetInUse(true);
    m_angle = m_rawAngle = 0.0f;
    m_center = m_group->CalcRotationCenter();
    event.SetHandled();
    if (m_group->Size() == 1)
    {
        if (const auto shape = util::dynamic_pointer_cast<GeomEntity>(m_group->GetFirst()))
            m_angle = m_rawAngle = shape->GetGeom()->GetAngle();
    }
}

void RotateTool::OnDrag(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_RIGHT || !m_inUse)
        return;
    Scene& scene = *Scene::GetInstancePtr();
    const math::Vec2 q = scene.GetCamera()->GUIToWorld(event.position);
    const math::Vec2 delta = scene.GetCamera()->GUIToWorldNormal(event.delta);
    if (!m_transformer)
    {
        const float deadZone = DEAD_ZONE_CM * AppSettings::GetInstancePtr()->GetScreenCM();
        if ((q - m_center).Length() <= deadZone)
            return;
        m_transformer = QLEX_NEW new Transformer(m_group);
        m_snapshot = Snapshot::TakeSnapshot();
        event.SetHandled();
        return;
    }
    const float step = math::WrapAngle(AngleOf(q - m_center) - AngleOf(q - delta - m_center));
    const float turn = 2.0f * math::PIf;
    m_rawAngle += step;
    if (m_rawAngle <= -turn)
        m_rawAngle += turn;
    else if (m_rawAngle >= turn)
        m_rawAngle -= turn;
    float want = math::WrapAngle(m_rawAngle - m_angle);
    if (scene.IsModifierHeld(input::Shift))
        want = std::floor(m_rawAngle / SNAP_STEP + 0.5f) * SNAP_STEP - m_angle;
    if (want != 0.0f)
    {
        m_transformer->Transform(math::Mat2D::Translation(m_center) * math::Mat2D::Rotation(want) *
                                 math::Mat2D::Translation(-m_center));
        m_angle += want;
    }
    event.SetHandled();
}

void RotateTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_RIGHT || !m_inUse)
        return;
    SetInUse(false);
    if (m_transformer)
    {
        m_transformer = nullptr;
        m_group = nullptr;
        Undoer::GetInstancePtr()->AddUndo(m_snapshot, "UndoRotate");
        m_snapshot = nullptr;
    }
    event.SetHandled();
}

bool RotateTool::Disband()
{
    if (!m_inUse)
        return false;
    SetInUse(false);
    m_transformer = nullptr;
    m_group = nullptr;
    // A gesture that never left the dead zone changed nothing and took no snapshot.
    if (m_snapshot)
        m_snapshot->Restore();
    m_snapshot = nullptr;
    return true;
}

void RotateTool::Draw() const
{
    if (!m_inUse)
        return;
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    glPushMatrix();
    glTranslatef(m_center.x, m_center.y, 0.0f);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    if (m_transformer)
    {
        const math::Vec2 mouse = Scene::GetInstancePtr()->GetMousePos() - m_center;
        const float radius = mouse.Length();
        const float a = AngleOf(mouse) - m_rawAngle;
        renderer.SetColor4(0.5f, 0.5f, 1.0f, 0.5f);
        glBegin(GL_TRIANGLE_FAN);
        renderer.Vertex(math::Vec2(0, 0));
        for (int i = 0; i <= WEDGE_STEPS; ++i)
        {
            const float t = float(i) / WEDGE_STEPS;
            const float angle = a * (1.0f - t) + (a + m_angle) * t;
            renderer.Vertex(math::Vec2(std::cos(angle), std::sin(angle)) * radius);
        }
        glEnd();
    }
    renderer.SetColor4(1, 1, 1, 1);
    const rendering::TextureProxy picture = rendering::TextureManager::GetInstancePtr()->Load(
        "rotate_origo.png", rendering::TextureManager::DefaultImageType());
    if (picture)
    {
        glRotatef(m_angle * 180.0f / math::PIf, 0, 0, 1);
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, picture->GetName());
        renderer.DrawRect(math::Vec2(0, 0), AppSettings::GetInstancePtr()->GetScreenCM());
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_TEXTURE_2D);
    }
    glPopMatrix();
}

} // namespace app
