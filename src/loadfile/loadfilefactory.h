#pragma once

#include "loadfile/loadfileinterface.h"

#include <memory>

/// One load file format the factory knows: its type name, the file patterns it is
/// detected by, and its name for people.
struct LoadFileTypeInfo
{
    const char *type;
    const char *patterns;
    const char *description;
};

/// Makes the reader of a load file, by type name or from the file name.
class LoadFileFactory
{
public:
    /// The one factory, made on first use.
    static LoadFileFactory *instance();

    LoadFileFactory(const LoadFileFactory &) = delete;
    LoadFileFactory &operator=(const LoadFileFactory &) = delete;
    virtual ~LoadFileFactory();

    /// The reader of `type` over `fileName`, which it reads at once and throws
    /// `HException` if bad; null for an unknown type.
    virtual std::unique_ptr<LoadFileInterface> create(const char *fileName, const char *type);
    /// The type named by the end of `fileName` in all lower or all upper case, or null.
    /// The contents are never looked at.
    virtual const char *detect(const char *fileName);

    /// The number of formats.
    static constexpr int typeCount = 5;
    /// The formats, `typeCount` of them, in the factory's order.
    static const LoadFileTypeInfo *types();

protected:
    LoadFileFactory() = default;
};
