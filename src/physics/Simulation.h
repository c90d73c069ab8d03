#pragma once

#include "math/Math.h"
#include "physics/CollisionDetection.h"
#include "physics/ContactCache.h"
#include "physics/ContactID.h"
#include "physics/StepContext.h"
#include "physics/Sweeper.h"
#include "physics/WorldGeom.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Callback.h"
#include "util/HashMap.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/String.h"
#include "util/VectorPOD.h"

#include <functional>
#include <vector>

namespace physics
{
class AbstractBody;
class Body;
class Constraint;
class Contact;
class Hinge;
class Joint;
class Particle;

// The simulated time in seconds.
double GetSimTime();

// The joints, or the hinges, of the simulation. A link is activated as it enters and deactivated as it
// leaves; one that is no longer good (IsGood) is taken out by RemoveBad.
template <class T> class LinkSet
{
public:
    explicit LinkSet(size_t buckets) : m_links(buckets) {}

    void Add(const util::SharedPtr<T>& link);
    void Remove(const util::SharedPtr<T>& link);
    bool Has(const util::SharedPtr<T>& link) const { return link && m_links.Contains(link); }
    void RemoveBad();
    void RemoveAll();
    const util::HashSet<util::SharedPtr<T>>& Get() const { return m_links; }

private:
    template <class Pred> void RemoveIf(Pred pred);

    util::HashSet<util::SharedPtr<T>> m_links;
};

// Owns every body, joint, hinge, particle and contact, and advances the world in fixed steps of timeDelta.
// Update turns real time into a whole number of steps within a budget of real time per frame; a frame
// that can't keep up drops the time it owes instead of spiralling. Scripts see it as "Sim": its settings
// are attributes, and the command "time" gives the simulated time.
class Simulation : public script::Reflected, public util::Singleton<Simulation>
{
public:
    Simulation();
    ~Simulation() override;

    void Update(double dt);
    // One fixed step; with run false only the listeners are called, with 0.
    void Step(bool run);
    // One step as Update takes it, but counted instead of timed: Step with `running` as it stands, and the
    // simulated time moves on by timeDelta when the world runs. For batch runs.
    void AdvanceOneStep();
    // Removes everything but the world body.
    void Clear();

    void AddBody(const util::SharedPtr<Body>& body);
    void RemoveBody(const util::SharedPtr<Body>& body);
    bool HasBody(const util::SharedPtr<Body>& body) const;
    bool HasBody(const util::SharedPtr<AbstractBody>& body) const;
    bool HasBody(Body* body) const;
    const std::vector<util::SharedPtr<Body>>& GetBodies() const { return m_solidBodiesList; }

    // Joints act through forces before the solve, hinges within it. The six calls after these two are
    // short forms of the sets' own.
    LinkSet<Joint>& Joints() { return m_joints; }
    LinkSet<Hinge>& Hinges() { return m_hinges; }
    void AddJoint(const util::SharedPtr<Joint>& joint) { m_joints.Add(joint); }
    void RemoveJoint(const util::SharedPtr<Joint>& joint) { m_joints.Remove(joint); }
    bool HasJoint(const util::SharedPtr<Joint>& joint) const { return m_joints.Has(joint); }
    void AddConstraint(const util::SharedPtr<Hinge>& hinge) { m_hinges.Add(hinge); }
    void RemoveConstraint(const util::SharedPtr<Hinge>& hinge) { m_hinges.Remove(hinge); }
    bool HasConstraint(const util::SharedPtr<Hinge>& hinge) const { return m_hinges.Has(hinge); }
    const util::HashSet<util::SharedPtr<Joint>>& GetJoints() const { return m_joints.Get(); }
    const util::HashSet<util::SharedPtr<Hinge>>& GetConstraints() const { return m_hinges.Get(); }

    void AddParticle(const util::SharedPtr<Particle>& particle);
    const std::vector<util::SharedPtr<Particle>>& GetParticles() const { return m_particles; }
    void EraseWater();

    const util::SharedPtr<Body>& GetWorldBody() const;
    const util::SharedPtr<WorldGeom>& GetWorldGeom() const;
    math::Vec2 GetGravity() const;
    void AddStepCallback(const util::SharedPtr<util::CallbackArg<float>>& callback);
    void OnRunningChange() {}

    const std::vector<util::SharedPtr<Contact>>& GetContacts() const { return m_contacts; }
    unsigned int GetMatchedCount() const { return m_matchedCount; }
    const util::String& GetStatistics() const { return m_statistics; }
    float GetRealtimeRatio() const { return m_realtimeRatio; }
    double GetSimulatedTime() const { return m_simulatedTime; }
    // An undo puts the clock back to the moment of its snapshot.
    void SetSimulatedTime(double t) { m_simulatedTime = t; }
    double GetTimeDebt() const { return m_timeDebt; }
    // Real seconds a frame may spend on steps; the main loop sets it to 1 / minFPS.
    void SetUpdateBudget(float seconds) { m_updateBudget = seconds; }
    float GetUpdateBudget() const { return m_updateBudget; }
    // The real-time clock of Update, in seconds. Tests give a clock of their own.
    void SetClock(std::function<double()> clock);

    // The stages of a step. The context holds the settings of this step, read once at its start.
    StepContext MakeStepContext() const;
    void FlushBadBodies();
    void CalcForces(const StepContext& step);
    void CalcContacts();
    void RunSolver(const StepContext& step);
    void GaussSeidelSolver(const util::VectorPOD<Constraint*>& list);
    void PrioritizedSolver(const util::VectorPOD<Constraint*>& list);
    void IntegrateVelocity(float dt);
    void IntegratePosition(float dt);

