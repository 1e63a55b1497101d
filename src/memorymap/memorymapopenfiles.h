#pragma once

#include <QString>

class MemoryMap;

/// The process-wide cache of loaded memory map and section placement files, so that each file
/// is parsed once until it changes.
class MemoryMapOpenFiles
{
public:
    /// The map of the file `path`, read afresh if it changed since it was read; null if it
    /// can't be loaded. A stale map is deleted, so a pointer given out earlier for the same
    /// path is valid only until this call.
    static MemoryMap *getMemoryMapFile(const QString &path);
    /// Deletes every cached map.
    static void clear();
};
