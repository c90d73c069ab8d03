#include "app/Snapshot.h"

#include "app/Chain.h"
#include "app/FileInfo.h"
#include "app/Scene.h"
#include "app/Serializer.h"
#include "app/entities/JointEntity.h"
#include "logging/Log.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "script/Expressions.h"
#include "script/Parser.h"
#include "script/Variable.h"
#include "util/Profiler.h"

namespace app
{

namespace
{
// Runs one piece of a restore; a failure is logged and the restore goes on with the next piece.
template <class F> void Guarded(F&& work)
{
    try
    {
        work();
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Warning, util::String("Snapshot::Restore failure in ") + e.what() + "\n" + QLEX_SITE);
    }
    catch (...)
    {
        Log(logging::Warning, "Snapshot::Restore failure.");
    }
}
} // namespace

SnapshotPtr Snapshot::TakeSnapshot()
{
    return QLEX_NEW new Snapshot();
}

Snapshot::Snapshot()
{
    util::ScopeProfiler profile("Snapshot::Snapshot");
    FileInfo::GetInstancePtr()->m_version = FileInfo::VERSION_LATEST;
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    Scene* scene = Scene::GetInstancePtr();
    m_simTime = sim->GetSimulatedTime();

    if (scene->GetSelection())
        m_selected = scene->GetSelection()->GetEntities();
    if (const GroupPtr& tracked = scene->GetTrackedGroup())
    {
        m_hasTracked = true;
        m_tracked = tracked->GetEntities();
    }
    m_guiToWorld = scene->GetCamera()->GUIToWorld();
    m_entities = scene->GetEntities();

    const std::vector<util::SharedPtr<physics::Particle>>& particles = sim->GetParticles();
    m_waterPositions.reserve(particles.size());
    m_waterVelocities.reserve(particles.size());
    for (const util::SharedPtr<physics::Particle>& particle : particles)
    {
        m_waterPositions.push_back(particle->GetPosition());
        m_waterVelocities.push_back(particle->GetVelocity());
    }

    for (const util::SharedPtr<physics::Body>& body : sim->GetBodies())
    {
        util::SharedPtr<BodyInfo> info = QLEX_NEW new BodyInfo(body);
        m_helpers.push_back(info);
        m_bodies.push_back(info);
    }

    m_records.reserve(m_entities.size());
    for (const EntityPtr& entity : m_entities)
    {
        EntitySerializer record;
        entity->SerializeTo(record);
        m_records.emplace_back(entity, record);
        if (auto joint = util::dynamic_pointer_cast<JointEntity>(entity))
            m_helpers.push_back(QLEX_NEW new JointInfo(joint));
        if (auto pen = util::dynamic_pointer_cast<PenEntity>(entity))
            m_helpers.push_back(QLEX_NEW new PenInfo(pen));
        if (entity->m_chain)
            m_helpers.push_back(QLEX_NEW new EntChainInfo(entity));
    }

    Serializer* serializer = Serializer::GetInstancePtr();
    m_script = QLEX_NEW new script::CodeBlock();
    for (const GroupPtr& group : InOrderOfMaking(scene->GetGroups()))
        m_script->Add(serializer->SerializeGroup(group));
    for (const script::VariablePtr& var : serializer->GetVarList(true, true))
    {
        if (script::ExpressionPtr expression = var->ToExpression())
            m_script->Add(expression);
    }
}

Snapshot::~Snapshot() = default;

