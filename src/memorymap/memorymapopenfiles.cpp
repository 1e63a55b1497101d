#include "memorymap/memorymapopenfiles.h"

#include "foundation/path.h"
#include "memorymap/memorymap.h"

#include <map>
#include <memory>

namespace {

/// The cache, freed when the program ends.
std::map<QString, std::unique_ptr<MemoryMap>> &openFiles()
{
    static std::map<QString, std::unique_ptr<MemoryMap>> files;
    return files;
}

} // namespace

MemoryMap *MemoryMapOpenFiles::getMemoryMapFile(const QString &path)
{
    const QString key = Path(path).osPathQString();
    auto &files = openFiles();
    const auto found = files.find(key);
    if (found != files.end()) {
        if (found->second->upToDate())
            return found->second.get();
        files.erase(found);
    }
    auto map = std::make_unique<MemoryMap>();
    if (!map->load(key, QString(), false))
        return nullptr;
    MemoryMap *loaded = map.get();
    files.emplace(key, std::move(map));
    return loaded;
}

void MemoryMapOpenFiles::clear()
{
    openFiles().clear();
}
