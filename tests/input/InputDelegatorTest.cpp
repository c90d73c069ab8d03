#include "InputTestSupport.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace input;
using namespace input::test;

namespace
{

using Lines = std::vector<std::string>;

ClickEvent Click()
{
    return ClickEvent(math::Vec2(1.0f, 2.0f), static_cast<SDLKey>(324), 1);
}

// Writes its name into a list shared by all listeners, so that the list shows the order of delivery.
class Named : public InputListener
{
public:
    Named(int priority, std::string name, Lines& calls)
        : InputListener(priority), m_name(std::move(name)), m_calls(calls)
    {
    }
    void OnClick(const ClickEvent&) override
    {
        m_calls.push_back(m_name);
        if (onClick)
            onClick();
    }
    std::function<void()> onClick;

private:
    std::string m_name;
    Lines& m_calls;
};

class InputDelegatorTest : public ::testing::Test
{
protected:
    util::SharedPtr<Named> Make(int priority, const std::string& name)
    {
        return QLEX_NEW new Named(priority, name, calls);
    }
    util::SharedPtr<Named> Add(int priority, const std::string& name)
    {
        util::SharedPtr<Named> listener = Make(priority, name);
        delegator->AddListener(listener);
        return listener;
    }
    // One click through the delegator; the names in the order they heard it.
    Lines Deliver()
    {
        calls.clear();
        delegator->OnClick(Click());
        return calls;
    }

    Lines calls;
    util::SharedPtr<InputDelegator> delegator = QLEX_NEW new InputDelegator(50);
};

} // namespace

TEST_F(InputDelegatorTest, DeliversByPriorityAndAmongEqualsTheLastAddedFirst)
{
    // The delegator holds its listeners weakly: the test keeps them.
    auto a = Add(50, "a");
    auto low = Add(10, "low");
    auto high = Add(100, "high");
    auto b = Add(50, "b");
    EXPECT_EQ(Deliver(), Lines({"high", "b", "a", "low"}));

    // Adding again moves a listener to the front of its priority.
    delegator->AddListener(a);
    EXPECT_EQ(Deliver(), Lines({"high", "a", "b", "low"}));
}

TEST_F(InputDelegatorTest, PriorityChange_ReordersDelivery)
{
    auto a = Add(50, "a");
    auto b = Add(40, "b");
    auto c = Add(30, "c");
    c->SetPriority(60);
    EXPECT_EQ(Deliver(), Lines({"c", "a", "b"}));
    c->SetPriority(0);
    EXPECT_EQ(Deliver(), Lines({"a", "b", "c"}));
}

TEST_F(InputDelegatorTest, PriorityChangesDuringDelivery_TakeEffectAfterIt)
{
    auto a = Add(50, "a");
    auto b = Add(40, "b");
    auto c = Add(30, "c");
    bool changed = false;
    a->onClick = [&]
    {
        if (changed)
            return;
        changed = true;
        b->SetPriority(10);
        c->SetPriority(90);
    };
    EXPECT_EQ(Deliver(), Lines({"a", "b", "c"}));
    EXPECT_EQ(Deliver(), Lines({"c", "a", "b"}));
}

TEST_F(InputDelegatorTest, ListenerRemovedInsideItsOwnHandler_StillGetsThisEventOnceAndNoMore)
{
    auto stay = Add(50, "stay");
    auto leave = Add(50, "leave");
    leave->onClick = [&]
    {
        delegator->RemoveListener(leave);
        EXPECT_EQ(delegator->GetListenerCount(), 2u); // not yet: the delivery is running
    };
    EXPECT_EQ(Deliver(), Lines({"leave", "stay"}));
    EXPECT_EQ(delegator->GetListenerCount(), 1u);
    EXPECT_EQ(Deliver(), Lines({"stay"}));
}

TEST_F(InputDelegatorTest, ListenerAddedDuringDelivery_ReceivesFromTheNextEventOn)
{
    auto first = Add(50, "first");
    auto added = Make(90, "added");
    bool nested = false;
    first->onClick = [&]
    {
        if (nested)
            return;
        nested = true;
        delegator->AddListener(added);
        // A nested delivery through the same delegator still does not see it.
        delegator->OnClick(Click());
    };
    EXPECT_EQ(Deliver(), Lines({"first", "first"}));
    EXPECT_EQ(Deliver(), Lines({"added", "first"}));
}

TEST_F(InputDelegatorTest, DeadListener_IsDroppedAtTheNextDelivery)
{
    auto stay = Add(50, "stay");
    Add(60, "gone"); // nobody holds it
    EXPECT_EQ(delegator->GetListenerCount(), 2u);
    EXPECT_EQ(Deliver(), Lines({"stay"}));
    EXPECT_EQ(delegator->GetListenerCount(), 1u);
}

TEST_F(InputDelegatorTest, ListenerThatDiesInsideItsHandler_FinishesItsCall)
{
    util::SharedPtr<Named> doomed = Add(50, "doomed");
    doomed->onClick = [&] { doomed.Reset(); }; // the delivery's lock keeps it alive until the call returns
    EXPECT_EQ(Deliver(), Lines({"doomed"}));
    EXPECT_FALSE(doomed);
    EXPECT_EQ(Deliver(), Lines());
    EXPECT_EQ(delegator->GetListenerCount(), 0u);
}

TEST_F(InputDelegatorTest, ExceptionFromAListener_ReachesTheCallerAndKeepsPendingChanges)
{
    auto thrower = Add(50, "thrower");
    auto late = Make(10, "late");
    thrower->onClick = [&]
    {
        delegator->AddListener(late);
        throw std::runtime_error("listener failed");
    };
    EXPECT_THROW(Deliver(), std::runtime_error);
    EXPECT_FALSE(delegator->IsDelivering());
    EXPECT_EQ(delegator->GetListenerCount(), 1u);

    thrower->onClick = nullptr;
    Deliver();
    EXPECT_EQ(delegator->GetListenerCount(), 2u); // carried out after the next delivery
    EXPECT_EQ(Deliver(), Lines({"thrower", "late"}));
}

TEST_F(InputDelegatorTest, HandledEvent_StillReachesEveryListener)
{
    auto first = QLEX_NEW new Recorder(60, "first ");
    auto second = QLEX_NEW new Recorder(50, "second ");
    first->onClick = [](const ClickEvent& e) { e.SetHandled(); };
    bool secondSawHandled = false;
    second->onClick = [&](const ClickEvent& e) { secondSawHandled = e.IsHandled(); };
    delegator->AddListener(first);
    delegator->AddListener(second);
    delegator->OnClick(Click());
    EXPECT_EQ(first->log, Lines({"first click (1,2) x1"}));
    EXPECT_EQ(second->log, Lines({"second click (1,2) x1"}));
    EXPECT_TRUE(secondSawHandled);
}
