#include "physics/Body.h"

#include "logging/Exception.h"
#include "logging/Log.h"
#include "physics/WorldGeom.h"

#include <algorithm>

namespace physics
{
namespace
{
void SetUnitMass(float& mass, float& massInv, float& inertia, float& inertiaInv)
{
    mass = massInv = inertia = inertiaInv = 1.0f;
}
} // namespace

Body::Body() : m_geoms(3) {}

Body::~Body()
{
    for (BodyPart& part : m_parts)
        if (part.geom->GetBody() == this)
            part.geom->SetBody(nullptr);
}

void Body::SetGeoms(const GeomSet& newGeoms)
{
    // The set may be our own (OnGeomChange), and it is cleared below.
    const GeomSet geoms = newGeoms;

    if (m_id == 0)
    {
        // The world body keeps the world geometry; shapes fixed to the background join it.
        int worldGeoms = 0;
        for (const util::SharedPtr<Geom>& g : geoms)
            if (g && g->GetKind() == Geom::Kind::World)
            {
                QLEX_ASSERT(g->GetId() == 0);
                ++worldGeoms;
            }
        QLEX_ASSERT(worldGeoms == 1);
    }

    for (BodyPart& part : m_parts)
        if (part.geom->GetBody() == this)
            part.geom->SetBody(nullptr);
    m_parts.clear();
    m_geoms.clear();

    if (geoms.size() == 0)
    {
        SetUnitMass(m_mass, m_massInv, m_inertia, m_inertiaInv);
        return;
    }

    m_angle = 0.0f;
    m_position = math::Vec2(0.0f, 0.0f);
    m_mass = m_inertia = m_area = 0.0f;
    math::Vec2 positionSum(0.0f, 0.0f);
    // In the order the shapes were made (every object's id counts up): the set's own order follows addresses,
    // and the sums below and the order of the parts (which the contacts follow) must be the same in every
    // run.
    std::vector<util::SharedPtr<Geom>> ordered;
    for (const util::SharedPtr<Geom>& g : geoms)
        if (g)
            ordered.push_back(g);
    std::sort(ordered.begin(), ordered.end(),
              [](const util::SharedPtr<Geom>& a, const util::SharedPtr<Geom>& b)
              { return a->util::Pointee::m_id < b->util::Pointee::m_id; });
    std::vector<util::SharedPtr<Geom>> accepted;
    for (const util::SharedPtr<Geom>& g : ordered)
    {
        const float mass = g->Mass();
        const float area = g->Area();
        const float inertia = g->Inertia();
        const math::Vec2 position = g->GetPosition();
        if (mass > 0.0f && area > 0.0f && inertia > 0.0f && math::IsFinite(position))
        {
            m_mass += mass;
            m_area += area;
            if (math::IsFiniteFloat(mass))
                positionSum += position * mass;
            accepted.push_back(g);
        }
        else
        {
            Log(logging::Error, "Bad geometry in Body::AddGeoms");
        }
    }
    if (accepted.empty())
    {
        SetUnitMass(m_mass, m_massInv, m_inertia, m_inertiaInv);
        return;
    }

    const bool finiteMass = math::IsFiniteFloat(m_mass);
    if (finiteMass && m_mass != 0.0f && math::IsFinite(positionSum))
        m_position = positionSum / m_mass;
    m_bodyToWorld = math::Mat2D::Translation(m_position);
    m_worldToBody = math::Inverted(m_bodyToWorld);
    m_massInv = 1.0f / m_mass;

    // Parallel-axis theorem: each shape's own inertia plus its mass at its distance from the centre.
    for (const util::SharedPtr<Geom>& g : accepted)
    {
        m_inertia += g->Inertia() + g->Mass() * math::DistanceSq(m_position, g->GetPosition());
        BodyPart part;
        part.geom = g;
        part.bodyToGeom = g->GetWorldToGeom() * m_bodyToWorld;
        part.geomToBody = math::Inverted(part.bodyToGeom);
        m_parts.push_back(part);
        m_geoms.insert(g);

        Body* previous = g->GetBodyBody();
        if (previous && previous != this)
            previous->RemoveGeom(g);
        g->SetBody(this);
    }
    if (!finiteMass)
        m_inertia = math::INF;
    m_inertiaInv = 1.0f / m_inertia;

    QLEX_ASSERT(math::IsFiniteFloat(m_massInv) && m_massInv >= 0.0f);
    QLEX_ASSERT(math::IsFiniteFloat(m_inertiaInv) && m_inertiaInv >= 0.0f);
    for (const BodyPart& part : m_parts)
        QLEX_ASSERT(part.geom->GetBody() == this);

    ApplyPoseChange();
}

void Body::AddGeom(const util::SharedPtr<Geom>& geom)
{
    GeomSet geoms = m_geoms;
    geoms.insert(geom);
    SetGeoms(geoms);
}

void Body::AddGeoms(const GeomSet& more)
{
    GeomSet geoms = m_geoms;
    for (const util::SharedPtr<Geom>& g : more)
        geoms.insert(g);
    SetGeoms(geoms);
}

void Body::SetGeom(const util::SharedPtr<Geom>& geom)
{
    GeomSet geoms(3);
    geoms.insert(geom);
    SetGeoms(geoms);
}

void Body::RemoveGeom(const util::SharedPtr<Geom>& geom)
{
    if (!m_geoms.Contains(geom))
        return;
    GeomSet geoms = m_geoms;
    geoms.erase(geom);
    SetGeoms(geoms);
}

void Body::OnGeomChange()
{
    SetGeoms(m_geoms);
}

void Body::ApplyPoseChange()
{
    m_angle = math::WrapAngle(m_angle);
    m_bodyToWorld = math::Mat2D::TranslationRotation(m_position, m_angle);
    m_worldToBody = math::Inverted(m_bodyToWorld);
    for (BodyPart& part : m_parts)
        part.geom->SetWorldPose(m_bodyToWorld * part.geomToBody);
}

bool Body::IsBad() const
{
    return AbstractBody::IsBad() || m_parts.empty();
}

} // namespace physics
