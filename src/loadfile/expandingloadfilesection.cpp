#include "loadfile/expandingloadfilesection.h"

ExpandingLoadFileSection::ExpandingLoadFileSection(unsigned int address, const std::string &name)
    : StandardLoadFileSection(name, address, 0, nullptr)
{
}

unsigned char *ExpandingLoadFileSection::expand(unsigned int n)
{
    // The vector grows geometrically, so a section made of many short records costs
    // linear time however it is split.
    m_buffer.resize(m_buffer.size() + n);
    m_data = m_buffer.data();
    unsigned char *added = m_buffer.data() + m_length;
    m_length += n;
    return added;
}
