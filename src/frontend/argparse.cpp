#include "frontend/argparse.h"

#include "frontend/hreporter.h"

#include <cerrno>
#include <cstdio>

ArgParse::ArgParse(HReporter *reporter) : reporter(reporter) {}

ArgParse::~ArgParse() = default;

std::ostream &ArgParse::error()
{
    return reporter->error();
}

void ArgParse::addFlag(const char *key, bool *flag)
{
    Option option;
    option.flag = flag;
    options[key] = option;
}

void ArgParse::addHandler(const char *key, int kind, OptionHandler handler)
{
    Option option;
    option.kind = kind;
    option.hasHandler = true;
    option.handler = handler;
    options[key] = option;
}

void ArgParse::parse(int argc, char **argv)
{
    for (int i = 0; i < argc; ++i) {
        const char *word = argv[i];
        const char *key = nullptr;
        const char *value = nullptr;
        const Option *option = nullptr;
        const auto exact = options.find(word);
        if (exact != options.end()) {
            key = exact->first;
            option = &exact->second;
            if (option->kind == 1 || option->kind == 3) {
                if (i + 1 >= argc) {
                    error() << "expected argument for option " << argv[argc - 1] << std::endl;
                    return;
                }
                value = argv[++i];
            } else if (option->kind == 2) {
                value = word + std::strlen(key);
            }
        } else {
            option = findJoinedOption(word, &key);
            if (option)
                value = word + std::strlen(key);
        }

        if (option)
            applyOption(key, *option, value);
        else if (word[0] == '@')
            parseArgsFromIndirectFile(word + 1);
        else if (word[0] == '-')
            error() << "unrecognised option " << word << std::endl;
        else
            onArgument(word);
    }
}

// The first option of kind 2 or 3, in table order, whose word starts `word`.
const Option *ArgParse::findJoinedOption(const char *word, const char **key) const
{
    for (const auto &entry : options) {
        if ((entry.second.kind == 2 || entry.second.kind == 3) &&
            std::strncmp(word, entry.first, std::strlen(entry.first)) == 0) {
            *key = entry.first;
            return &entry.second;
        }
    }
    return nullptr;
}

void ArgParse::applyOption(const char *key, const Option &option, const char *value)
{
    if (option.hasHandler) {
        (this->*option.handler)(key, value);
        return;
    }
    if (option.flag)
        *option.flag = true;
    if (option.result)
        *option.result = value;
}

void ArgParse::parse(const char *line)
{
    char *argv[maxWords];
    const int count = argifyLine(nullptr, 0, line, argv);
    if (count > 0)
        parse(count, argv);
}

int ArgParse::argifyLine(const char *fileName, int lineNumber, const char *line, char **argv)
{
    const size_t firstWord = words.size();
    int count = 0;
    const char *p = line;
    for (;;) {
        while (*p == ' ')
            ++p;
        if (*p == '\0' || *p == '\n')
            return count;
        const char *problem = nullptr;
        const char *begin = p;
        if (count == maxWords) {
            problem = "too many words in";
        } else if (*p == '"') {
            begin = ++p;
            while (*p != '"' && *p != '\0' && *p != '\n')
                ++p;
            if (*p != '"')
                problem = "unterminated string in";
        } else {
            while (*p != ' ' && *p != '\0' && *p != '\n')
                ++p;
        }
        if (problem) {
            reportLineError(problem, fileName, lineNumber);
            words.resize(firstWord);
            return 0;
        }
        argv[count++] = keepWord(begin, size_t(p - begin));
        if (*p == '"')
            ++p;
    }
}

void ArgParse::reportLineError(const char *problem, const char *fileName, int lineNumber)
{
    if (fileName)
        error() << problem << " indirect file " << fileName << "(" << lineNumber << ")"
                << std::endl;
    else
        error() << problem << " command line" << std::endl;
}

char *ArgParse::keepWord(const char *begin, size_t length)
{
    std::unique_ptr<char[]> word(new char[length + 1]);
    std::memcpy(word.get(), begin, length);
    word[length] = '\0';
    words.push_back(std::move(word));
    return words.back().get();
}

void ArgParse::parseArgsFromIndirectFile(const char *fileName)
{
    if (indirectFilesRefused)
        return;
    if (indirectDepth == maxIndirectDepth || indirectFilesRead == maxIndirectFiles) {
        // Once is enough: the command line is in error, and what follows it is not read.
        error() << "too many indirect files" << std::endl;
        indirectFilesRefused = true;
        return;
    }
    ++indirectFilesRead;
    FILE *file = std::fopen(fileName, "rt");
    if (!file) {
        const int cause = errno;
        error() << "can't open indirect file " << fileName << ": " << std::strerror(cause)
                << std::endl;
        return;
    }
    ++indirectDepth;
    char line[lineBufferSize];
    char *argv[maxWords];
    int lineNumber = 0;
    while (std::fgets(line, sizeof line, file)) {
        ++lineNumber;
        if (line[0] == '#')
            continue;
        const int count = argifyLine(fileName, lineNumber, line, argv);
        if (count > 0)
            parse(count, argv);
    }
    std::fclose(file);
    --indirectDepth;
}
