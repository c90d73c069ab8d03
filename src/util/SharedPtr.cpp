#include "util/SharedPtr.h"

#include "util/TypeName.h"

#include <cstring>
#include <typeinfo>

namespace util
{

VectorPOD<PointeeHandle*> PointeeHandle::s_instances;
size_t PointeeHandle::s_lastSmallFlushCount = 0;
size_t PointeeHandle::s_lastFullFlushCount = 0;
size_t Pointee::s_instanceCount = 0;
unsigned Pointee::s_nextId = 0;

void PointeeHandle::DecreaseRefCount()
{
    QLEX_ASSERT(HasPtr());
    QLEX_ASSERT(m_refCount > 0);
    if (--m_refCount != 0)
        return;
    // Null the handle's pointer before the destructor runs, so that weak pointers reached from inside the
    // destructor already read null.
    Pointee* object = m_object;
    m_object = nullptr;
    SafeDelete<Pointee>(object);
}

void PointeeHandle::Flush()
{
    const size_t count = s_instances.size();
    const bool full = count > 2 * s_lastFullFlushCount;
    size_t i = full ? 0 : s_lastSmallFlushCount;
    const bool startsAtZero = i == 0;
    while (i < s_instances.size())
    {
        PointeeHandle* handle = s_instances[i];
        if (handle->m_refCount == 0 && handle->m_weakCount == 0)
        {
            SafeDelete<PointeeHandle>(handle);
            s_instances.erase_swap(i);
        }
        else
        {
            ++i;
        }
    }
    s_lastSmallFlushCount = s_instances.size();
    if (startsAtZero)
        s_lastFullFlushCount = s_instances.size();
}

Pointee::Pointee() : m_handle(nullptr), m_state(State_Alive), m_id(s_nextId)
{
    ++s_nextId;
    auto* handle = new PointeeHandle{this, 0, 0};
    try
    {
        PointeeHandle::s_instances.append(handle);
    }
    catch (...)
    {
        delete handle;
        throw;
    }
    m_handle = handle;
    ++s_instanceCount;
}

Pointee::~Pointee() noexcept(false)
{
    if (m_state != State_Alive)
    {
        Log(logging::Error, "Called ~Pointee on a Pointee with m_state == State_Dead");
        return;
    }
    m_state = State_Dead;
    QLEX_CHECK(m_handle);
    m_handle = nullptr;
    --s_instanceCount;
}

template <> void SafeDelete<Pointee>(const Pointee* p)
{
    if (!p)
        return;
    // Only the type is taken before the delete; naming it costs allocations, so that waits for a failure.
    const std::type_info& type = typeid(*p);
    std::string typeName;
    try
    {
        delete p;
    }
    catch (std::exception& e)
    {
        typeName = TypeName(type);
        try
        {
            Log(logging::Error, "Exception caught when deleting a " + typeName + ": " + e.what());
        }
        catch (std::exception& inner)
        {
            CatchException(inner, QLEX_SITE);
        }
    }
    catch (...)
    {
        typeName = TypeName(type);
        try
        {
            Log(logging::Error, "Unknown exception caught when deleting a " + typeName);
        }
        catch (std::exception& inner)
        {
            CatchException(inner, QLEX_SITE);
        }
    }
}

template <> void SafeDelete<PointeeHandle>(const PointeeHandle* p)
{
    if (!p)
        return;
    // A stale pointer to a freed handle then reads as an object-less handle with no counts.
    std::memset(const_cast<PointeeHandle*>(p), 0, sizeof(PointeeHandle));
    delete p;
}

namespace internal
{

void ReportDestructorException(const std::exception* exception, const std::string& site)
{
    try
    {
        if (exception)
            Log(logging::Debug, std::string("Error: ") + exception->what() + "\n" + site + "\n");
        else
            Log(logging::Debug, "Fail\n" + site + "\n");
    }
    catch (...)
    {
    }
}

void ThrowNullDereference(const char* text, const std::string& site)
{
    throw ExceptionDescriber(site) % std::runtime_error(text);
}

} // namespace internal
} // namespace util
