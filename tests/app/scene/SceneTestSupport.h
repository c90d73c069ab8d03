#pragma once
// A scene on the script root with its commands, emptied before each test.

#include "app/App.h"
#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Serializer.h"
#include "app/Undoer.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "script/Parser.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <sstream>

namespace scenetest
{

inline void JoinRootOnce()
{
    static bool joined = false;
    if (joined)
        return;
    joined = true;
    // The script root as the programs have it: scene files set the settings of all of these.
    physics::Simulation::GetInstancePtr()->AddToRoot();
    physics::SPH::GetInstancePtr()->AddToRoot();
    app::AppSettings::GetInstancePtr()->GetReflected()->AddToRoot();
    app::Scene::GetInstancePtr()->AddToRoot();
    app::Serializer::GetInstancePtr();
}

// Ids in a saved text are fresh for every load: they are renumbered in the order they first appear, each
// kind on its own, so that two generations of a file can be compared as text.
inline std::string NormalizeIds(const std::string& text)
{
    std::map<std::string, std::map<std::string, int>> names;
    const auto rename = [&](const std::string& kind, const std::string& id)
    {
        std::map<std::string, int>& table = names[kind];
        auto it = table.find(id);
        if (it == table.end())
            it = table.emplace(id, int(table.size())).first;
        return std::to_string(it->second);
    };
    const std::regex single("(geomID|entityID|geom0|geom1|geom|body|chain) = (-?[0-9]+)");
    const std::regex list("entityIDs = \\[([0-9, ]*)\\]");
    std::string result;
    std::string rest = text;
    std::smatch match;
    while (std::regex_search(rest, match, single))
    {
        const std::string key = match[1];
        const std::string kind = key == "entityID" ? "entity"
                                 : key == "body"   ? "body"
                                 : key == "chain"  ? "chain"
                                                   : "geom";
        result += match.prefix().str() + key + " = " +
                  (match[2] == "-1" || (kind == "geom" && match[2] == "0") ? match[2].str()
                                                                           : rename(kind, match[2]));
        rest = match.suffix();
    }
    result += rest;
    std::string out;
    rest = result;
    while (std::regex_search(rest, match, list))
    {
        std::string ids;
        std::stringstream stream(match[1]);
        std::string id;
        while (std::getline(stream, id, ','))
        {
            id.erase(0, id.find_first_not_of(' '));
            ids += (ids.empty() ? "" : ", ") + rename("entity", id);
        }
        out += match.prefix().str() + "entityIDs = [" + ids + "]";
        rest = match.suffix();
    }
    return out + rest;
}

class SceneTest : public testing::Test
{
protected:
    void SetUp() override
    {
        JoinRootOnce();
        scene = app::Scene::GetInstancePtr();
        scene->NewScene();
        app::Undoer::GetInstancePtr()->Clear();
        physics::Simulation::GetInstancePtr()->m_running = true;
    }

    script::ObjectPtr Run(const std::string& text) { return script::Parser::GetInstancePtr()->Execute(text); }
    std::string Save() { return app::Serializer::GetInstancePtr()->SerializeScene(); }
    void Load(const std::string& text)
    {
        scene->NewScene();
        app::Serializer::GetInstancePtr()->Deserialize(text);
    }
    void Step(int count)
    {
        physics::Simulation* sim = physics::Simulation::GetInstancePtr();
        for (int i = 0; i < count; ++i)
        {
            sim->Step(sim->m_running);
            scene->Update(sim->m_timeDelta);
        }
    }
    template <class T> std::vector<util::SharedPtr<T>> All() const
    {
        std::vector<util::SharedPtr<T>> result;
        for (const app::EntityPtr& entity : scene->GetEntities())
        {
            if (auto typed = util::dynamic_pointer_cast<T>(entity))
                result.push_back(typed);
        }
        return result;
    }

    app::Scene* scene = nullptr;
};

} // namespace scenetest
