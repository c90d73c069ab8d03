#include "util/Callback.h"

#include "logging/Log.h"

namespace util
{

void AbstractCallbackSet::FlushCallbackSets()
{
    for (AbstractCallbackSet* set : GetAllClassInstances())
        set->Flush();
}

namespace internal
{

void ReportCallbackException(const std::exception& e, const std::string& site)
{
    Log(logging::Error, std::string("Exception caught in CallbackSet::CallAll: ") + e.what());
    CatchException(const_cast<std::exception&>(e), site);
}

} // namespace internal
} // namespace util
