#pragma once

#include "loadfile/standardloadfilesection.h"

#include <vector>

/// A section that a reader grows record by record; it owns its bytes.
class ExpandingLoadFileSection : public StandardLoadFileSection
{
public:
    /// An empty section named `name` at `address`.
    explicit ExpandingLoadFileSection(unsigned int address, const std::string &name = {});

    /// Grows the section by `n` bytes; the room for them, valid until the next `expand`.
    unsigned char *expand(unsigned int n);

private:
    std::vector<unsigned char> m_buffer;
};
