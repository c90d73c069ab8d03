#include "util/SharedPtr.h"
#include "logging/Log.h"
#include "logging/LogCapture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

namespace
{

struct ThrowsOnDeath : util::Pointee
{
    explicit ThrowsOnDeath(int* deaths) : m_deaths(deaths) {}
    ~ThrowsOnDeath() noexcept(false) override
    {
        ++*m_deaths;
        throw std::runtime_error("cleanup failed");
    }
    int* m_deaths;
};

} // namespace

TEST(SharedPtr, AThrowingDestructorIsLoggedAndTheProgramGoesOn)
{
    logtest::LogCapture log(logging::Error);
    int deaths = 0;
    const size_t alive = util::Pointee::GetInstanceCount();
    util::WeakPtr<ThrowsOnDeath> weak;
    {
        util::SharedPtr<ThrowsOnDeath> owner = QLEX_NEW new ThrowsOnDeath(&deaths);
        weak = owner;
        EXPECT_EQ(util::Pointee::GetInstanceCount(), alive + 1);
    }
    EXPECT_EQ(deaths, 1);
    EXPECT_FALSE(weak);
    EXPECT_EQ(util::Pointee::GetInstanceCount(), alive);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(log.lines[0],
              "!! ERROR: Exception caught when deleting a (anonymous namespace)::ThrowsOnDeath: "
              "cleanup failed");
    logging::Logger::GetInstancePtr()->Update();
}
