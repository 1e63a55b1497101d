#include "loadfile/standardloadfilesection.h"

StandardLoadFileSection::StandardLoadFileSection(const std::string &name, unsigned int address,
                                                 unsigned int length, const unsigned char *data)
    : m_name(name), m_address(address), m_length(length), m_data(data)
{
}
