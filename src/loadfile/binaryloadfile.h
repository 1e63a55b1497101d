#pragma once

#include "loadfile/loadfileinterface.h"

#include <memory>

/// A raw image: the whole file is one section, at an address the caller gives.
class BinaryLoadFile : public LoadFileInterface
{
public:
    /// Reads `fileName` whole; throws `HException` if it can't be opened or read.
    explicit BinaryLoadFile(const char *fileName);

    bool hasLoadAddress() const override { return false; }
    /// Moves the image to `address`; a new address drops the sections made so far.
    void setLoadAddress(unsigned long address) override;
    /// Adds the one section "data" at the load address.
    bool createLoadFileSections() override;

private:
    std::unique_ptr<unsigned char[]> data;
    unsigned int size = 0;
    unsigned long loadAddress = 0;
};
