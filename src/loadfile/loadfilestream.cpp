#include "loadfile/loadfilestream.h"

#include "foundation/hexception.h"

#include <string>
#include <sys/stat.h>

namespace {

[[noreturn]] void cannotOpen(const char *fileName)
{
    throw HException(std::string("cannot open ") + fileName);
}

} // namespace

LoadFileStream::LoadFileStream(const char *fileName)
{
    m_file = std::fopen(fileName, "r");
    if (!m_file)
        cannotOpen(fileName);
    struct stat status;
    // A directory opens on Linux and then reads as nothing, or as garbage of its size.
    if (fstat(fileno(m_file), &status) != 0 || S_ISDIR(status.st_mode)) {
        std::fclose(m_file);
        cannotOpen(fileName);
    }
    m_size = static_cast<unsigned long long>(status.st_size);
}

LoadFileStream::~LoadFileStream()
{
    std::fclose(m_file);
}
