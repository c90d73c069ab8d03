#pragma once

#include "app/entities/GeomEntity.h"
#include "input/DirInput.h"

#include <vector>

namespace app
{
// A shape of finite area: it has a mass, feels air, can be steered by a direction source and can turn
// into water.
class FiniteGeomEntity : public GeomEntity
{
public:
    // Pushes the entity's body once per physics step while a direction source is set.
    class ControllerForceAdder : public util::Pointee
    {
    public:
        explicit ControllerForceAdder(FiniteGeomEntity* entity) : m_entity(entity) {}
        void OnSimUpdate(float dt);

    private:
        FiniteGeomEntity* m_entity;
    };

    explicit FiniteGeomEntity(GeomPtr geom);
    ~FiniteGeomEntity() override;

    void AddToSimulation() override;
    void RemoveFromSimulation() override;
    void SerializeTo(EntitySerializer& serializer) const override;
    void Deserialize(const EntitySerializer& serializer) override;
    void CopyFrom(const Entity* source) override;
    float CalcEnergy() const override;

    // Spawn points of water that fill the shape, about one per drop of the water's radius.
    virtual std::vector<math::Vec2> GetEquidistantPoints();

    // The force the controller gives now, in newtons.
    math::Vec2 CalcControllerForce() const;

    script::AttribWrapper<math::real> m_density;
    script::AttribWrapper<math::real> m_airFrictionMult;
    script::AttribWrapper<math::real> m_controllerAcc;
    script::AttribWrapper<bool> m_controllerReverseXY;
    script::AttribWrapper<bool> m_controllerInvertX;
    script::AttribWrapper<bool> m_controllerInvertY;
    // Gives the entity a direction source, or none; a kept text of one that couldn't be made is dropped.
    void SetForceController(util::SharedPtr<input::DirInput> controller);
    // The text of a source read from a scene that this machine couldn't make, as a joystick that isn't
    // connected: it steers nothing here, but saving writes it back.
    const util::String& GetUnmadeForceController() const { return m_unmadeForceController; }

    util::SharedPtr<input::DirInput> m_forceController;
    util::SharedPtr<ControllerForceAdder> m_forceAdder;

private:
    util::String m_unmadeForceController;
};

} // namespace app
