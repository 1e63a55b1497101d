#include "memorymap/section.h"

#include "memorymap/memorymapelement.h"

QString getMemoryMapElementName(const MemoryMapElement *element)
{
    return element->name().replace(QLatin1Char(' '), QLatin1Char('_'));
}

Section::Section(const MemoryMapElement *section, const MemoryMapElement *segment,
                 Section *previous)
    : previous(previous), section(section), segment(segment),
      m_name(getMemoryMapElementName(section))
{
    if (previous)
        previous->last = false;
}

QString Section::name(bool stripped) const
{
    if (stripped && m_name.startsWith(QLatin1Char('.')))
        return m_name.mid(1);
    return m_name;
}
