#pragma once

#include "loadfile/loadfilesectioninterface.h"

/// A section over bytes that someone else owns: the load file that read them, or the
/// caller that built it.
class StandardLoadFileSection : public LoadFileSectionInterface
{
public:
    /// A section named `name` of `length` bytes at `address`, showing `data` without owning it.
    StandardLoadFileSection(const std::string &name, unsigned int address, unsigned int length,
                            const unsigned char *data);

    std::string name() const override { return m_name; }
    unsigned int address() const override { return m_address; }
    unsigned int length() const override { return m_length; }
    const unsigned char *data() const override { return m_data; }

protected:
    std::string m_name;
    unsigned int m_address;
    unsigned int m_length;
    const unsigned char *m_data;
};
