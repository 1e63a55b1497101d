#include "xml/pool.h"

#include "xml/poolobject.h"

#include <climits>
#include <cstdlib>

namespace {
const unsigned int minimumBlockSize = 8192;
}

Pool *Pool::currentPool = nullptr;

Pool::Pool()
{
    objects.prev = objects.next = &objects;
}

Pool::~Pool()
{
    clear();
    if (currentPool == this)
        currentPool = nullptr;
}

Pool *Pool::setCurrentPool(Pool *pool)
{
    Pool *previous = currentPool;
    currentPool = pool;
    return previous;
}

void *Pool::allocate(unsigned int size)
{
    if (size > UINT_MAX - 7)
        throw std::bad_alloc();
    size = (size + 7) & ~7u;
    if (!blocks || blockSize - used < size) {
        unsigned int newSize = size > minimumBlockSize ? size : minimumBlockSize;
        auto *block = static_cast<Block *>(std::malloc(offsetof(Block, data) + newSize));
        if (!block)
            throw std::bad_alloc();
        block->next = blocks;
        blocks = block;
        blockSize = newSize;
        used = 0;
    }
    // Addressed from the block itself: the bytes lie beyond the declared size of `data`.
    void *result = reinterpret_cast<char *>(blocks) + offsetof(Block, data) + used;
    used += size;
    return result;
}

void Pool::clear()
{
    // Objects unlink themselves in their destructors, so the list shrinks to the sentinel.
    while (objects.next != &objects)
        static_cast<PoolObject *>(objects.next)->~PoolObject();
    while (blocks) {
        Block *next = blocks->next;
        std::free(blocks);
        blocks = next;
    }
    used = 0;
    blockSize = 0;
}
