// Every byte sequence is a scene file that loads with messages at worst: never a crash, a hang or
// unbounded memory. Each input is read as the application reads a file, stepped, saved, undone and
// redone, and the scene is emptied again for the next one.

#include "FuzzTarget.h"
#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Serializer.h"
#include "app/Snapshot.h"
#include "app/Undoer.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace
{
// Steps after a load: enough for joints, glue and water to act once or twice.
const int FUZZ_STEPS = 3;
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static script::Parser* parser = nullptr;
    static qlex_fuzz::ParserState state;
    if (!parser)
    {
        logging::Logger::GetInstancePtr();
        parser = script::Parser::GetInstancePtr();
        parser->SetErrorFunction([](const std::string&) {});
        parser->SetOutputFunction([](const std::string&) {});
        script::EvalGuard::SetStepBudget(qlex_fuzz::FUZZ_STEP_BUDGET);
        physics::Simulation::GetInstancePtr()->AddToRoot();
        physics::SPH::GetInstancePtr()->AddToRoot();
        app::AppSettings::GetInstancePtr()->GetReflected()->AddToRoot();
        app::Scene::GetInstancePtr()->AddToRoot();
        app::Serializer::GetInstancePtr();
        state = qlex_fuzz::CaptureState(*parser);
        std::atexit(
            []
            {
                std::fflush(nullptr);
                _exit(0);
            });
    }

    app::Scene* scene = app::Scene::GetInstancePtr();
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    app::SnapshotPtr before = app::Snapshot::TakeSnapshot();
    scene->NewScene();
    app::Serializer::GetInstancePtr()->Deserialize(std::string(reinterpret_cast<const char*>(data), size));
    sim->m_running = true;
    for (int i = 0; i < FUZZ_STEPS; ++i)
    {
        sim->AdvanceOneStep();
        scene->Update(sim->m_timeDelta);
    }
    app::Serializer::GetInstancePtr()->SerializeScene();
    app::Undoer::GetInstancePtr()->AddUndo(before, "UndoLoadScene");
    app::Undoer::GetInstancePtr()->Undo();
    app::Undoer::GetInstancePtr()->Redo();
    app::Undoer::GetInstancePtr()->Clear();
    scene->NewScene();
    qlex_fuzz::RestoreState(*parser, state);
    return 0;
}
