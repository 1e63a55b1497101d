#include "loadfile/loadfilesectioninterface.h"

#include <cstring>

LoadFileSectionInterface::~LoadFileSectionInterface() = default;

bool LoadFileSectionInterface::operator==(const LoadFileSectionInterface &other) const
{
    if (address() != other.address() || length() != other.length())
        return false;
    const unsigned char *mine = data();
    const unsigned char *theirs = other.data();
    if (!mine || !theirs)
        return !mine && !theirs;
    return std::memcmp(mine, theirs, length()) == 0;
}
