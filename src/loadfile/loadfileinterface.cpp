#include "loadfile/loadfileinterface.h"

#include "foundation/hexception.h"
#include "loadfile/standardloadfilesection.h"

#include <algorithm>
#include <cstring>
#include <string>

LoadFileInterface::~LoadFileInterface() = default;

void LoadFileInterface::makeContiguous(unsigned char fill)
{
    const LoadFileSections::List &list = sections.list();
    if (list.empty())
        return;

    // `high` in 64 bits: a section may end exactly at the top of the address space.
    unsigned int low = 0xFFFFFFFF;
    unsigned long long high = 0;
    for (const auto &section : list) {
        low = std::min(low, section->address());
        high =
            std::max(high, static_cast<unsigned long long>(section->address()) + section->length());
    }
    if (low == 0xFFFFFFFF || high == 0)
        return;

    const unsigned long long size = high - low;
    if (size > maxContiguousLength)
        throw HException("contiguous image of " + std::to_string(size) +
                         " bytes is larger than the limit of " +
                         std::to_string(maxContiguousLength) + " bytes");
    std::unique_ptr<unsigned char[]> image(new unsigned char[size]);
    std::memset(image.get(), fill, size);

    for (const auto &section : list) {
        if (section->data() && section->length() != 0)
            std::memcpy(image.get() + (section->address() - low), section->data(),
                        section->length());
    }

    sections.clear();
    sections.add(std::make_unique<StandardLoadFileSection>(
        "Contiguous section", low, static_cast<unsigned int>(size), image.get()));
    // Only now: the previous image may have been one of the sources just copied.
    m_contiguousData = std::move(image);
}

void LoadFileInterface::sortLoadFileSections()
{
    sections.sortByAddress();
}

LoadFileSections *LoadFileInterface::loadFileSections()
{
    if (sectionsValid)
        return &sections;
    if (!createLoadFileSections())
        throw HException("cannot read sections from load file");
    sectionsValid = true;
    return &sections;
}

void LoadFileInterface::invalidateLoadFileSections()
{
    sections.clear();
    sectionsValid = false;
    m_contiguousData.reset();
}
