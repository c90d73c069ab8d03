#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/ContactCache.h"

namespace physics
{
namespace
{
using ContactCacheTest = WorldTest;

// A contact of the two shapes with the given sub id, carrying the given age and impulses.
util::SharedPtr<Contact> MakeContact(Geom& a, Geom& b, std::uint32_t sub, double birth, float sumN,
                                     float sumT)
{
    util::SharedPtr<Contact> contact =
        QLEX_NEW new Contact(&a, &b, sub, a.GetPosition(), math::Vec2(0, 1), 0.01f);
    contact->ReadFrom(ContactMemory{birth, sumN, sumT});
    return contact;
}

TEST_F(ContactCacheTest, FindsWhatTheLastStepRememberedByIdAndNothingOlder)
{
    util::SharedPtr<Geom> a = QLEX_NEW new Box(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<Geom> b = QLEX_NEW new Box(math::Vec2(1, 1), math::Vec2(0, 1));
    testing::AddDynamic(a);
    testing::AddDynamic(b);
    ContactCache cache;
    EXPECT_EQ(cache.Find(ContactID(a->GetId(), b->GetId(), 0)), nullptr);

    // Told of 4, given 300: the table grows and keeps every entry. Sub id 7 comes twice; the later counts.
    std::vector<util::SharedPtr<Contact>> contacts;
    cache.Begin(4);
    for (std::uint32_t sub = 0; sub < 300; ++sub)
    {
        contacts.push_back(MakeContact(*a, *b, sub, sub, float(sub), -float(sub)));
        cache.Remember(*contacts.back());
    }
    contacts.push_back(MakeContact(*a, *b, 7, 1.5, 70.0f, -70.0f));
    cache.Remember(*contacts.back());
    for (std::uint32_t sub = 0; sub < 300; ++sub)
    {
        // The id is the same with the shapes either way round.
        const ContactMemory* found = cache.Find(ContactID(b->GetId(), a->GetId(), sub));
        ASSERT_NE(found, nullptr) << sub;
        const float expected = sub == 7 ? 70.0f : float(sub);
        EXPECT_EQ(found->sumN, expected);
        EXPECT_EQ(found->sumT, -expected);
        EXPECT_EQ(found->birthTime, sub == 7 ? 1.5 : double(sub));
    }
    EXPECT_EQ(cache.Find(ContactID(a->GetId(), b->GetId(), 300)), nullptr);
    EXPECT_EQ(cache.Find(ContactID(a->GetId(), a->GetId(), 0)), nullptr);
    // Out of the order remembered (backwards, by threes, with misses between) each id finds its own entry.
    for (std::uint32_t sub = 300; sub-- > 0;)
    {
        for (std::uint32_t id : {(sub * 3) % 300, 1000 + sub, sub})
        {
            const ContactMemory* found = cache.Find(ContactID(a->GetId(), b->GetId(), id));
            if (id >= 300)
            {
                ASSERT_EQ(found, nullptr) << id;
                continue;
            }
            ASSERT_NE(found, nullptr) << id;
            EXPECT_EQ(found->sumN, id == 7 ? 70.0f : float(id));
        }
    }

    // A new step forgets the last: only what it remembers is found.
    cache.Begin(1);
    cache.Remember(*contacts[5]);
    EXPECT_NE(cache.Find(contacts[5]->GetID()), nullptr);
    EXPECT_EQ(cache.Find(contacts[6]->GetID()), nullptr);
    cache.Clear();
    EXPECT_EQ(cache.Find(contacts[5]->GetID()), nullptr);
}

// Many steps of one cache, one contact each: the slots of earlier steps count as empty, without a wipe.
TEST_F(ContactCacheTest, ManyStepsFindOnlyTheirOwnContacts)
{
    util::SharedPtr<Geom> a = QLEX_NEW new Box(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<Geom> b = QLEX_NEW new Box(math::Vec2(1, 1), math::Vec2(0, 1));
    testing::AddDynamic(a);
    testing::AddDynamic(b);
    ContactCache cache;
    for (std::uint32_t step = 0; step < 2000; ++step)
    {
        util::SharedPtr<Contact> contact = MakeContact(*a, *b, step, step, 1.0f, 0.0f);
        cache.Begin(1);
        cache.Remember(*contact);
        ASSERT_NE(cache.Find(ContactID(a->GetId(), b->GetId(), step)), nullptr) << step;
        if (step > 0)
        {
            ASSERT_EQ(cache.Find(ContactID(a->GetId(), b->GetId(), step - 1)), nullptr) << step;
        }
    }
}
} // namespace
} // namespace physics
