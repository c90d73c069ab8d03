#include "util/Array2D.h"
#include "util/ClassTracker.h"
#include "util/SharedPtr.h"
#include "util/VectorPOD.h"

#include <gtest/gtest.h>

#include <vector>

TEST(VectorPOD, AppendingItsOwnElementWhileGrowingCopiesTheValueFirst)
{
    util::VectorPOD<int> w;
    w.append(41);
    w.append(w[0]);
    w.append(w[1]);
    EXPECT_EQ(w[2], 41);
    util::VectorPOD<int> empty;
    util::VectorPOD<int> copy(empty);
    EXPECT_EQ(copy.data(), nullptr);
    EXPECT_THROW(empty.pop_back(), BadCoderException);
}

TEST(Array2D, SampleInterpolatesAndRepeatsTheBorder)
{
    util::Array2D<float> grid(2, 2);
    grid(0, 0) = 0;
    grid(1, 0) = 1;
    grid(0, 1) = 2;
    grid(1, 1) = 3;
    EXPECT_FLOAT_EQ(grid.Sample(0, 0), 0);
    EXPECT_FLOAT_EQ(grid.Sample(1, 1), 3);
    EXPECT_FLOAT_EQ(grid.Sample(0.5f, 0.5f), 1.5f);
    EXPECT_FLOAT_EQ(grid.Sample(5, 0), 1);
    EXPECT_THROW(grid(2, 0), BadCoderException);
}

namespace
{

struct Thing : util::Pointee
{
};

} // namespace

TEST(PointeeHandle, FlushIsSmallUntilTheTableDoublesAndFreesOnlyUnreferencedHandles)
{
    util::PointeeHandle::s_lastFullFlushCount = 0;
    util::PointeeHandle::Flush();
    util::PointeeHandle::s_lastFullFlushCount = util::PointeeHandle::GetInstanceCount();
    std::vector<util::SharedPtr<Thing>> keep;
    util::WeakPtr<Thing> neverReadAgain;
    {
        util::SharedPtr<Thing> doomed = QLEX_NEW new Thing;
        neverReadAgain = doomed;
    }
    for (int i = 0; i < 3; ++i)
        keep.push_back(QLEX_NEW new Thing);
    const size_t withAll = util::PointeeHandle::GetInstanceCount();
    util::PointeeHandle::Flush();
    // The dead object's handle stays while a weak pointer holds it, even one that is never read.
    EXPECT_EQ(util::PointeeHandle::GetInstanceCount(), withAll);
    EXPECT_FALSE(neverReadAgain);
    util::PointeeHandle::Flush(); // a small flush starts past the handle: it waits for a full one
    util::PointeeHandle::s_lastFullFlushCount = 0;
    util::PointeeHandle::Flush();
    EXPECT_EQ(util::PointeeHandle::GetInstanceCount(), withAll - 1);
}

namespace
{

struct Tracked : util::ClassTracker<Tracked>
{
};

} // namespace

TEST(ClassTracker, KnowsEveryLiveInstance)
{
    auto* a = new Tracked;
    {
        Tracked b;
        EXPECT_EQ(util::ClassTracker<Tracked>::GetAllClassInstances().size(), 2u);
    }
    auto all = util::ClassTracker<Tracked>::GetAllClassInstances();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0], a);
    delete a;
    EXPECT_TRUE(util::ClassTracker<Tracked>::GetAllClassInstances().empty());
}

TEST(WeakPtr, ReadsNullAfterTheDeathAndLocksToNothing)
{
    util::SharedPtr<Thing> owner = QLEX_NEW new Thing;
    util::WeakPtr<Thing> weak = owner;
    util::WeakPtr<Thing> copy = weak;
    util::PointeeHandle* handle = owner->m_handle;
    EXPECT_EQ(handle->m_weakCount, 2u);
    EXPECT_TRUE(copy == owner);
    owner.Reset();
    util::LockPtr<Thing> lock(weak);
    EXPECT_FALSE(lock);
    EXPECT_THROW(lock.Check(), std::runtime_error);
    EXPECT_EQ(handle->m_weakCount, 1u); // only the read one has let go
    copy.Reset();
    EXPECT_EQ(handle->m_weakCount, 0u);
}
