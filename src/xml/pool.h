#pragma once

#include <cstddef>
#include <new>

class PoolObject;

/// A link of the circular list through which a pool finds the objects that live in it.
struct PoolObjectLink
{
    PoolObjectLink *prev = nullptr;
    PoolObjectLink *next = nullptr;
};

/// A bump arena: memory is handed out in order from large blocks and is only
/// ever given back all at once, by clear() or the destructor.
class Pool
{
public:
    /// One block of the arena; its bytes follow the header.
    struct Block
    {
        Block *next;
        alignas(16) char data[16];
    };

    Pool();
    ~Pool();
    Pool(const Pool &) = delete;
    Pool &operator=(const Pool &) = delete;

    /// The arena that PoolObject::operator new takes its memory from.
    static Pool *currentPool;
    /// Makes `pool` current and returns the previous one.
    static Pool *setCurrentPool(Pool *pool);

    /// Returns `size` bytes, rounded up to a multiple of 8, from the newest block.
    void *allocate(unsigned int size);
    /// Destroys the objects living in the arena and frees all blocks.
    void clear();

    Block *blocks = nullptr;    ///< newest block first
    unsigned int used = 0;      ///< bytes used in the newest block
    unsigned int blockSize = 0; ///< size of the newest block

private:
    friend class PoolObject;
    /// Sentinel of the objects whose destructors clear() runs.
    PoolObjectLink objects;
};

/// Makes a pool current for the lifetime of the object and then restores the previous one.
class CurrentPoolScope
{
public:
    explicit CurrentPoolScope(Pool *pool) : previous(Pool::setCurrentPool(pool)) {}
    ~CurrentPoolScope() { Pool::setCurrentPool(previous); }
    CurrentPoolScope(const CurrentPoolScope &) = delete;
    CurrentPoolScope &operator=(const CurrentPoolScope &) = delete;

private:
    Pool *previous;
};

/// A std allocator that takes memory from a pool and never gives it back; with a
/// null pool it uses the heap.
template <typename T> class PoolAllocator
{
public:
    using value_type = T;

    explicit PoolAllocator(Pool *pool = nullptr) : pool(pool) {}
    template <typename U> PoolAllocator(const PoolAllocator<U> &other) : pool(other.pool) {}

    T *allocate(std::size_t n)
    {
        if (!pool)
            return static_cast<T *>(::operator new(n * sizeof(T)));
        return static_cast<T *>(pool->allocate(static_cast<unsigned int>(n * sizeof(T))));
    }
    void deallocate(T *p, std::size_t)
    {
        if (!pool)
            ::operator delete(p);
    }

    template <typename U> bool operator==(const PoolAllocator<U> &other) const
    {
        return pool == other.pool;
    }
    template <typename U> bool operator!=(const PoolAllocator<U> &other) const
    {
        return pool != other.pool;
    }

    Pool *pool;
};
