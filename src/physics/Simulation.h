#pragma once

#include "math/Math.h"
#include "physics/CollisionDetection.h"
#include "physics/ContactID.h"
#include "physics/WorldGeom.h"
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

// Owns every body, joint, hinge, particle and contact, and advances the world in fixed steps of timeDelta.
// Update turns real time into a whole number of steps within a budget of real time per frame; a frame
// that can't keep up drops the time it owes instead of spiralling.
class Simulation : public util::Pointee, public util::Singleton<Simulation>
{
public:
    Simulation();
    ~Simulation() override;

    void Update(double dt);
    // One fixed step; with run false only the listeners are called, with 0.
    void Step(bool run);
    // Removes everything but the world body.
    void Clear();

    void AddBody(const util::SharedPtr<Body>& body);
    void RemoveBody(const util::SharedPtr<Body>& body);
    bool HasBody(const util::SharedPtr<Body>& body) const;
    bool HasBody(const util::SharedPtr<AbstractBody>& body) const;
    bool HasBody(Body* body) const;
    const std::vector<util::SharedPtr<Body>>& GetBodies() const { return m_solidBodiesList; }

    void AddJoint(const util::SharedPtr<Joint>& joint);
    void RemoveJoint(const util::SharedPtr<Joint>& joint);
    bool HasJoint(const util::SharedPtr<Joint>& joint) const;
    void AddConstraint(const util::SharedPtr<Hinge>& hinge);
    void RemoveConstraint(const util::SharedPtr<Hinge>& hinge);
    bool HasConstraint(const util::SharedPtr<Hinge>& hinge) const;
    const util::HashSet<util::SharedPtr<Joint>>& GetJoints() const { return m_joints; }
    const util::HashSet<util::SharedPtr<Hinge>>& GetConstraints() const { return m_constraints; }

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

    // The stages of a step.
    void FlushBadBodies();
    void CalcForces();
    void CalcContacts();
    void SetupSolver();
    void RunSolver();
    void GaussSeidelSolver(const util::VectorPOD<Constraint*>& list);
    void PrioritizedSolver(const util::VectorPOD<Constraint*>& list);
    void IntegrateVelocity(float dt);
    void IntegratePosition(float dt);

    // Settings, read at each use so that they may change between two steps.
    bool m_running = true;
    float m_timeFactor = 1.0f;
    float m_timeDelta = 0.01f;
    math::Vec2 m_gravity = math::Vec2(0.0f, -9.8f);
    bool m_gravitySwitch = true;
    bool m_airSwitch = true;
    float m_airFrictionLinear = 0.01f;
    float m_airFrictionQuadratic = 0.0f;
    float m_rotFrictionLinear = 0.01f;
    float m_airDensity = 0.01f;
    float m_springForce = 1000.0f;
    float m_defaultBodyDensity = 2.0f;
    float m_defaultBodyFriction = 0.5f;
    float m_defaultBodyRestitution = 0.5f;
    float m_fallLimit = 1000.0f;
    bool m_prioritizedSolver = false;
    float m_targetPenetration = 0.001f;
    int m_solveIter = 30;
    float m_solveConstant = 1e8f;
    float m_solveDcontacts = 5.0f;
    float m_solveDconstraints = 5.0f;
    // Shown to scripts; nothing reads it.
    bool m_solvePenetrationDamping = false;
    float m_solveDistFactor = 1.0f;
    float m_solveVelFactor = 1.0f;
    float m_solveAccFactor = 1.0f;
    float m_solveRegularizationFactor = 1.0f;
    bool m_solvePreSortConstraints = true;
    bool m_leapFrog = true;
    bool m_adHocSolver = false;
    bool m_warmStart = true;
    float m_warmStartFactor = 0.5f;
    float m_maxPositionCorrection = math::INF;

private:
    void RebuildStepList();
    void AppendStatistics();
    double Now() const;

    util::SharedPtr<WorldGeom> m_worldGeom;
    util::SharedPtr<Body> m_worldBody;
    std::vector<util::SharedPtr<Body>> m_solidBodiesList;
    // Membership tests; the list above owns the bodies.
    util::HashSet<Body*> m_solidBodies;
    util::HashSet<util::SharedPtr<Joint>> m_joints;
    util::HashSet<util::SharedPtr<Hinge>> m_constraints;
    std::vector<util::SharedPtr<Particle>> m_particles;
    util::VectorPOD<AbstractBody*> m_stepList;
    std::vector<util::SharedPtr<Contact>> m_contacts;
    util::HashMap<ContactID, util::SharedPtr<Contact>, ContactID::Hasher> m_contactCache;
    unsigned int m_matchedCount = 0;
    double m_timeDebt = 0.0;
    float m_updateBudget = 0.05f;
    float m_realtimeRatio = 1.0f;
    double m_simulatedTime = 0.0;
    util::String m_statistics;
    // Never deleted: a callback set unregisters itself from a function-local static of the foundation,
    // which may already be gone when the simulation dies at process exit.
    util::CallbackArgSet<float>& m_stepCallbacks;

    // Storage kept from step to step, so that the hot loop allocates nothing but contacts.
    Collider m_collider;
    util::VectorPOD<Contact*> m_rawContacts;
    util::VectorPOD<Constraint*> m_solverList;
    util::VectorPOD<Constraint*> m_sweepList;
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
