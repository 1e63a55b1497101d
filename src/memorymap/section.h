#pragma once

#include <QString>

class MemoryMapElement;

/// `element`'s "name" as a linker script writes it: each blank replaced by "_".
QString getMemoryMapElementName(const MemoryMapElement *element);

/// One output section of a linker script being written, placed after `previous` in its
/// segment. Lives for one generation.
struct Section
{
    /// A section of `segment` (always from the memory map file) placed after `previous`,
    /// which thereby stops being the last of the segment.
    Section(const MemoryMapElement *section, const MemoryMapElement *segment, Section *previous);

    /// The section's name; with `stripped`, without a leading ".".
    QString name(bool stripped) const;

    Section *previous;               ///< placed before this one in its segment; null if first
    const MemoryMapElement *section; ///< the "ProgramSection" element
    const MemoryMapElement *segment; ///< the "MemorySegment" element of the memory map
    bool done = false;               ///< written
    bool visiting = false;           ///< being laid out
    bool last = true;                ///< the last of its segment

private:
    QString m_name;
};
