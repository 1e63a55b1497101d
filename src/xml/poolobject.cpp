#include "xml/poolobject.h"

namespace {
// The bytes handed out by the last operator new, so that the constructor can tell
// an object in a pool from one on the stack or inside another object.
const char *lastAllocationBegin = nullptr;
const char *lastAllocationEnd = nullptr;
Pool *lastAllocationPool = nullptr;
} // namespace

void *PoolObject::operator new(std::size_t size)
{
    if (!Pool::currentPool)
        Pool::currentPool = new Pool; // owned by nobody, like the objects it will hold
    void *memory = Pool::currentPool->allocate(static_cast<unsigned int>(size));
    lastAllocationBegin = static_cast<const char *>(memory);
    lastAllocationEnd = lastAllocationBegin + size;
    lastAllocationPool = Pool::currentPool;
    return memory;
}

PoolObject::PoolObject()
{
    const char *self = reinterpret_cast<const char *>(this);
    if (self < lastAllocationBegin || self >= lastAllocationEnd)
        return;
    owner = lastAllocationPool;
    lastAllocationBegin = lastAllocationEnd = nullptr;
    PoolObjectLink &objects = owner->objects;
    prev = objects.prev;
    next = &objects;
    objects.prev->next = this;
    objects.prev = this;
}

PoolObject::~PoolObject()
{
    if (!owner)
        return;
    prev->next = next;
    next->prev = prev;
    owner = nullptr;
}
