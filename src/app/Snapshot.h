#pragma once
// The whole state of the document at one moment, in memory, for undo. It keeps strong references to
// the very entities, bodies and geoms of that moment and, beside them, everything that can change on
// them; a restore clears the scene and puts the same objects back with those values, so that pointers
// held elsewhere (by older snapshots, by groups) stay valid.

#include "app/EntitySerializer.h"
#include "app/entities/Entity.h"
#include "app/entities/PenEntity.h"
#include "math/Math.h"
#include "physics/Body.h"
#include "util/SharedPtr.h"

#include <deque>
#include <utility>
#include <vector>

namespace app
{
class Chain;
class JointEntity;
class BodyInfo;
class Snapshot;
typedef util::SharedPtr<Snapshot> SnapshotPtr;

class Snapshot : public util::Pointee
{
public:
    // One thing to put back after the entities have their values again.
    class RestoreHelper : public util::Pointee
    {
    public:
        virtual void Restore() const = 0;
    };

    static SnapshotPtr TakeSnapshot();
    ~Snapshot() override;

    // Puts the state back; the snapshot stays valid for another restore.
    void Restore();

    const std::vector<EntityPtr>& GetEntities() const { return m_entities; }
    double GetSimTime() const { return m_simTime; }

private:
    Snapshot();

    std::vector<EntityPtr> m_entities;
    std::vector<util::SharedPtr<RestoreHelper>> m_helpers;
    std::vector<util::SharedPtr<BodyInfo>> m_bodies;
    std::vector<std::pair<EntityPtr, EntitySerializer>> m_records;
    std::vector<math::Vec2> m_waterPositions;
    std::vector<math::Vec2> m_waterVelocities;
    EntitySet m_selected;
    EntitySet m_tracked;
    bool m_hasTracked = false;
    double m_simTime = 0.0;
    math::Mat3 m_guiToWorld;
    script::CodeBlockPtr m_script;
};

// A body's geoms and motion.
class BodyInfo : public Snapshot::RestoreHelper
{
public:
    explicit BodyInfo(const util::SharedPtr<physics::Body>& body);
    void Restore() const override;
    // Puts each shape back at its exact pose of the moment: a new geom set places shapes through the body's
    // frame, which is exact only to rounding.
    void RestorePoses() const;

private:
    std::vector<std::pair<util::SharedPtr<physics::Geom>, math::Mat2D>> m_poses;
    physics::Body::GeomSet m_geoms;
    util::SharedPtr<physics::Body> m_body;
    math::Vec2 m_velocity;
    float m_angularVelocity;
};

// A joint's two anchors; a restore builds the physics joint anew.
class JointInfo : public Snapshot::RestoreHelper
{
public:
    explicit JointInfo(const util::SharedPtr<JointEntity>& joint);
    void Restore() const override;

private:
    util::SharedPtr<JointEntity> m_joint;
    util::SharedPtr<physics::Geom> m_geoms[2];
    math::Vec2 m_local[2];
};

// A pen's anchor and the trail it had drawn.
class PenInfo : public Snapshot::RestoreHelper
{
public:
    explicit PenInfo(const util::SharedPtr<PenEntity>& pen);
    void Restore() const override;

private:
    util::SharedPtr<PenEntity> m_pen;
    util::SharedPtr<physics::Geom> m_geom;
    math::Vec2 m_local;
    std::deque<PenEntity::TailElem> m_tail;
};

// An entity's place in its chain.
class EntChainInfo : public Snapshot::RestoreHelper
{
public:
    explicit EntChainInfo(const EntityPtr& entity);
    void Restore() const override;

private:
    EntityPtr m_entity;
    util::SharedPtr<Chain> m_chain;
    int m_index;
};

} // namespace app
