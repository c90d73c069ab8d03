#include "physics/Simulation.h"

#include "logging/Exception.h"
#include "logging/Log.h"
#include "physics/Body.h"
#include "physics/Contact.h"
#include "physics/Hinge.h"
#include "physics/Joint.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/WorldGeom.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <sstream>

namespace physics
{
namespace
{
float Sign(float x)
{
    return x > 0.0f ? 1.0f : (x < 0.0f ? -1.0f : 0.0f);
}

// The members of a set in the order they were made (every object's id counts up). A set's own order follows
// addresses, which differ from run to run; forces and impulses added in another order round differently.
template <class T>
void InOrderOfMaking(const util::HashSet<util::SharedPtr<T>>& set, util::VectorPOD<T*>& out)
{
    out.clear();
    for (const util::SharedPtr<T>& member : set)
        out.append(member.get());
    std::sort(out.begin(), out.end(),
              [](const T* a, const T* b) { return a->util::Pointee::m_id < b->util::Pointee::m_id; });
}
} // namespace

double GetSimTime()
{
    return Simulation::GetInstancePtr()->GetSimulatedTime();
}

void AddAirFrictionForce(float invDt, float linear, float quadratic, float rot, AbstractBody& body,
                         const math::Vec2& velocity, float speed, float width, const math::Vec2& arm,
                         float mult)
{
    const bool movable = !body.IsHeld() && body.GetMassInv() != 0.0f;
    const float massBound = (body.IsHeld() ? math::INF : body.GetMass()) * invDt;
    const float c = std::min((speed * quadratic + linear) * width * mult, massBound);
    const math::Vec2 force = velocity * -c;
    body.AddForce(force);
    if (movable)
        body.SetTorque(body.GetTorque() + math::Cross(arm, force));

    const float w = body.GetAngularVelocity();
    const float torque =
        std::min(std::fabs(w) * rot * body.GetMass() * mult, body.GetInertia() * std::fabs(w) * invDt);
    if (movable)
        body.SetTorque(body.GetTorque() - torque * Sign(w));
}

void AddAirBuoyancy(float density, const math::Vec2& gravity, AbstractBody& body, float area,
                    const math::Vec2& arm)
{
    const math::Vec2 force = gravity * -(area * density);
    body.AddForce(force);
    if (!body.IsHeld() && body.GetMassInv() != 0.0f)
        body.SetTorque(body.GetTorque() + math::Cross(arm, force));
}

Simulation::Simulation()
    : script::Reflected("Sim"), m_running(this, "running", true), m_timeFactor(this, "timeFactor", 1.0f),
      m_timeDelta(this, "timeDelta", 0.01f), m_gravity(this, "gravity", math::Vec2(0.0f, -9.8f)),
      m_gravitySwitch(this, "gravitySwitch", true), m_airSwitch(this, "airSwitch", true),
      m_airFrictionLinear(this, "airFrictionLinear", 0.01f),
      m_airFrictionQuadratic(this, "airFrictionQuadratic", 0.0f),
      m_rotFrictionLinear(this, "rotFrictionLinear", 0.01f), m_airDensity(this, "airDensity", 0.01f),
      m_springForce(this, "springForce", 1000.0f), m_defaultBodyDensity(this, "defaultBodyDensity", 2.0f),
      m_defaultBodyFriction(this, "defaultBodyFriction", 0.5f),
      m_defaultBodyRestitution(this, "defaultBodyRestitution", 0.5f), m_fallLimit(this, "fallLimit", 1000.0f),
      m_prioritizedSolver(this, "prioritizedSolver", false),
      m_targetPenetration(this, "targetPenetration", 0.001f), m_solveIter(this, "solveIter", 30),
      m_solveConstant(this, "solveConstant", 1e8f), m_solveDcontacts(this, "solveDcontacts", 5.0f),
      m_solveDconstraints(this, "solveDconstraints", 5.0f),
      m_solvePenetrationDamping(this, "solvePenetrationDamping", false),
      m_solveDistFactor(this, "solveDistFactor", 1.0f), m_solveVelFactor(this, "solveVelFactor", 1.0f),
      m_solveAccFactor(this, "solveAccFactor", 1.0f),
      m_solveRegularizationFactor(this, "solveRegularizationFactor", 1.0f),
      m_solvePreSortConstraints(this, "solvePreSortConstraints", true), m_leapFrog(this, "leapFrog", true),
      m_adHocSolver(this, "adHocSolver", false), m_warmStart(this, "warmStart", true),
      m_warmStartFactor(this, "warmStartFactor", 0.5f),
      m_maxPositionCorrection(this, "maxPositionCorrection", math::INF),
      m_broadphase(this, "broadphase", true), m_solidBodies(3), m_joints(3), m_hinges(3),
      m_stepCallbacks(*new util::CallbackArgSet<float>())
{
    m_running->AddChangeCallback(util::MakeCallback(&Simulation::OnRunningChange, this));
    AddCmd("time", [] { return script::ValueToObject(static_cast<float>(GetSimTime())); });
    // First of all geometries and bodies, so that both take id 0.
    m_worldGeom = QLEX_NEW new WorldGeom();
    m_worldBody = QLEX_NEW new Body();
    m_worldBody->SetGeom(m_worldGeom);
    m_solidBodiesList.push_back(m_worldBody);
    m_solidBodies.insert(m_worldBody.get());
    m_clock = util::ProfilerTime;
}

Simulation::~Simulation() = default;

double Simulation::Now() const
{
    return m_clock();
}

void Simulation::SetClock(std::function<double()> clock)
{
    m_clock = clock ? std::move(clock) : std::function<double()>(util::ProfilerTime);
}

const util::SharedPtr<Body>& Simulation::GetWorldBody() const
{
    QLEX_ASSERT(m_worldBody->GetId() == 0 && m_worldGeom->GetId() == 0);
    QLEX_ASSERT(m_worldBody->GetGeoms().Contains(m_worldGeom));
    QLEX_ASSERT(m_worldGeom->GetBody() == m_worldBody.get());
    return m_worldBody;
}

const util::SharedPtr<WorldGeom>& Simulation::GetWorldGeom() const
{
    GetWorldBody();
    return m_worldGeom;
}

math::Vec2 Simulation::GetGravity() const
{
    return m_gravitySwitch ? m_gravity.Get() : math::Vec2(0.0f, 0.0f);
}

void Simulation::AddStepCallback(const util::SharedPtr<util::CallbackArg<float>>& callback)
{
    m_stepCallbacks.Add(callback);
}

void Simulation::Update(double dt)
{
    const util::ScopeProfiler profile("Simulation::Update");
    m_statistics.clear();
    // Written as a negated test, so that a NaN goes to 0 too: it would make the debt NaN for good.
    if (!(m_timeFactor >= 0.0f))
        m_timeFactor = 0.0f;
    const float timeFactor = m_timeFactor;

    // Without a usable step length the world stands still as if frozen, and so keeps its bodies.
    if (!m_running || math::IsZero(timeFactor) || !HasUsableStep())
    {
        m_statistics += "Frozen\n";
        Step(false);
    }
    else
    {
        m_timeDebt += double(timeFactor) * dt;
        const double wanted = m_timeDebt;
        const double start = Now();
        const double h = m_timeDelta;
        while (m_timeDebt > 0.0)
        {
            const double t0 = Now();
            Step(m_running);
            const double stepTime = Now() - t0;
            m_timeDebt -= h;
            m_simulatedTime += h;
            // The frame's own dt counts against the budget: a slow frame takes one step and no more.
            if (stepTime + (Now() - start + dt) > m_updateBudget)
                break;
        }
        if (m_timeDebt > 0.0)
        {
            // Falling behind: the lost time is dropped and never made up, so that the frame rate holds.
            // An infinite time factor wants infinitely much and gets a vanishing share of it.
            m_realtimeRatio =
                std::isfinite(wanted) ? static_cast<float>((wanted - m_timeDebt) / wanted) : 0.0f;
            m_timeDebt = 0.0;
            char line[32];
            std::snprintf(line, sizeof line, "%3d%% realtime\n", static_cast<int>(m_realtimeRatio * 100.0f));
            m_statistics += line;
        }
        else
        {
            m_realtimeRatio = 1.0f;
            m_statistics += "100% realtime.\n";
        }
    }
    FlushBadBodies();
    AppendStatistics();
}

void Simulation::AppendStatistics()
{
    size_t bodies = m_solidBodiesList.size();
    if (m_worldBody->GetGeoms().size() == 1)
        --bodies;
    size_t geometries = 0;
    for (const util::SharedPtr<Body>& body : m_solidBodiesList)
        geometries += body->GetGeoms().size();
    --geometries;
    std::ostringstream out;
    out << bodies << " bodies\n"
        << geometries << " geometries\n"
        << m_particles.size() << " particles\n"
        << m_contacts.size() << " contacts\n"
        << m_joints.Get().size() << " springs\n"
        << m_hinges.Get().size() << " hinges\n"
        << "Running at " << util::ToString(1.0f / m_timeDelta.Get()) << " Hz\n";
    m_statistics += out.str();
}

bool Simulation::HasUsableStep() const
{
    const float h = m_timeDelta;
    return h > 0.0f && math::IsFiniteFloat(h);
}

void Simulation::Step(bool run)
{
    const util::ScopeProfiler profile("Simu::Step");
    run = run && HasUsableStep();
    if (run)
        FlushBadBodies();
    RebuildStepList();
    if (run)
    {
        const StepContext step = MakeStepContext();
        CalcForces(step);
        CalcContacts();
        const float h = step.h;
        if (m_leapFrog)
        {
            // Half the forces before the solve and half after: the solver sees mid-step velocities, and its
            // acceleration term (h / 2) accounts for the half still to come.
            IntegrateVelocity(h / 2.0f);
            RunSolver(step);
            IntegrateVelocity(h / 2.0f);
            IntegratePosition(h);
        }
        else
        {
            RunSolver(step);
            IntegrateVelocity(h);
            IntegratePosition(h);
        }
        SPH::GetInstancePtr()->VelocitySmoothing(step.water);
        // Forces from outside a step (a tool's) act in the next step, and then vanish.
        for (AbstractBody* body : m_stepList)
        {
            body->SetForce(math::Vec2(0.0f, 0.0f));
            body->SetTorque(0.0f);
        }
    }
    {
        const util::ScopeProfiler listeners("Step listeners");
        m_stepCallbacks.CallAll(run ? m_timeDelta.Get() : 0.0f);
    }
}

void Simulation::AdvanceOneStep()
{
    const bool run = m_running && HasUsableStep();
    const double h = m_timeDelta;
    Step(run);
    if (run)
        m_simulatedTime += h;
}

void Simulation::RebuildStepList()
{
    m_stepList.clear();
    for (const util::SharedPtr<Body>& body : m_solidBodiesList)
        m_stepList.append(body.get());
    m_firstParticle = m_stepList.size();
    for (const util::SharedPtr<Particle>& particle : m_particles)
        m_stepList.append(particle.get());
    for (size_t i = 0; i < m_stepList.size(); ++i)
        m_stepList[i]->SetStepIndex(static_cast<std::uint32_t>(i));
}

void Simulation::IntegrateVelocity(float dt)
{
    const util::ScopeProfiler profile("IntegrateVelocity");
    for (AbstractBody* body : m_stepList)
        body->IntegrateVelocity(dt);
}

void Simulation::IntegratePosition(float dt)
{
    const util::ScopeProfiler profile("IntegratePosition");
    const size_t firstParticle = std::min(m_firstParticle, m_stepList.size());
    for (size_t i = 0; i < firstParticle; ++i)
        m_stepList[i]->IntegratePosition(dt);
    // A particle's shape doesn't follow its pose (water meets shapes at the particle's position), so a
    // particle only moves; that spares a virtual call, and a cache line, per particle.
    for (size_t i = firstParticle; i < m_stepList.size(); ++i)
        m_stepList[i]->Move(dt);
}

void Simulation::CalcForces(const StepContext& step)
{
    const util::ScopeProfiler profile("Simulation::CalcForces");
    const float invDt = 1.0f / m_timeDelta;
    const math::Vec2 g = GetGravity();
    const float linear = m_airFrictionLinear;
    const float quadratic = m_airFrictionQuadratic;
    const float rot = m_rotFrictionLinear;
    const float airDensity = m_airDensity;
    const bool hasFriction = linear != 0.0f || quadratic != 0.0f || rot != 0.0f;
    const bool hasBuoyancy = airDensity != 0.0f;

    {
        const util::ScopeProfiler stage("Body forces");
        const bool air = m_airSwitch;
        for (const util::SharedPtr<Body>& bodyPtr : m_solidBodiesList)
        {
            Body& body = *bodyPtr;
            if (body.IsHeld() || body.GetMassInv() == 0.0f)
                continue;
            body.AddForce(g * body.GetMass());
            if (!air)
                continue;

            const math::Vec2 velocity = body.GetVelocity();
            const float speed = velocity.Length();
            const math::Vec2 dir = speed != 0.0f ? velocity / speed : math::Vec2(0.0f, 0.0f);
            const math::Vec2 perp = math::Rot90CW(dir);
            float width = 0.0f;
            math::Vec2 widthCentre;
            math::Vec2 areaCentre;
            float frictionSum = 0.0f;
            for (const Body::BodyPart& part : body.GetParts())
            {
                const Geom& geom = *part.geom;
                const math::OBB2D box = geom.GetOBBWorld();
                // The width the body shows to the wind, and where the wind meets it.
                const float r = 2.0f * box.ProjectedRadius(perp);
                width += r;
                widthCentre += box.center * r;
                const float area = geom.Area();
                areaCentre += geom.GetPosition() * area;
                frictionSum += geom.GetAirFrictionMult() * area;
            }
            const float totalArea = body.GetArea();
            const float airMult = frictionSum / totalArea;
            if (hasFriction && !math::IsZero(speed) && width > 0.0f)
                AddAirFrictionForce(invDt, linear, quadratic, rot, body, velocity, speed, width,
                                    widthCentre / width - body.GetPosition(), airMult);
            if (hasBuoyancy)
                AddAirBuoyancy(airDensity, g, body, totalArea, areaCentre / totalArea - body.GetPosition());
        }
    }
    {
        const util::ScopeProfiler stage("Particle forces");
        const SPH& sph = *SPH::GetInstancePtr();
        const float r = sph.m_radius;
        const float area = math::PIf * r * r;
        const float mass = area * sph.m_density;
        // Settings that give water no mass leave each particle the mass it last had.
        const bool settingsMass = mass > 0.0f && math::IsFiniteFloat(mass);
        const math::Vec2 noArm(0.0f, 0.0f);
        for (const util::SharedPtr<Particle>& particlePtr : m_particles)
        {
            Particle& particle = *particlePtr;
            particle.AddForce(g * (settingsMass ? mass : particle.GetMass()));
            if (hasFriction)
            {
                const math::Vec2 velocity = particle.GetVelocity();
                AddAirFrictionForce(invDt, linear, quadratic, rot, particle, velocity, velocity.Length(),
                                    2.0f * r, noArm, 1.0f);
            }
            if (hasBuoyancy)
                AddAirBuoyancy(airDensity, g, particle, area, noArm);
        }
    }
    InOrderOfMaking(m_joints.Get(), m_jointOrder);
    for (Joint* joint : m_jointOrder)
        joint->ApplyForce();
    if (m_running)
        SPH::GetInstancePtr()->Update(m_particles, step);
}

void Simulation::CalcContacts()
{
    const util::ScopeProfiler profile("Sim::CalcContacts");
    {
        // The last step's contacts are remembered by id (where two share one, the later), and let go, so
        // that the collider's pool can hand them out again. A contact missing for one step is forgotten.
        const util::ScopeProfiler stage("Update cache");
        m_contactCache.Begin(m_contacts.size());
        for (const util::SharedPtr<Contact>& contact : m_contacts)
            m_contactCache.Remember(*contact);
        m_contacts.clear();
    }
    {
        const util::ScopeProfiler stage("Finding contacts");
        m_collider.AssignBodies(m_solidBodiesList, m_particles);
        m_collider.SetBroadphase(m_broadphase);
        m_rawContacts.clear();
        m_collider.Collide(m_rawContacts);
        m_contacts.clear();
        for (Contact* contact : m_rawContacts)
            m_contacts.push_back(util::SharedPtr<Contact>(contact));
    }
    {
        const util::ScopeProfiler stage("Matching cache");
        m_matchedCount = 0;
        for (const util::SharedPtr<Contact>& contact : m_contacts)
        {
            if (const ContactMemory* old = m_contactCache.Find(contact->GetID()))
            {
                contact->ReadFrom(*old);
                ++m_matchedCount;
            }
        }
    }
}

StepContext Simulation::MakeStepContext() const
{
    StepContext step;
    const float h = m_timeDelta;
    step.h = h;
    const float k = m_solveConstant;
    // With leap-frog integration half of this step's forces come after the solve.
    const float accFactor = m_leapFrog ? h / 2.0f : 0.0f;
    if (m_adHocSolver)
    {
        ConstraintParams params;
        params.h = h;
        params.distanceFactor = 1.0f / h;
        params.velocityFactor = 0.0f;
        params.accelerationFactor = accFactor;
        params.regularization = 0.0f;
        step.hingeParams = params;
        step.contactParams = params;
    }
    else
    {
        step.hingeParams = ConstraintParams(h, m_solveDconstraints, k, accFactor);
        step.contactParams = ConstraintParams(h, m_solveDcontacts, k, accFactor);
    }
    step.targetPenetration = m_targetPenetration;
    step.maxPositionCorrection = m_maxPositionCorrection;
    step.warmStart = m_warmStart;
    step.warmStartFactor = m_warmStartFactor;
    step.water = SPH::GetInstancePtr()->MakeKernel();
    const float distFactor = m_solveDistFactor;
    const float velFactor = m_solveVelFactor;
    const float accFactorScale = m_solveAccFactor;
    const float regularizationFactor = m_solveRegularizationFactor;
    for (ConstraintParams* params : {&step.hingeParams, &step.contactParams})
    {
        params->distanceFactor *= distFactor;
        params->velocityFactor *= velFactor;
        params->accelerationFactor *= accFactorScale;
        params->regularization *= regularizationFactor;
    }
    return step;
}

void Simulation::RunSolver(const StepContext& step)
{
    const util::ScopeProfiler profile("RunSolver");
    {
        const util::ScopeProfiler stage("Init bodies");
        for (AbstractBody* body : m_stepList)
        {
            body->VelocityChange() = math::Vec2(0.0f, 0.0f);
            body->RotationChange() = 0.0f;
        }
    }
    InOrderOfMaking(m_hinges.Get(), m_hingeOrder);
    m_solverList.clear();
    for (Hinge* hinge : m_hingeOrder)
        m_solverList.append(hinge);
    for (const util::SharedPtr<Contact>& contact : m_contacts)
        m_solverList.append(contact.get());
    {
        // A constraint that passes keeps its place for good (the list changes only after it), so the sweeper
        // packs it now, while it is at hand.
        const util::ScopeProfiler stage("SolveInit");
        const bool pack = !m_prioritizedSolver;
        m_sweeper.Begin();
        size_t i = 0;
        while (i < m_solverList.size())
        {
            if (m_solverList[i]->SolveInit(step))
            {
                if (pack)
                    m_sweeper.Add(*m_solverList[i], m_stepList);
                ++i;
            }
            else
            {
                m_solverList.erase_swap(i);
            }
        }
    }
    if (m_prioritizedSolver)
        PrioritizedSolver(m_solverList);
    else
        GaussSeidelSolver(m_solverList);
    {
        const util::ScopeProfiler stage("Applying velchanges");
        for (AbstractBody* body : m_stepList)
        {
            if (body->IsImmovable())
                continue;
            body->SetVelocity(body->GetVelocity() + body->VelocityChange());
            body->SetAngularVelocity(body->GetAngularVelocity() + body->RotationChange());
        }
    }
}

void Simulation::GaussSeidelSolver(const util::VectorPOD<Constraint*>& list)
{
    m_sweeper.Run(list, m_stepList, m_solveIter, m_solvePreSortConstraints);
}

void Simulation::PrioritizedSolver(const util::VectorPOD<Constraint*>& list)
{
    const util::ScopeProfiler profile("PrioritizedSolver");
    for (AbstractBody* body : m_stepList)
        body->GetConstraints().clear();

    // Keyed by priority alone: of equal priorities only the first enters, and the others enter when a
    // neighbour's change alters theirs.
    std::set<Constraint*, ConstraintComparer> queue;
    for (Constraint* constraint : list)
    {
        for (int i = 0; i < 2; ++i)
        {
            AbstractBody* body = constraint->GetBody(i);
            if (!body->IsImmovable())
                body->GetConstraints().append(constraint);
        }
        constraint->CalcDesiredImpulse();
        queue.insert(constraint);
    }

    std::set<Constraint*> touched;
    const size_t steps = static_cast<size_t>(std::max(m_solveIter.Get(), 0)) * list.size();
    for (size_t step = 0; step < steps && !queue.empty(); ++step)
    {
        Constraint* top = *queue.begin();
        top->ApplyImpulse();
        touched.clear();
        for (int i = 0; i < 2; ++i)
            for (Constraint* neighbour : top->GetBody(i)->GetConstraints())
                touched.insert(neighbour);
        for (Constraint* constraint : touched)
        {
            queue.erase(constraint);
            constraint->CalcDesiredImpulse();
            queue.insert(constraint);
        }
    }
}

void Simulation::FlushBadBodies()
{
    const util::ScopeProfiler profile("Simulation::FlushBadBodies");
    math::Vec2 fall = GetGravity();
    fall.Normalize();
    const float limit = m_fallLimit;

    std::vector<util::SharedPtr<Body>> bad;
    for (const util::SharedPtr<Body>& body : m_solidBodiesList)
        if (body->IsBad() || math::Dot(body->GetPosition(), fall) > limit)
            bad.push_back(body);
    for (const util::SharedPtr<Body>& body : bad)
    {
        Log(logging::Debug, "Removing bad object");
        RemoveBody(body);
    }

    const float vaporizeTime = SPH::GetInstancePtr()->m_vaporizeTime;
    size_t i = 0;
    while (i < m_particles.size())
    {
        const Particle& p = *m_particles[i];
        if (p.IsBad() || p.GetLonelyTime() > vaporizeTime || math::Dot(p.GetPosition(), fall) > limit)
        {
            // The last particle moves into this slot and is tested next.
            m_particles[i] = m_particles.back();
            m_particles.pop_back();
        }
        else
        {
            ++i;
        }
    }

    m_joints.RemoveBad();
    m_hinges.RemoveBad();
}

void Simulation::AddBody(const util::SharedPtr<Body>& body)
{
    QLEX_ASSERT(body);
    if (m_solidBodies.Contains(body.get()))
        return;
    body->ApplyPoseChange();
    m_solidBodiesList.push_back(body);
    m_solidBodies.insert(body.get());
}

void Simulation::RemoveBody(const util::SharedPtr<Body>& body)
{
    if (!body || body == m_worldBody || !m_solidBodies.Contains(body.get()))
        return;
    // Held for the whole removal: the entity may hold the only other reference.
    const util::SharedPtr<Body> keep = body;
    keep->SetGeoms(Body::GeomSet());
    m_solidBodies.erase(keep.get());
    m_solidBodiesList.erase(std::find(m_solidBodiesList.begin(), m_solidBodiesList.end(), keep));
}

bool Simulation::HasBody(const util::SharedPtr<Body>& body) const
{
    return body && m_solidBodies.Contains(body.get());
}

bool Simulation::HasBody(const util::SharedPtr<AbstractBody>& body) const
{
    return HasBody(util::dynamic_pointer_cast<Body>(body));
}

bool Simulation::HasBody(Body* body) const
{
    return body && m_solidBodies.Contains(body);
}

void Simulation::AddParticle(const util::SharedPtr<Particle>& particle)
{
    QLEX_ASSERT(particle);
    m_particles.push_back(particle);
}

void Simulation::EraseWater()
{
    m_particles.clear();
}

void Simulation::Clear()
{
    const std::vector<util::SharedPtr<Body>> bodies = m_solidBodiesList;
    for (const util::SharedPtr<Body>& body : bodies)
        RemoveBody(body);
    m_joints.RemoveAll();
    m_hinges.RemoveAll();
    m_particles.clear();
    m_stepList.clear();
    m_contacts.clear();
    m_contactCache.Clear();
    m_timeDebt = 0.0;
    m_matchedCount = 0;
    m_simulatedTime = 0.0;
    m_worldBody->SetGeom(m_worldGeom);
    QLEX_ASSERT(m_solidBodiesList.size() == 1);
    QLEX_ASSERT(m_joints.Get().empty());
    QLEX_ASSERT(m_hinges.Get().empty());
}

template <class T> void LinkSet<T>::Add(const util::SharedPtr<T>& link)
{
    QLEX_ASSERT(link);
    if (m_links.Contains(link))
        return;
    m_links.insert(link);
    link->Activate();
}

template <class T> void LinkSet<T>::Remove(const util::SharedPtr<T>& link)
{
    QLEX_ASSERT(link);
    if (!m_links.Contains(link))
        return;
    // Held for the whole removal: `link` may be the set's own element, and the set its only owner.
    const util::SharedPtr<T> keep = link;
    m_links.erase(keep);
    keep->Deactivate();
}

template <class T> void LinkSet<T>::RemoveBad()
{
    RemoveIf([](const T& link) { return !link.IsGood(); });
}

template <class T> void LinkSet<T>::RemoveAll()
{
    RemoveIf([](const T&) { return true; });
}

template <class T> template <class Pred> void LinkSet<T>::RemoveIf(Pred pred)
{
    // Chosen first, then removed: each removal changes the set.
    std::vector<util::SharedPtr<T>> chosen;
    for (const util::SharedPtr<T>& link : m_links)
        if (pred(*link))
            chosen.push_back(link);
    for (const util::SharedPtr<T>& link : chosen)
        Remove(link);
}

template class LinkSet<Joint>;
template class LinkSet<Hinge>;

} // namespace physics
