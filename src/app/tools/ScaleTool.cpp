#include "app/tools/ScaleTool.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Undoer.h"
#include "input/Key.h"
#include "rendering/GLContext.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

#include <algorithm>
#include <cmath>

namespace app
{
namespace
{
// A ring's radius: a quarter of the smaller side, less a margin so that neighbouring rings don't touch,
// and never more than half a screen centimetre.
constexpr float RING_SHARE = 0.25f * 0.9f;
constexpr float RING_MAX_CM = 0.5f;
// A natural centre closer than this share of the box to the handle, along a scaled axis, is not used.
constexpr float CENTER_MARGIN = 0.45f;
// While no gesture runs, the handles stay while the mouse is within the box grown by this factor.
constexpr float HOVER_GROWTH = 1.75f;
constexpr float FRAME_MAX_CM = 0.15f;
constexpr float FRAME_SHARE = 0.1f;

Scene& TheScene()
{
    return *Scene::GetInstancePtr();
}

float ScreenCM()
{
    return AppSettings::GetInstancePtr()->GetScreenCM();
}

float SmallerSide(const math::BoundingBox2& box)
{
    const math::Vec2 size = box.GetSize();
    return std::min(size.x, size.y);
}

void SetPreviewOf(const GroupPtr& group, const math::Mat3& transform)
{
    for (const EntityPtr& entity : group->GetEntities())
        entity->m_scaleTransform = transform;
}

void ClearPreviewOf(const GroupPtr& group)
{
    for (const EntityPtr& entity : group->GetEntities())
        entity->ClearScaleTransform();
}
} // namespace

std::vector<Ring> CalcRingList(const math::BoundingBox2& box)
{
    const float r = std::min(RING_SHARE * SmallerSide(box), RING_MAX_CM * ScreenCM());
    const math::Vec2 lo = box.min;
    const math::Vec2 hi = box.max;
    const math::Vec2 mid = box.GetCenter();
    const math::TVector2<bool> both(true, true), x(true, false), y(false, true);
    return {
        {math::Vec2(lo.x, hi.y), math::Vec2(hi.x, lo.y), r, 5, both, "north-west"},
        {math::Vec2(mid.x, hi.y), math::Vec2(mid.x, lo.y), r, 4, y, "north-south"},
        {math::Vec2(hi.x, hi.y), math::Vec2(lo.x, lo.y), r, 6, both, "north-east"},
        {math::Vec2(lo.x, mid.y), math::Vec2(hi.x, mid.y), r, 1, x, "west-east"},
        {math::Vec2(hi.x, mid.y), math::Vec2(lo.x, mid.y), r, 2, x, "west-east"},
        {math::Vec2(lo.x, lo.y), math::Vec2(hi.x, hi.y), r, 9, both, "north-east"},
        {math::Vec2(mid.x, lo.y), math::Vec2(mid.x, hi.y), r, 8, y, "north-south"},
        {math::Vec2(hi.x, lo.y), math::Vec2(lo.x, hi.y), r, 10, both, "north-west"},
    };
}

std::optional<Ring> GetRingAt(const math::BoundingBox2& box, math::Vec2 p)
{
    for (const Ring& ring : CalcRingList(box))
    {
        if ((p - ring.position).Length() < ring.radius)
            return ring;
    }
    return std::nullopt;
}

math::Vec2 CalcScaleCenter(const math::BoundingBox2& box, const GroupPtr& group, const Ring& ring)
{
    const std::optional<math::Vec2> c = group->CalcScaleCenter();
    if (!c)
        return ring.opposite;
    const math::Vec2 size = box.GetSize();
    for (int i = 0; i < 2; ++i)
    {
        if (ring.axes[i] && std::fabs((*c)[i] - ring.position[i]) < CENTER_MARGIN * size[i])
            return ring.opposite;
    }
    return *c;
}

void ScaleTool::UpdateGroup(math::Vec2 p)
{
    Scene& scene = TheScene();
    if (!scene.GetSelection()->IsEmpty())
    {
        m_group = scene.GetSelection();
        return;
    }
    GroupPtr hover = scene.GetSelectionAt(p);
    if (hover && hover->IsEmpty())
        hover = nullptr;
    if (m_group)
    {
        m_group->Trim();
        if (m_group->IsEmpty())
            m_group = nullptr;
    }
    if (!m_group)
    {
        m_group = hover;
        return;
    }
    math::BoundingBox2 big = m_group->CalcFiniteAABB();
    big.SetSize(big.GetSize() * HOVER_GROWTH);
    bool cleared = false;
    if (big.Distance(p) > 0.0f && !GetRingAt(big, p))
    {
        m_group = nullptr;
        cleared = true;
    }
    if (hover && (cleared || big.Contains(hover->CalcFiniteAABB())))
        m_group = hover;
}

math::Vec2 ScaleTool::GetCurrentScaleFactor() const
{
    const math::Vec2 a = m_ringPos - m_center;
    math::Vec2 b = TheScene().GetMousePos() - m_center;
    for (int i = 0; i < 2; ++i)
    {
        if (!m_axes[i])
            b[i] = a[i];
    }
    math::Vec2 s(b.x / a.x, b.y / a.y);
    const Scene& scene = TheScene();
    if (scene.IsModifierHeld(input::Shift))
    {
        // A side handle moves one axis only: it has no aspect to keep.
        if (m_axes.x != m_axes.y)
            return math::Vec2(1, 1);
        const float uniform = std::sqrt(std::fabs(s.x * s.y));
        s = math::Vec2(std::copysign(uniform, s.x), std::copysign(uniform, s.y));
    }
    else if (scene.IsModifierHeld(input::Ctrl))
    {
        for (int i = 0; i < 2; ++i)
        {
            float& v = s[i];
            v = std::fabs(v) <= 1.0f ? 1.0f / std::floor(1.0f / v + 0.5f) : std::floor(v + 0.5f);
        }
    }
    for (int i = 0; i < 2; ++i)
    {
        if (s[i] == 0.0f || !math::IsFinite(s[i]) || !m_axes[i])
            s[i] = 1.0f;
    }
    return s;
}

math::Mat3 ScaleTool::GetDeltaTransform() const
{
    const math::Vec2 s = GetCurrentScaleFactor();
    if (s == m_applied)
        return math::Mat3();
    return math::Mat3::Translation2D(m_center) *
           math::Mat3::Scale2D(math::Vec2(s.x / m_applied.x, s.y / m_applied.y)) *
           math::Mat3::Translation2D(-m_center);
}

void ScaleTool::ApplyDeltaTransform()
{
    const math::Vec2 s = GetCurrentScaleFactor();
    if (s == m_applied)
        return;
    if (!m_snapshot)
        m_snapshot = Snapshot::TakeSnapshot();
    Scene& scene = TheScene();
    scene.ScaleTransform(m_group, GetDeltaTransform());
    m_applied = s;
    ClearPreviewOf(m_group);
    scene.SetSelection(m_group);
}

void ScaleTool::Update(float)
{
    if (!m_inUse)
    {
        UpdateGroup(TheScene().GetMousePos());
        return;
    }
    if (TheScene().IsModifierHeld(input::Alt))
        ApplyDeltaTransform();
    SetPreviewOf(m_group, GetDeltaTransform());
}

void ScaleTool::OnDragBegin(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT)
        return;
    const math::Vec2 p = TheScene().GetCamera()->GUIToWorld(event.startPos);
    UpdateGroup(p);
    if (!m_group)
        return;
    const math::BoundingBox2 box = m_group->CalcFiniteAABB();
    const std::optional<Ring> ring = GetRingAt(box, p);
    if (!ring)
        return;
    // The members of the gesture are fixed now, whatever the selection does meanwhile.
    m_group = m_group->ShallowClone();
    m_center = CalcScaleCenter(box, m_group, *ring);
    m_ringPos = ring->position;
    m_applied = math::Vec2(1, 1);
    m_snapshot = nullptr;
    m_ringName = ring->name;
    m_axes = ring->axes;
    SetInUse(true);
    event.SetHandled();
}

void ScaleTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || !m_inUse)
        return;
    ApplyDeltaTransform();
    Disband();
    event.SetHandled();
}

bool ScaleTool::Disband()
{
    if (!m_inUse)
        return false;
    SetInUse(false);
    ClearPreviewOf(m_group);
    m_group = nullptr;
    if (m_snapshot)
        Undoer::GetInstancePtr()->AddUndo(m_snapshot, "UndoScale");
    m_snapshot = nullptr;
    return true;
}

util::String ScaleTool::GetCursorName() const
{
    if (m_inUse)
        return "arrow_" + m_ringName;
    if (!m_group)
        return "";
    const std::optional<Ring> ring = GetRingAt(m_group->CalcFiniteAABB(), TheScene().GetMousePos());
    return ring ? "arrow_" + ring->name : "";
}

void ScaleTool::Draw() const
{
    if (!m_group || m_group->IsEmpty())
        return;
    const math::BoundingBox2 box = m_group->CalcFiniteAABB();
    if (box.IsEmpty())
        return;
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const math::Vec2 mouse = TheScene().GetMousePos();
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);

    renderer.SetColor4(1, 1, 1, 0.5f);
    const float frame = std::min(FRAME_MAX_CM * ScreenCM(), FRAME_SHARE * SmallerSide(box));
    renderer.DrawFrame(box.min, box.GetSize(), frame);

    std::optional<math::Vec2> center;
    math::TVector2<bool> axes(false, false);
    if (m_inUse)
    {
        center = m_center;
        axes = m_axes;
    }
    else if (const std::optional<Ring> ring = GetRingAt(box, mouse))
    {
        center = CalcScaleCenter(box, m_group, *ring);
        axes = ring->axes;
    }
    if (center)
    {
        renderer.SetColor4(1, 0, 0, 0.5f);
        glBegin(GL_LINES);
        if (axes.x)
        {
            renderer.Vertex(math::Vec2(center->x, box.min.y));
            renderer.Vertex(math::Vec2(center->x, box.max.y));
        }
        if (axes.y)
        {
            renderer.Vertex(math::Vec2(box.min.x, center->y));
            renderer.Vertex(math::Vec2(box.max.x, center->y));
        }
        glEnd();
    }

    const rendering::TextureProxy picture = rendering::TextureManager::GetInstancePtr()->Load(
        "ring", rendering::TextureManager::DefaultImageType());
    if (!picture)
        return;
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, picture->GetName());
    for (const Ring& ring : CalcRingList(box))
    {
        if ((mouse - ring.position).Length() < ring.radius)
            renderer.SetColor4(0, 1, 0, 1);
        else
            renderer.SetColor4(1, 1, 1, 0.5f);
        renderer.DrawRect(ring.position, 2.0f * ring.radius);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisable(GL_TEXTURE_2D);
}

} // namespace app