void Snapshot::Restore()
{
    util::ScopeProfiler profile("Snapshot::Restore");
    FileInfo::GetInstancePtr()->m_version = FileInfo::VERSION_LATEST;
    Scene* scene = Scene::GetInstancePtr();
    scene->ClearScene();
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();

    Guarded([&] { sim->SetSimulatedTime(m_simTime); });
    for (const auto& record : m_records)
        Guarded([&] { record.first->Deserialize(record.second); });
    for (const util::SharedPtr<RestoreHelper>& helper : m_helpers)
        Guarded([&] { helper->Restore(); });
    // Joints made anew by their helpers take their attributes now, and shapes whose pose a body's new
    // geom set disturbed get it back.
    for (const auto& record : m_records)
        Guarded([&] { record.first->Deserialize(record.second); });

    Serializer* serializer = Serializer::GetInstancePtr();
    // The groups below name entities by their own ids; an id that a file once used for another entity
    // must not answer for them.
    serializer->ClearTables();
    for (const EntityPtr& entity : m_entities)
    {
        Guarded(
            [&]
            {
                entity->ClearScaleTransform();
                entity->m_cloneOffset.reset();
                scene->AddEntity(entity);
                serializer->RegisterEntity(entity);
            });
    }
    // Entering the simulation places each shape through its body once more.
    for (const util::SharedPtr<BodyInfo>& body : m_bodies)
        Guarded([&] { body->RestorePoses(); });

    for (size_t i = 0; i < m_waterPositions.size(); ++i)
    {
        Guarded(
            [&]
            {
                util::SharedPtr<physics::Particle> particle =
                    QLEX_NEW new physics::Particle(m_waterPositions[i], m_waterVelocities[i]);
                sim->AddParticle(particle);
                if (particle->IsImmovable())
                    particle->SetVelocity(math::Vec2(0.0f, 0.0f));
            });
    }

    Guarded([&] { scene->SetSelection(QLEX_NEW new Group(m_selected)); });
    Guarded(
        [&]
        {
            if (m_hasTracked)
                scene->SetTrackedGroup(QLEX_NEW new Group(m_tracked));
        });
    Guarded([&] { scene->GetCamera()->SetGUIToWorld(m_guiToWorld); });
    Guarded([&] { script::Parser::GetInstancePtr()->Execute(m_script); });

    FileInfo* info = FileInfo::GetInstancePtr();
    const util::String title = info->m_title;
    const util::String author = info->m_author;
    const util::String description = info->m_description;
    if (!title.empty())
        scene->SetTitle(title);
    if (!author.empty())
        scene->m_author = author;
    if (!description.empty())
        scene->m_description = description;
}

// ---------------------------------------------------------------------------------------------------

BodyInfo::BodyInfo(const util::SharedPtr<physics::Body>& body)
    : m_geoms(body->GetGeoms()), m_body(body), m_velocity(body->GetVelocity()),
      m_angularVelocity(body->GetAngularVelocity())
{
    for (const util::SharedPtr<physics::Geom>& geom : m_geoms)
        m_poses.emplace_back(geom, geom->GetPose());
}

void BodyInfo::RestorePoses() const
{
    for (const auto& pose : m_poses)
    {
        if (pose.first->GetBodyBody() == m_body.get())
            pose.first->SetWorldPose(pose.second);
    }
}

void BodyInfo::Restore() const
{
    m_body->SetGeoms(m_geoms);
    if (!m_body->IsImmovable())
    {
        m_body->SetVelocity(m_velocity);
        m_body->SetAngularVelocity(m_angularVelocity);
    }
}

JointInfo::JointInfo(const util::SharedPtr<JointEntity>& joint) : m_joint(joint)
{
    for (int i = 0; i < 2; ++i)
    {
        m_geoms[i] = joint->m_geoms[i];
        m_local[i] = joint->m_localPos[i];
    }
    if (!m_geoms[0] || !m_geoms[1])
        Log(logging::Error, "Bad joint in Snapshot");
}

void JointInfo::Restore() const
{
    if (m_geoms[0] && m_geoms[1])
        m_joint->AttachToLocal(m_geoms[0], m_local[0], m_geoms[1], m_local[1]);
}

PenInfo::PenInfo(const util::SharedPtr<PenEntity>& pen)
    : m_pen(pen), m_geom(pen->m_geom), m_local(pen->m_local), m_tail(pen->m_tail)
{
    if (!m_geom)
        Log(logging::Error, "Bad joint in Snapshot");
}

void PenInfo::Restore() const
{
    if (!m_geom)
        return;
    m_pen->AttachTo(m_geom, m_local);
    m_pen->m_tail = m_tail;
}

EntChainInfo::EntChainInfo(const EntityPtr& entity)
    : m_entity(entity), m_chain(entity->m_chain), m_index(m_chain ? m_chain->IndexOf(entity.get()) : -1)
{
}

void EntChainInfo::Restore() const
{
    if (m_chain && m_index >= 0)
        m_chain->AddEntity(size_t(m_index), m_entity);
}

} // namespace app
