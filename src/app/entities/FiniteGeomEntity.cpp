#include "app/entities/FiniteGeomEntity.h"

#include "app/AppSettings.h"
#include "app/EntitySerializer.h"
#include "logging/Log.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"

#include <algorithm>
#include <cmath>

namespace app
{
namespace
{
// Bounds the spawn grid of a shape whose area is next to nothing beside its bounding circle.
const int MAX_GRID = 1024;

// One more than gravity, so that a steered shape can lift itself.
float DefaultControllerAcc()
{
    return physics::Simulation::GetInstancePtr()->GetGravity().Length() + 1.0f;
}
} // namespace

FiniteGeomEntity::FiniteGeomEntity(GeomPtr geom)
    : GeomEntity(geom), m_density(this, "density", geom->GetDensity()),
      m_airFrictionMult(this, "airFrictionMult", geom->GetAirFrictionMult()),
      m_controllerAcc(this, "controllerAcc", DefaultControllerAcc()),
      m_controllerReverseXY(this, "controllerReverseXY", false),
      m_controllerInvertX(this, "controllerInvertX", false),
      m_controllerInvertY(this, "controllerInvertY", false)
{
    physics::Geom* g = m_geom.get();
    m_density->RequireFinite();
    m_airFrictionMult->RequireFinite();
    m_controllerAcc->RequireFinite();
    script::TAttrib<math::real>* density = &*m_density.GetAttrib();
    script::TAttrib<math::real>* air = &*m_airFrictionMult.GetAttrib();
    m_density->AddChangeCallback(
        QLEX_NEW new util::Callback([g, density] { g->SetDensity(density->Get()); }, this));
    m_airFrictionMult->AddChangeCallback(
        QLEX_NEW new util::Callback([g, air] { g->SetAirFrictionMult(air->Get()); }, this));
}

FiniteGeomEntity::~FiniteGeomEntity() = default;

void FiniteGeomEntity::AddToSimulation()
{
    GeomEntity::AddToSimulation();
    m_forceAdder = QLEX_NEW new ControllerForceAdder(this);
    physics::Simulation::GetInstancePtr()->AddStepCallback(
        util::MakeCallbackArg<float>(&ControllerForceAdder::OnSimUpdate, m_forceAdder.get()));
}

void FiniteGeomEntity::RemoveFromSimulation()
{
    GeomEntity::RemoveFromSimulation();
    // The step callback dies with its owner.
    m_forceAdder = nullptr;
}

math::Vec2 FiniteGeomEntity::CalcControllerForce() const
{
    if (!m_forceController)
        return math::Vec2(0, 0);
    math::Vec2 dir = m_forceController->GetDir();
    if (m_controllerReverseXY)
        std::swap(dir.x, dir.y);
    if (m_controllerInvertX)
        dir.x = -dir.x;
    if (m_controllerInvertY)
        dir.y = -dir.y;
    return dir * (m_controllerAcc * m_geom->Mass());
}

void FiniteGeomEntity::ControllerForceAdder::OnSimUpdate(float dt)
{
    if (!(dt > 0.0f) || !m_entity->m_forceController)
        return;
    const util::SharedPtr<physics::Body> body = m_entity->GetBody();
    if (body)
        body->ApplyForce(m_entity->CalcControllerForce(), m_entity->m_geom->GetPosition());
}

float FiniteGeomEntity::CalcEnergy() const
{
    const util::SharedPtr<physics::Body> body = GetBody();
    if (!m_geom || !body)
        return 0.0f;
    const float m = m_geom->Mass();
    const math::Vec2 p = m_geom->GetPosition();
    const math::Vec2 v = body->GetVelAtWorld(p);
    const float w = body->GetAngularVelocity();
    const math::Vec2 g = physics::Simulation::GetInstancePtr()->GetGravity();
    return 0.5f * m * math::Dot(v, v) + 0.5f * m_geom->Inertia() * w * w + m * math::Dot(p, -g);
}

std::vector<math::Vec2> FiniteGeomEntity::GetEquidistantPoints()
{
    const float r = physics::SPH::GetInstancePtr()->m_radius;
    const float area = m_geom->Area();
    const int maxSpawn = std::max(1, int(AppSettings::GetInstancePtr()->m_maxSPHSpawn));
    // One drop for each drop's area.
    const int count = std::clamp(int(std::floor(area / (r * r * math::PIf) + 0.5f)), 1, maxSpawn);
    const physics::BoundingCircle bc = m_geom->GetBCWorld();
    const math::Vec2 c = bc.center;
    const float radius = bc.radius;

    // A grid over the bounding circle's square with `count` cells over the circle's share of the shape's
    // area, odd rows shifted by half a cell so that the drops pack like a honeycomb.
    const float cells = std::sqrt(float(count) * (radius * radius * math::PIf / area));
    const int grid = math::IsFinite(cells) ? std::clamp(int(std::floor(cells + 0.5f)), 1, MAX_GRID) : 1;
    std::vector<math::Vec2> points;
    for (int row = 0; row < grid && int(points.size()) < count + 1; ++row)
    {
        for (int col = 0; col < grid && int(points.size()) < count + 1; ++col)
        {
            math::Vec2 p =
                c +
                math::Vec2(2.0f * (col + 0.5f * (row % 2)) / grid - 1.0f, 2.0f * row / grid - 1.0f) * radius;
            const float d = m_geom->DistanceWorld(p);
            if (!(d < 0.0f))
                continue;
            // A drop at the rim would stick out: it moves in until it fits.
            if (d > -r)
                p -= m_geom->NormalWorld(p) * (std::fabs(r) - std::fabs(d));
            points.push_back(p);
        }
    }
    if (points.empty())
        return {m_geom->GetPosition()};
    return points;
}

void FiniteGeomEntity::CopyFrom(const Entity* source)
{
    GeomEntity::CopyFrom(source);
    if (const FiniteGeomEntity* finite = dynamic_cast<const FiniteGeomEntity*>(source))
    {
        m_density = finite->m_density.Get();
        m_airFrictionMult = finite->m_airFrictionMult.Get();
        m_controllerAcc = finite->m_controllerAcc.Get();
        m_controllerReverseXY = finite->m_controllerReverseXY.Get();
        m_controllerInvertX = finite->m_controllerInvertX.Get();
        m_controllerInvertY = finite->m_controllerInvertY.Get();
        m_forceController = finite->m_forceController;
        m_unmadeForceController = finite->m_unmadeForceController;
    }
}

void FiniteGeomEntity::SerializeTo(EntitySerializer& serializer) const
{
    GeomEntity::SerializeTo(serializer);
    if (m_forceController)
        serializer.Set("forceController", util::String(m_forceController->Serialize()));
    else if (!m_unmadeForceController.empty())
        serializer.Set("forceController", m_unmadeForceController);
}

void FiniteGeomEntity::SetForceController(util::SharedPtr<input::DirInput> controller)
{
    m_forceController = std::move(controller);
    m_unmadeForceController.clear();
}

void FiniteGeomEntity::Deserialize(const EntitySerializer& serializer)
{
    GeomEntity::Deserialize(serializer);
    m_forceController = nullptr;
    m_unmadeForceController.clear();
    if (!serializer.Has("forceController"))
        return;
    const util::String text = serializer.Get<util::String>("forceController");
    try
    {
        m_forceController = input::DirInput::Deserialize(text);
    }
    catch (const std::exception& e)
    {
        // A joystick or axis that is no number: the rest of the entity stands without a controller.
        Log(logging::Error, util::String(e.what()) + " in DirInput \"" + text + "\"");
    }
    if (!m_forceController)
        m_unmadeForceController = text;
}

} // namespace app
