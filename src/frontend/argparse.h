#pragma once

#include <QtGlobal>
#include <cstring>
#include <map>
#include <memory>
#include <ostream>
#include <vector>

class ArgParse;
class HReporter;

/// The handler of an option: a member of the parser, called with the option word and its value.
typedef void (ArgParse::*OptionHandler)(const char *option, const char *value);

/// One entry of the option table.
struct Option
{
    /// 0: flag; 1: value is the next word; 2: value joined to the word; 3: value joined to the
    /// word, or the next word when nothing is joined
    int kind = 0;
    bool hasHandler = false;         ///< call `handler` instead of setting `flag` and `result`
    OptionHandler handler = nullptr; ///< called with the option word and its value
    const char **result = nullptr;   ///< receives the value, if not null
    bool *flag = nullptr;            ///< set to true, if not null
};

/// Orders option words by content, the greater first.
struct Cstring_greater
{
    bool operator()(const char *a, const char *b) const { return std::strcmp(a, b) > 0; }
};

/// A command-line parser driven by an option table, with indirect "@file" arguments.
class ArgParse
{
public:
    /// The number of words one line may hold.
    static const int maxWords = 256;
    /// The number of indirect files that may be open at once.
    static const int maxIndirectDepth = 100;
    /// The number of indirect files one parser reads in all: files that each name another
    /// more than once would otherwise be read a number of times that doubles with each level.
    static const int maxIndirectFiles = 10000;
    /// The size of the buffer an indirect file is read through; longer lines arrive in pieces.
    static const int lineBufferSize = 1024;

    /// Makes a parser with an empty option table that reports errors through `reporter`.
    explicit ArgParse(HReporter *reporter);
    virtual ~ArgParse();
    Q_DISABLE_COPY(ArgParse)

    /// Receives each word that is neither an option nor an indirect file.
    virtual void onArgument(const char *argument) = 0;
    /// Counts one error on the reporter and starts its line; the caller writes the message.
    virtual std::ostream &error();

    /// Parses `argc` words in order; options take effect at once.
    void parse(int argc, char **argv);
    /// Splits `line` into words and parses them.
    void parse(const char *line);
    /// Splits one line into at most `maxWords` words stored in `argv`; returns their number,
    /// 0 after an error. `fileName` and `lineNumber` only go into messages; null for the command
    /// line.
    int argifyLine(const char *fileName, int lineNumber, const char *line, char **argv);
    /// Parses the words of the file `fileName`, line by line.
    void parseArgsFromIndirectFile(const char *fileName);

    std::map<const char *, Option, Cstring_greater> options;
    int indirectDepth = 0;
    /// The indirect files read so far, and whether too many were named: from then on none is.
    int indirectFilesRead = 0;
    bool indirectFilesRefused = false;
    HReporter *reporter;

protected:
    /// Adds a flag option that sets `*flag`.
    void addFlag(const char *key, bool *flag);
    /// Adds an option of `kind` whose value goes to `handler`.
    void addHandler(const char *key, int kind, OptionHandler handler);

private:
    void applyOption(const char *key, const Option &option, const char *value);
    const Option *findJoinedOption(const char *word, const char **key) const;
    void reportLineError(const char *problem, const char *fileName, int lineNumber);
    char *keepWord(const char *begin, size_t length);

    // Every word made by argifyLine; option values point into them.
    std::vector<std::unique_ptr<char[]>> words;
};
