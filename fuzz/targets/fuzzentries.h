#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

/// The code one fuzz target runs on one input; the fuzzer and the regression tests share it.
using FuzzEntry = int (*)(const uint8_t *data, size_t size);

/// The XML parser on the bytes, and the writer and parser again on what it read.
int fuzzXmlParser(const uint8_t *data, size_t size);
/// The bytes as a file read through the XML preprocessor, with a fixed file to include.
int fuzzXmlPreprocessor(const uint8_t *data, size_t size);
/// The bytes as one command line split into words and parsed.
int fuzzArgLine(const uint8_t *data, size_t size);
/// The bytes as an indirect file of arguments, which may name itself and another like it.
int fuzzIndirectFile(const uint8_t *data, size_t size);
/// The bytes as a compiler's dependency file, and as the file of kept dependency lists.
int fuzzDependencyFile(const uint8_t *data, size_t size);
/// The bytes as text whose macros are expanded, and as a list in its encoding.
int fuzzMacros(const uint8_t *data, size_t size);
/// The bytes as a memory map and a section placement file, then the linker script of the two.
int fuzzLinkerScript(const uint8_t *data, size_t size);
/// The bytes as a solution file, then the settings of every element in one configuration.
int fuzzSolution(const uint8_t *data, size_t size);
/// The bytes as the installation's project templates, used by a fixed solution.
int fuzzProjectTemplates(const uint8_t *data, size_t size);
/// The bytes as an archive file: its directory, then each member's data.
int fuzzArchive(const uint8_t *data, size_t size);
/// The bytes as a package: decompressed, then read as an archive.
int fuzzPackage(const uint8_t *data, size_t size);
/// The first byte picks one of the load file readers and its options; the rest is the file.
int fuzzLoadFile(const uint8_t *data, size_t size);

/// The entry of the target called `name` (the name of its program), or null.
FuzzEntry fuzzEntry(const QString &name);

/// Where the targets keep the files they read: one directory for the process.
QString fuzzScratchDir();
/// Writes `size` bytes at `data` to `relative` in the scratch directory; returns its path.
QString writeScratchFile(const QString &relative, const uint8_t *data, size_t size);
/// Points every "@name" word of `text` into the scratch directory; false for a text in which
/// an "@" could name a file elsewhere (a name with more than letters, digits, "_" and "-", an
/// "@" inside a word, or quotes), which the target then skips.
bool confineIndirectNames(QByteArray &text);
/// False for an input that says `keyword` (in any case) and could make the reader open a file
/// outside the scratch directory: reading a device or a huge file tests the host, not the reader.
bool staysInScratch(const QByteArray &input, const char *keyword);

/// Runs every input kept in fuzz/regressions/NAME through the entry of target `name`, as the
/// fuzzer did when it found them; returns how many there were.
int runFuzzRegressions(const QString &name);
