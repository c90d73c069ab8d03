#include "util/SharedPtr.h"

#include <gtest/gtest.h>

namespace
{

struct Probe : util::Pointee
{
    explicit Probe(int* deaths) : m_deaths(deaths) {}
    ~Probe() override { ++*m_deaths; }
    int* m_deaths;
};

} // namespace

TEST(SharedPtr, LastOwnerDestroysAndWeakReadsNull)
{
    int deaths = 0;
    util::WeakPtr<Probe> weak;
    util::PointeeHandle* handle = nullptr;
    {
        util::SharedPtr<Probe> a = QLEX_NEW new Probe(&deaths);
        util::SharedPtr<Probe> b = a;
        weak = a;
        handle = a->m_handle;
        EXPECT_EQ(handle->m_refCount, 2u);
        EXPECT_EQ(handle->m_weakCount, 1u);
        a.Reset(a.get());
        EXPECT_EQ(handle->m_refCount, 2u);
    }
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(handle->m_weakCount, 1u);
    EXPECT_FALSE(weak);
    EXPECT_EQ(handle->m_weakCount, 0u);
    util::PointeeHandle::Flush();
}

TEST(SharedPtr, NullDereferenceThrowsAndBoolDoesNot)
{
    util::SharedPtr<Probe> none;
    EXPECT_FALSE(none);
    try
    {
        none->m_deaths = nullptr;
        FAIL() << "no exception";
    }
    catch (std::runtime_error& e)
    {
        EXPECT_STREQ(e.what(), "Tried to dereference a NULL SharedPtr");
    }
}

TEST(LockPtr, UnownedObjectSurvivesLockAndOwnedObjectDiesWithIt)
{
    int deaths = 0;
    Probe* unowned = new Probe(&deaths);
    {
        util::LockPtr<Probe> lock(unowned);
        EXPECT_EQ(unowned->m_handle->m_refCount, 1u);
    }
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(unowned->m_handle->m_refCount, 0u);
    util::SharedPtr<Probe> owner(unowned);
    {
        util::LockPtr<Probe> lock(owner);
        owner.Reset();
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}
