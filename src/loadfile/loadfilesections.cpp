#include "loadfile/loadfilesections.h"

#include <algorithm>

namespace {

unsigned long long totalLength(const LoadFileSections::List &list)
{
    unsigned long long total = 0;
    for (const auto &section : list)
        total += section->length();
    return total;
}

} // namespace

void LoadFileSections::add(std::unique_ptr<LoadFileSectionInterface> section)
{
    m_list.push_back(std::move(section));
}

void LoadFileSections::addee(std::unique_ptr<LoadFileSectionInterface> section)
{
    m_eelist.push_back(std::move(section));
}

LoadFileSectionInterface *LoadFileSections::find(unsigned int address, unsigned int length) const
{
    // In 64 bits, so that a range or section reaching the top of memory doesn't wrap.
    const unsigned long long end = static_cast<unsigned long long>(address) + length;
    for (const auto &section : m_list) {
        if (section->address() <= address &&
            end <= static_cast<unsigned long long>(section->address()) + section->length())
            return section.get();
    }
    return nullptr;
}

unsigned long long LoadFileSections::length() const
{
    return totalLength(m_list);
}

unsigned long long LoadFileSections::eelength() const
{
    return totalLength(m_eelist);
}

void LoadFileSections::clear()
{
    m_list.clear();
}

void LoadFileSections::sortByAddress()
{
    std::stable_sort(m_list.begin(), m_list.end(),
                     [](const auto &a, const auto &b) { return a->address() < b->address(); });
}
