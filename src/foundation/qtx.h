#pragma once

#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QRegularExpressionMatch>
#include <QString>
#include <QStringList>

#include <ctime>

/// The system's services over the operating system. Failures are reported by a
/// bool result; nothing here throws or prints, except `loadDLL`'s loader error.
namespace QTx {

// Where things are.

/// The installation root for a program at `argv0`: the parent of its directory.
QString getBenchDir(const char *argv0);
/// The installation root of the running program, worked out once per run.
QString rootDirectory();
/// The name the running program was started by.
QString appPath();
/// The absolute directory of `appPath()`.
QString appDir();
/// The directory for temporary files: $TMP, $TEMP, $TMPDIR or "/tmp".
QString tmpDir();
/// The user's home directory, $HOME.
QString userProfileDirectory();
/// The system directory; "/" here.
QString osDir();
/// The root of the file system; "/" here.
QString osRoot();
/// `path` with the capitalisation the file system uses; unchanged here.
QString correctPathCapitalisation(const QString &path);
/// The name and type of the volume holding `path`; none (null, 0) here.
void getVolumeInformation(const QString &path, QString &name, unsigned int &type);

// Path text.

/// Turns backslashes into "/" and drops one trailing "/".
void formatPath(QString &path);
/// `path`, made absolute if `absolute`, through `formatPath`.
QString simplifyPath(const QString &path, bool absolute);

// Directories.

/// Makes `path` the current directory.
bool changeDir(const QString &path);
/// Makes a directory and its missing parents; true if it exists at the end.
bool makeDir(const QDir &dir);
bool makeDir(const QString &path);
/// The directory holding `dir`.
QDir parentDir(const QDir &dir);
/// Removes a file (not a directory).
bool removeFile(const QString &path);
/// Removes an empty directory.
bool removeDir(const QString &path);

// Files.

/// The modification time as the UTC clock reading taken as local time; 0 on failure.
time_t getUTCModificationTime(const QString &path);
/// Writes `size` bytes of `data` to a new or truncated file, stamps it with
/// `time` and makes it read-only if asked.
bool createFile(const QString &path, unsigned int size, const unsigned char *data, bool readOnly,
                long time);
/// Sets or clears the owner's write permission, leaving the other bits alone.
bool setWriteable(const QString &path, bool writable);
/// True if both files exist and hold the same bytes.
bool filesMatch(const QString &a, const QString &b);
/// Copies a file, keeping its times and its mode less the umask; `to` may be a
/// directory to copy into.
bool copyFile(const QString &from, const QString &to);
/// Copies the contents of directory `from` into the existing directory `to`.
bool copyDir(const QString &from, const QString &to);
/// True if the file starts with the magic of the compressed file format.
bool isCompressedFile(const QString &path);
/// Writes `from` to `to` in the compressed file format.
bool compressFile(const QString &from, const QString &to);
/// Restores a file written by `compressFile`; no target is made from a bad source.
bool decompressFile(const QString &from, const QString &to);
/// Appends the absolute names of the regular files under `directory` whose
/// extension (after the last ".") is `extension`.
void findFiles(QString directory, const QString &extension, QStringList &files);

// Shared libraries.

/// Loads a shared library; a name ending in ".dll" loads the ".so" of that name.
/// Null on failure, with the loader's message on stderr.
void *loadDLL(const QString &name);
/// The address of symbol `name` in a loaded library, or null.
void *getDLLAddress(void *handle, const QString &name);
/// Unloads a library loaded by `loadDLL`.
bool unloadDLL(void *handle);

// Time.

/// A millisecond clock in 32 bits, wrapping.
unsigned int ticks();
/// Waits `ms` milliseconds.
void sleep(unsigned int ms);
/// "dd/mm/yyyy hh:mm", or "(not available)" for an invalid date or time.
QString friendlyDate(const QDateTime &dateTime);

// Text search.

/// `text` with every character that has a meaning in a regular expression escaped.
QString literalRegularExpressionString(const QString &text);
/// A search expression for `text`, taken literally unless `isRegularExpression`.
QRegularExpression constructSearchRegularExpression(const QString &text, bool caseSensitive,
                                                    bool isRegularExpression);
/// The index of the first non-empty match at or after `start` (or at or before it
/// if not `forward`), whole words only if `wholeWord`; -1 if none. The matched
/// text goes to `match`, and the whole match to `lastMatch` if given.
int search(const QRegularExpression &re, const QString &text, int start, bool forward,
           bool wholeWord, QString &match, QRegularExpressionMatch *lastMatch = nullptr);
/// Replaces each "\n" (n a digit) in `text` by capture n of `lastMatch`.
void expandSearchResults(const QRegularExpressionMatch &lastMatch, QString &text);

} // namespace QTx
