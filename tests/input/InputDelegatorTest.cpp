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

std::vector<std::string> Receivers(const std::vector<util::SharedPtr<Recorder>>& recorders)
{
    std::vector<std::string> lines;
    for (const auto& r : recorders)
        for (const auto& line : r->log)
            lines.push_back(line);
    return lines;
}

// Logs the order of calls across listeners.
struct Order
{
    std::vector<std::string> calls;
};

class Named : public InputListener
{
public:
    Named(int priority, std::string name, Order& order)
        : InputListener(priority), m_name(std::move(name)), m_order(order)
    {
    }
    void OnClick(const ClickEvent&) override
    {
        m_order.calls.push_back(m_name);
        if (onClick)
            onClick();
    }
    std::function<void()> onClick;

private:
    std::string m_name;
    Order& m_order;
};

} // namespace

TEST(InputDelegator, DeliversByPriorityAndAmongEqualsTheLastAddedFirst)
{
    Order order;
    auto delegator = QLEX_NEW new InputDelegator(50);
    auto a = QLEX_NEW new Named(50, "a", order);
    auto b = QLEX_NEW new Named(50, "b", order);
    auto high = QLEX_NEW new Named(100, "high", order);
    auto low = QLEX_NEW new Named(10, "low", order);
    delegator->AddListener(a);
    delegator->AddListener(low);
    delegator->AddListener(high);
    delegator->AddListener(b);
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"high", "b", "a", "low"}));

    // Adding again moves a listener to the front of its priority.
    delegator->AddListener(a);
    order.calls.clear();
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"high", "a", "b", "low"}));
}

TEST(InputDelegator, PriorityChange_ReordersDelivery)
{
    Order order;
    auto delegator = QLEX_NEW new InputDelegator(50);
    auto a = QLEX_NEW new Named(50, "a", order);
    auto b = QLEX_NEW new Named(40, "b", order);
    auto c = QLEX_NEW new Named(30, "c", order);
    for (auto& l : {a, b, c})
        delegator->AddListener(l);
    c->SetPriority(60);
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"c", "a", "b"}));
    c->SetPriority(0);
    order.calls.clear();
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"a", "b", "c"}));
}

TEST(InputDelegator, PriorityChangesDuringDelivery_TakeEffectAfterIt)
{
    Order order;
    auto delegator = QLEX_NEW new InputDelegator(50);
    auto a = QLEX_NEW new Named(50, "a", order);
    auto b = QLEX_NEW new Named(40, "b", order);
    auto c = QLEX_NEW new Named(30, "c", order);
    for (auto& l : {a, b, c})
        delegator->AddListener(l);
    bool changed = false;
    a->onClick = [&]
    {
        if (changed)
            return;
        changed = true;
        b->SetPriority(10);
        c->SetPriority(90);
    };
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"a", "b", "c"}));
    order.calls.clear();
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"c", "a", "b"}));
}

TEST(InputDelegator, ListenerRemovedInsideItsOwnHandler_StillGetsThisEventOnceAndNoMore)
{
    Order order;
    auto delegator = QLEX_NEW new InputDelegator(50);
    auto stay = QLEX_NEW new Named(50, "stay", order);
    auto leave = QLEX_NEW new Named(50, "leave", order);
    delegator->AddListener(stay);
    delegator->AddListener(leave);
    leave->onClick = [&]
    {
        delegator->RemoveListener(leave);
        EXPECT_EQ(delegator->GetListenerCount(), 2u); // not yet: the delivery is running
    };
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"leave", "stay"}));
    EXPECT_EQ(delegator->GetListenerCount(), 1u);
    order.calls.clear();
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"stay"}));
}

TEST(InputDelegator, ListenerAddedDuringDelivery_ReceivesFromTheNextEventOn)
{
    Order order;
    auto delegator = QLEX_NEW new InputDelegator(50);
    auto first = QLEX_NEW new Named(50, "first", order);
    auto added = QLEX_NEW new Named(90, "added", order);
    delegator->AddListener(first);
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
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"first", "first"}));
    order.calls.clear();
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"added", "first"}));
}

TEST(InputDelegator, DeadListener_IsDroppedAtTheNextDelivery)
{
    Order order;
    auto delegator = QLEX_NEW new InputDelegator(50);
    auto stay = QLEX_NEW new Named(50, "stay", order);
    delegator->AddListener(stay);
    {
        auto gone = QLEX_NEW new Named(60, "gone", order);
        delegator->AddListener(gone);
    }
    EXPECT_EQ(delegator->GetListenerCount(), 2u);
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"stay"}));
    EXPECT_EQ(delegator->GetListenerCount(), 1u);
}

TEST(InputDelegator, ListenerThatDiesInsideItsHandler_FinishesItsCall)
{
    Order order;
    auto delegator = QLEX_NEW new InputDelegator(50);
    util::SharedPtr<Named> doomed = QLEX_NEW new Named(50, "doomed", order);
    delegator->AddListener(doomed);
    doomed->onClick = [&] { doomed.Reset(); }; // the delivery's lock keeps it alive until the call returns
    delegator->OnClick(Click());
    EXPECT_FALSE(doomed);
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"doomed"}));
    EXPECT_EQ(delegator->GetListenerCount(), 0u);
}

TEST(InputDelegator, ExceptionFromAListener_ReachesTheCallerAndKeepsPendingChanges)
{
    Order order;
    auto delegator = QLEX_NEW new InputDelegator(50);
    auto thrower = QLEX_NEW new Named(50, "thrower", order);
    auto late = QLEX_NEW new Named(10, "late", order);
    delegator->AddListener(thrower);
    thrower->onClick = [&]
    {
        delegator->AddListener(late);
        throw std::runtime_error("listener failed");
    };
    EXPECT_THROW(delegator->OnClick(Click()), std::runtime_error);
    EXPECT_FALSE(delegator->IsDelivering());
    EXPECT_EQ(delegator->GetListenerCount(), 1u);

    thrower->onClick = nullptr;
    delegator->OnClick(Click());
    EXPECT_EQ(delegator->GetListenerCount(), 2u); // carried out after the next delivery
    order.calls.clear();
    delegator->OnClick(Click());
    EXPECT_EQ(order.calls, Lines({"thrower", "late"}));
}

TEST(InputDelegator, HandledEvent_StillReachesEveryListener)
{
    auto delegator = QLEX_NEW new InputDelegator(50);
    auto first = QLEX_NEW new Recorder(60, "first ");
    auto second = QLEX_NEW new Recorder(50, "second ");
    first->onClick = [](const ClickEvent& e) { e.SetHandled(); };
    bool secondSawHandled = false;
    second->onClick = [&](const ClickEvent& e) { secondSawHandled = e.IsHandled(); };
    delegator->AddListener(first);
    delegator->AddListener(second);
    delegator->OnClick(Click());
    EXPECT_EQ(Receivers({first, second}), Lines({"first click (1,2) x1", "second click (1,2) x1"}));
    EXPECT_TRUE(secondSawHandled);
}
