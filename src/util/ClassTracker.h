#pragma once

#include "util/HashMap.h"
#include "util/VectorPOD.h"

namespace util
{

// Keeps the set of live instances of T. Walks go over a copy, so that a call on one instance may make or
// destroy others.
template <class T> class ClassTracker
{
public:
    using InstanceSet = HashSet<ClassTracker<T>*, DefaultHasher>;

    ClassTracker() { Instances().insert(this); }
    ClassTracker(const ClassTracker&) { Instances().insert(this); }
    ClassTracker& operator=(const ClassTracker&) { return *this; }
    // As loose as Pointee's, which tracked classes often derive from too.
    virtual ~ClassTracker() noexcept(false) { Instances().erase(this); }

    static VectorPOD<T*> GetAllClassInstances()
    {
        VectorPOD<T*> all;
        all.reserve(Instances().size());
        for (ClassTracker<T>* tracker : Instances())
            all.append(static_cast<T*>(tracker));
        return all;
    }

    // Never destroyed: singletons and other statics leave their sets after static destruction has begun.
    static InstanceSet& Instances()
    {
        static InstanceSet* s_instances = new InstanceSet;
        return *s_instances;
    }
};

} // namespace util
