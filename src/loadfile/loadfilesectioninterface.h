#pragma once

#include <string>

/// One stretch of target memory in a load file: where it goes, how long it is, its bytes.
class LoadFileSectionInterface
{
public:
    virtual ~LoadFileSectionInterface();

    /// The section's name; empty for the sections the text readers make.
    virtual std::string name() const = 0;
    /// The target address of the first byte.
    virtual unsigned int address() const = 0;
    /// The number of bytes.
    virtual unsigned int length() const = 0;
    /// The bytes, or null for a section without data.
    virtual const unsigned char *data() const = 0;

    /// Same place and length, and the same bytes when both have data; a section with data
    /// never equals one without.
    bool operator==(const LoadFileSectionInterface &other) const;
    /// The negation of `==`.
    bool operator!=(const LoadFileSectionInterface &other) const { return !(*this == other); }
};
