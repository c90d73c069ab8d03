#include "util/Callback.h"
#include "logging/Log.h"
#include "util/Mentor.h"
#include "util/ReentrantOrderedSet.h"
#include "util/StackedBind.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace
{

struct Owner : util::Pointee
{
    void Hit() { ++hits; }
    int hits = 0;
};

} // namespace

TEST(ReentrantOrderedSet, ChangesDuringAWalkWaitForTheOutermostLock)
{
    util::ReentrantOrderedSet<int> set;
    set.insert(1);
    set.insert(2);
    set.insert(3);
    std::vector<int> seen;
    {
        util::ReentrantOrderedSet<int>::ConstLock outer(set);
        {
            util::ReentrantOrderedSet<int>::ConstLock inner(set);
            for (int v : inner)
            {
                seen.push_back(v);
                if (v == 1)
                {
                    set.erase(2);
                    set.insert(4);
                    set.insert(1);
                }
            }
        }
        EXPECT_EQ(set.size(), 3u); // still waiting for the outer lock
    }
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 3}));
    util::ReentrantOrderedSet<int>::ConstLock after(set);
    EXPECT_EQ(std::vector<int>(after.begin(), after.end()), (std::vector<int>{3, 4, 1}));
}

TEST(CallbackSet, DeadOwnersStopFiringAndAreFlushed)
{
    util::SharedPtr<Owner> alive = QLEX_NEW new Owner;
    util::SharedPtr<Owner> doomed = QLEX_NEW new Owner;
    util::CallbackSet set;
    set.Add(util::MakeCallback(&Owner::Hit, alive.get()));
    set.Add(util::MakeCallback(&Owner::Hit, doomed.get()));
    set.Add(util::CallbackPtr());
    set.CallAll();
    EXPECT_EQ(alive->hits, 1);
    EXPECT_EQ(doomed->hits, 1);
    doomed.Reset();
    set.CallAll();
    EXPECT_EQ(alive->hits, 2);
    EXPECT_EQ(set.size(), 2u);
    util::AbstractCallbackSet::FlushCallbackSets();
    EXPECT_EQ(set.size(), 1u);
}

TEST(CallbackSet, AThrowingCallbackDoesNotStopTheOthers)
{
    util::SharedPtr<Owner> owner = QLEX_NEW new Owner;
    util::CallbackSet set;
    set.Add(QLEX_NEW new util::Callback([] { throw std::runtime_error("boom"); }, owner.get()));
    set.Add(util::MakeCallback(&Owner::Hit, owner.get()));
    set.CallAll();
    EXPECT_EQ(owner->hits, 1);
}

namespace
{

struct Resource : util::Pointee
{
    explicit Resource(int id) : id(id) {}
    int id;
};

} // namespace

TEST(Mentor, AFailingLoaderFallsBackOnTheDefault)
{
    using M = util::Mentor<Resource>;
    M::s_default = QLEX_NEW new M([] { return new Resource(0); });
    util::MentorProxy<Resource> good(QLEX_NEW new M([] { return new Resource(7); }));
    util::MentorProxy<Resource> bad(
        QLEX_NEW new M([]() -> Resource* { throw std::runtime_error("missing"); }));
    EXPECT_EQ(good->id, 7);
    EXPECT_EQ(bad->id, 0);
    EXPECT_TRUE(good);
    EXPECT_FALSE(bad);
    good.GetMentor()->Unload();
    EXPECT_FALSE(good.GetMentor()->IsLoaded());
    EXPECT_EQ(good->id, 7);
    M::s_default.Reset();
}

namespace
{

std::vector<std::string> g_binds;

struct Binder : util::StackedBind<Binder>
{
    explicit Binder(std::string name) : name(std::move(name)) {}
    void BindImpl() const override { g_binds.push_back("+" + name); }
    void UnbindImpl() const override { g_binds.push_back("-" + name); }
    std::string name;
};

} // namespace

TEST(StackedBind, InnerUnbindRestoresTheOuterBinding)
{
    g_binds.clear();
    Binder a("a"), b("b");
    a.Bind();
    b.Bind();
    b.Unbind();
    a.Unbind();
    EXPECT_EQ(g_binds, (std::vector<std::string>{"+a", "-a", "+b", "-b", "+a", "-a"}));
    EXPECT_THROW(a.Unbind(), BadCoderException);
}

TEST(CallbackSet, ACallbackAddedDuringAWalkWaitsForTheNextOne)
{
    util::SharedPtr<Owner> owner = QLEX_NEW new Owner;
    util::CallbackSet set;
    util::CallbackPtr late = util::MakeCallback(&Owner::Hit, owner.get());
    set.Add(QLEX_NEW new util::Callback([&] { set.Add(late); }, owner.get()));
    set.CallAll();
    EXPECT_EQ(owner->hits, 0);
    EXPECT_EQ(set.size(), 2u);
    set.CallAll();
    EXPECT_EQ(owner->hits, 1);
    // A callback without an owner never fires.
    bool fired = false;
    util::Callback orphan([&] { fired = true; }, nullptr);
    EXPECT_FALSE(orphan());
    EXPECT_FALSE(fired);
}

TEST(Mentor, WithoutADefaultAFailedLoadStaysUnloadedAndTheDefaultDoesNotRecurse)
{
    using M = util::Mentor<Resource>;
    int loads = 0;
    int unloads = 0;
    util::SharedPtr<Owner> owner = QLEX_NEW new Owner;
    util::SharedPtr<M> failing = QLEX_NEW new M([]() -> Resource* { throw 42; });
    failing->OnLoad().Add(QLEX_NEW new util::Callback([&] { ++loads; }, owner.get()));
    failing->Load();
    EXPECT_FALSE(failing->IsLoaded());
    EXPECT_EQ(loads, 0);

    M::s_default = QLEX_NEW new M([]() -> Resource* { throw std::runtime_error("no default either"); });
    failing->Load();
    EXPECT_FALSE(failing->IsLoaded());
    M::s_default = QLEX_NEW new M([] { return new Resource(0); });
    failing->Load();
    EXPECT_TRUE(failing->IsLoaded());
    EXPECT_EQ(loads, 0); // a stand-in is no load of its own
    failing->OnUnload().Add(QLEX_NEW new util::Callback([&] { ++unloads; }, owner.get()));
    failing->Unload();
    failing->Unload();
    EXPECT_EQ(unloads, 1);
    M::s_default.Reset();
}

TEST(StackedBind, OutermostUnbindOnlyUnbindsAndTheStackStopsAtAHundred)
{
    g_binds.clear();
    Binder a("a");
    a.Bind();
    a.Unbind();
    EXPECT_EQ(g_binds, (std::vector<std::string>{"+a", "-a"}));
    std::vector<std::unique_ptr<Binder>> deep;
    for (int i = 0; i < 100; ++i)
    {
        deep.push_back(std::make_unique<Binder>("d"));
        deep.back()->Bind();
    }
    Binder last("last");
    EXPECT_THROW(last.Bind(), BadCoderException);
    for (auto it = deep.rbegin(); it != deep.rend(); ++it)
        (*it)->Unbind();
    EXPECT_TRUE(Binder::s_stack.empty());
}
