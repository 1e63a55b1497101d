#pragma once

#include <cstdio>

/// An open load file, closed with the object; what every reader opens its file with.
class LoadFileStream
{
public:
    /// Opens `fileName` for reading; throws `HException` with "cannot open " and the name
    /// when it can't be opened or is a directory.
    explicit LoadFileStream(const char *fileName);
    LoadFileStream(const LoadFileStream &) = delete;
    LoadFileStream &operator=(const LoadFileStream &) = delete;
    ~LoadFileStream();

    /// The open file.
    std::FILE *file() const { return m_file; }
    /// The file's size from its status when opened.
    unsigned long long size() const { return m_size; }

private:
    std::FILE *m_file = nullptr;
    unsigned long long m_size = 0;
};
