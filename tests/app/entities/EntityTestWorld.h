#pragma once
// Builders of small entity scenes for the tests: a fresh world and scene per test, shapes made as a tool
// would make them.

#include "app/Scene.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "physics/Simulation.h"
#include "physics/testing/Scenes.h"

#include <gtest/gtest.h>

namespace entitytest
{
class World : public ::testing::Test
{
protected:
    void SetUp() override
    {
        app::Scene::GetInstancePtr()->ClearScene();
        physics::testing::ResetWorld();
    }
    void TearDown() override { app::Scene::GetInstancePtr()->ClearScene(); }

    static physics::Simulation& Sim() { return *physics::Simulation::GetInstancePtr(); }
    static app::Scene& TheScene() { return *app::Scene::GetInstancePtr(); }

    static util::SharedPtr<app::BoxEntity> AddBox(math::Vec2 size, math::Vec2 pos)
    {
        util::SharedPtr<app::BoxEntity> box =
            QLEX_NEW new app::BoxEntity(QLEX_NEW new physics::Box(size, pos));
        TheScene().AddEntity(box);
        return box;
    }
    static util::SharedPtr<app::CircleEntity> AddCircle(float radius, math::Vec2 pos)
    {
        util::SharedPtr<app::CircleEntity> circle =
            QLEX_NEW new app::CircleEntity(QLEX_NEW new physics::Circle(pos, radius));
        TheScene().AddEntity(circle);
        return circle;
    }
    // A floor through (0, height) facing up, on the world body as the plane tool leaves it.
    static util::SharedPtr<app::PlaneEntity> AddFloor(float height)
    {
        util::SharedPtr<physics::Plane> plane = QLEX_NEW new physics::Plane(
            math::Plane2D::FromPointNormal(math::Vec2(0, height), math::Vec2(0, 1)));
        Sim().GetWorldBody()->AddGeom(plane);
        util::SharedPtr<app::PlaneEntity> entity = QLEX_NEW new app::PlaneEntity(plane);
        TheScene().AddEntity(entity);
        return entity;
    }
    // Fixed steps with the scene's upkeep after each, as a frame does.
    static void Run(int steps)
    {
        for (int i = 0; i < steps; ++i)
        {
            TheScene().Update(0.0f);
            Sim().Step(true);
        }
        TheScene().Update(0.0f);
    }
};
} // namespace entitytest
