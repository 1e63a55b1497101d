#pragma once

#include "xml/pool.h"

#include <cstddef>

/// Base class of everything that lives in a Pool: its memory comes from the
/// current pool and goes with that pool, which also runs its destructor.
class PoolObject : private PoolObjectLink
{
public:
    PoolObject();
    virtual ~PoolObject();
    PoolObject(const PoolObject &) = delete;
    PoolObject &operator=(const PoolObject &) = delete;

    /// Takes `size` bytes from Pool::currentPool, making a pool first if there is none.
    static void *operator new(std::size_t size);
    /// Frees nothing: the memory belongs to the pool.
    static void operator delete(void *) {}

    /// The pool this object lives in, or null if it wasn't made by operator new.
    Pool *ownerPool() const { return owner; }

private:
    friend class Pool;
    Pool *owner = nullptr;
};