    // Settings: attributes of "Sim", read at each use so that a script may change them between two steps.
    // Where a loop runs over many bodies or contacts, the stage reads the attribute once into a local.
    script::AttribWrapper<bool> m_running;
    // Simulated seconds per real second; a negative value is taken back to 0.
    script::AttribWrapper<float> m_timeFactor;
    // Length of one fixed step, in seconds.
    script::AttribWrapper<float> m_timeDelta;
    script::AttribWrapper<math::Vec2> m_gravity;
    script::AttribWrapper<bool> m_gravitySwitch;
    // Gates air friction and air buoyancy of bodies.
    script::AttribWrapper<bool> m_airSwitch;
    // Drag coefficients: linear per metre of exposed width, quadratic in speed, and rotational.
    script::AttribWrapper<float> m_airFrictionLinear;
    script::AttribWrapper<float> m_airFrictionQuadratic;
    script::AttribWrapper<float> m_rotFrictionLinear;
    script::AttribWrapper<float> m_airDensity;
    // Stiffness scale of springs.
    script::AttribWrapper<float> m_springForce;
    // What every new geometry starts with.
    script::AttribWrapper<float> m_defaultBodyDensity;
    script::AttribWrapper<float> m_defaultBodyFriction;
    script::AttribWrapper<float> m_defaultBodyRestitution;
    // Distance along gravity beyond which a body or particle is removed.
    script::AttribWrapper<float> m_fallLimit;
    script::AttribWrapper<bool> m_prioritizedSolver;
    // Depth that contacts aim for, in metres.
    script::AttribWrapper<float> m_targetPenetration;
    script::AttribWrapper<int> m_solveIter;
    // Stiffness k and the damping d (in steps) of contacts and hinges.
    script::AttribWrapper<float> m_solveConstant;
    script::AttribWrapper<float> m_solveDcontacts;
    script::AttribWrapper<float> m_solveDconstraints;
    // Shown to scripts; nothing reads it.
    script::AttribWrapper<bool> m_solvePenetrationDamping;
    // Scales of the terms of the constraint parameters.
    script::AttribWrapper<float> m_solveDistFactor;
    script::AttribWrapper<float> m_solveVelFactor;
    script::AttribWrapper<float> m_solveAccFactor;
    script::AttribWrapper<float> m_solveRegularizationFactor;
    script::AttribWrapper<bool> m_solvePreSortConstraints;
    script::AttribWrapper<bool> m_leapFrog;
    script::AttribWrapper<bool> m_adHocSolver;
    script::AttribWrapper<bool> m_warmStart;
    // Fraction of the last step's impulses that is reused.
    script::AttribWrapper<float> m_warmStartFactor;
    // Bound on the position term of contacts and hinges, in metres.
    script::AttribWrapper<float> m_maxPositionCorrection;
    // Whether contacts are looked for among the pairs whose boxes meet, or among all pairs. Both find
    // the same contacts; the first is faster beyond a few tens of shapes.
    script::AttribWrapper<bool> m_broadphase;

private:
    void RebuildStepList();
    void AppendStatistics();
    // A step of zero, negative or non-finite length can't advance the world: every formula of a step
    // divides by it.
    bool HasUsableStep() const;
    double Now() const;

    util::SharedPtr<WorldGeom> m_worldGeom;
    util::SharedPtr<Body> m_worldBody;
    std::vector<util::SharedPtr<Body>> m_solidBodiesList;
    // Membership tests; the list above owns the bodies.
    util::HashSet<Body*> m_solidBodies;
    LinkSet<Joint> m_joints;
    LinkSet<Hinge> m_hinges;
    std::vector<util::SharedPtr<Particle>> m_particles;
    util::VectorPOD<AbstractBody*> m_stepList;
    // Where the particles begin in the step list.
    size_t m_firstParticle = 0;
    std::vector<util::SharedPtr<Contact>> m_contacts;
    ContactCache m_contactCache;
    unsigned int m_matchedCount = 0;
    double m_timeDebt = 0.0;
    float m_updateBudget = 0.05f;
    float m_realtimeRatio = 1.0f;
    double m_simulatedTime = 0.0;
    util::String m_statistics;
    // Never deleted: a callback set unregisters itself from a function-local static of the foundation,
    // which may already be gone when the simulation dies at process exit.
    util::CallbackArgSet<float>& m_stepCallbacks;

    // Storage kept from step to step (lists grow by doubling, never by exact reservation), so that a steady
    // state allocates nothing; contacts come from the collider's pool.
    Collider m_collider;
    util::VectorPOD<Contact*> m_rawContacts;
    util::VectorPOD<Constraint*> m_solverList;
    // The joints and hinges of this step in the order they were made.
    util::VectorPOD<Joint*> m_jointOrder;
    util::VectorPOD<Hinge*> m_hingeOrder;
    Sweeper m_sweeper;
    std::function<double()> m_clock;
};

// Drag on a body: linear and quadratic in speed per metre of exposed width, and rotational, each bounded so
// that it can't reverse the motion within one step.
void AddAirFrictionForce(float invDt, float linear, float quadratic, float rot, AbstractBody& body,
                         const math::Vec2& velocity, float speed, float width, const math::Vec2& arm,
                         float mult);
// Lift of the displaced air, at the centre of the area.
void AddAirBuoyancy(float density, const math::Vec2& gravity, AbstractBody& body, float area,
                    const math::Vec2& arm);

} // namespace physics
