#pragma once

#include "loadfile/loadfilesections.h"

#include <memory>

/// Debugging information a load file may carry; no format read today has any.
struct LoadFileDebugInformation;

/// A file image read into sections, with what the format says about entry point and load
/// address. The readers throw `HException` from their constructors on a bad file.
class LoadFileInterface
{
public:
    LoadFileInterface() = default;
    LoadFileInterface(const LoadFileInterface &) = delete;
    LoadFileInterface &operator=(const LoadFileInterface &) = delete;
    virtual ~LoadFileInterface();

    /// Whether the file named an entry point.
    virtual bool hasEntryPoint() const { return false; }
    /// Stores an entry point; it doesn't make `hasEntryPoint` true.
    virtual void setEntryPoint(unsigned long address) { m_entryPoint = address; }
    /// The entry point read or stored, 0 if neither.
    virtual unsigned long entryPoint() const { return m_entryPoint; }
    /// True when the file carries its own addresses, false when the caller must give one.
    virtual bool hasLoadAddress() const = 0;
    /// The address of a file that carries none; no effect on the others.
    virtual void setLoadAddress(unsigned long address) = 0;
    /// The file's debugging information, or null.
    virtual const LoadFileDebugInformation *loadFileDebugInformation() const { return nullptr; }
    /// Replaces the sections by one that spans them all, gaps set to `fill`; throws
    /// `HException` when that span is longer than `maxContiguousLength`.
    virtual void makeContiguous(unsigned char fill);
    /// Orders the sections by ascending address.
    virtual void sortLoadFileSections();
    /// Makes the sections if the reader makes them on demand; false if it can't.
    virtual bool createLoadFileSections() = 0;

    /// The sections, made first if needed; throws `HException` if they can't be.
    LoadFileSections *loadFileSections();
    /// Drops the sections, so that the next `loadFileSections` makes them anew.
    void invalidateLoadFileSections();

    /// The longest image `makeContiguous` makes: larger than any flash we program, and
    /// small enough that a few sparse records can't make the program hold hundreds of MB.
    static constexpr unsigned int maxContiguousLength = 64u << 20;

protected:
    LoadFileSections sections;
    bool sectionsValid = false;
    unsigned long m_entryPoint = 0;

private:
    // The bytes of the section `makeContiguous` made: no section owns its data, so the
    // file does, until the sections are dropped or made contiguous again.
    std::unique_ptr<unsigned char[]> m_contiguousData;
};
