/* A fast stand-in for the cross tool chain, so that a benchmark measures the build tool and not
 * the compiler. Installed under the names of the tools (cc1, as, ar, ld, objcopy), it does what
 * a build tool can observe of each:
 *
 *   cc1  writes its -o file and, with -MD FILE, a dependency file listing the source and the
 *        headers the source's own #include lines name, found the way the compiler finds them;
 *   as   reads its input and writes its -o file;
 *   ar   writes its archive (the first word after the key letters) once every member exists;
 *   any other name writes its -o file.
 *
 * A missing input fails as the real tool would, so a build tool that runs a step too early is
 * caught. Only the source's own #include lines are read, not those of the headers. */

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

enum { MAX_DIRECTORIES = 64 };

static const char *program = "faketool";

static int fail(const char *what, const char *path)
{
    fprintf(stderr, "%s: %s %s: %s\n", program, what, path, strerror(errno));
    return 1;
}

static int writeFile(const char *path, const char *text, size_t size)
{
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (fd < 0)
        return fail("cannot write", path);
    const int ok = write(fd, text, size) == (ssize_t)size;
    if (close(fd) != 0 || !ok)
        return fail("cannot write", path);
    return 0;
}

static int exists(const char *path)
{
    struct stat status;
    return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

static const char *basenameOf(const char *path)
{
    const char *slash = strrchr(path, '/');
    return slash ? slash + 1 : path;
}

/* Options of cc1 whose value is the next argument. */
static int takesValue(const char *option)
{
    static const char *const options[] = {
        "-o",       "-MD",      "-MMD",     "-MF", "-MQ", "-MT",       "-I",        "-iquote",
        "-isystem", "-include", "-imacros", "-D",  "-U",  "-aux-info", "-dumpbase", NULL};
    for (const char *const *candidate = options; *candidate; ++candidate)
        if (strcmp(option, *candidate) == 0)
            return 1;
    return 0;
}

/* The compiler's command line, as far as the dependency file needs it. */
struct Compile
{
    const char *source;
    const char *output;
    const char *dependencyFile;
    const char *target;
    const char *quoteDirectories[MAX_DIRECTORIES];
    int quoteCount;
    const char *directories[MAX_DIRECTORIES]; /* -I then -isystem, in order */
    int directoryCount;
};

static void addDirectory(const char **list, int *count, const char *directory)
{
    if (*count < MAX_DIRECTORIES)
        list[(*count)++] = directory;
}

static void parseCompile(int argc, char **argv, struct Compile *compile)
{
    memset(compile, 0, sizeof *compile);
    for (int i = 1; i < argc; ++i) {
        const char *word = argv[i];
        const char *value = i + 1 < argc ? argv[i + 1] : NULL;
        if (strncmp(word, "-I", 2) == 0 && word[2] != '\0')
            addDirectory(compile->directories, &compile->directoryCount, word + 2);
        else if (strncmp(word, "-isystem", 8) == 0 && word[8] != '\0')
            addDirectory(compile->directories, &compile->directoryCount, word + 8);
        else if (strncmp(word, "-iquote", 7) == 0 && word[7] != '\0')
            addDirectory(compile->quoteDirectories, &compile->quoteCount, word + 7);
        else if (takesValue(word) && value) {
            if (strcmp(word, "-o") == 0)
                compile->output = value;
            else if (strcmp(word, "-MD") == 0 || strcmp(word, "-MMD") == 0 ||
                     strcmp(word, "-MF") == 0)
                compile->dependencyFile = value;
            else if (strcmp(word, "-MQ") == 0 || strcmp(word, "-MT") == 0)
                compile->target = value;
            else if (strcmp(word, "-I") == 0 || strcmp(word, "-isystem") == 0)
                addDirectory(compile->directories, &compile->directoryCount, value);
            else if (strcmp(word, "-iquote") == 0)
                addDirectory(compile->quoteDirectories, &compile->quoteCount, value);
            ++i;
        } else if (word[0] != '-' && !compile->source)
            compile->source = word;
    }
}

/* A growing text. */
struct Text
{
    char *data;
    size_t size, capacity;
};

static void append(struct Text *text, const char *data, size_t size)
{
    if (text->size + size + 1 > text->capacity) {
        text->capacity = (text->size + size + 1) * 2;
        text->data = realloc(text->data, text->capacity);
        if (!text->data) {
            fputs("out of memory\n", stderr);
            exit(1);
        }
    }
    memcpy(text->data + text->size, data, size);
    text->size += size;
    text->data[text->size] = '\0';
}

static void appendString(struct Text *text, const char *string)
{
    append(text, string, strlen(string));
}

static int readFile(const char *path, struct Text *text)
{
    const int fd = open(path, O_RDONLY);
    if (fd < 0)
        return fail("cannot read", path);
    char buffer[65536];
    ssize_t got;
    while ((got = read(fd, buffer, sizeof buffer)) > 0)
        append(text, buffer, (size_t)got);
    close(fd);
    if (got < 0)
        return fail("cannot read", path);
    if (!text->data)
        appendString(text, "");
    return 0;
}

/* Where the compiler finds `name`: "" includes look beside the source first, then in the
 * -iquote directories; both kinds then search -I and -isystem. The path is written to `found`
 * as the dependency file would name it. */
static int findHeader(const struct Compile *compile, const char *name, size_t length, int quoted,
                      char *found, size_t size)
{
    const char *candidates[2 * MAX_DIRECTORIES + 1];
    int count = 0;
    char sourceDirectory[4096] = "";
    if (quoted) {
        const char *slash = strrchr(compile->source, '/');
        if (slash && (size_t)(slash - compile->source) < sizeof sourceDirectory) {
            memcpy(sourceDirectory, compile->source, (size_t)(slash - compile->source));
            sourceDirectory[slash - compile->source] = '\0';
            candidates[count++] = sourceDirectory;
        } else if (!slash)
            candidates[count++] = ".";
        for (int i = 0; i < compile->quoteCount; ++i)
            candidates[count++] = compile->quoteDirectories[i];
    }
    for (int i = 0; i < compile->directoryCount; ++i)
        candidates[count++] = compile->directories[i];
    for (int i = 0; i < count; ++i) {
        const int written =
            strcmp(candidates[i], ".") == 0
                ? snprintf(found, size, "%.*s", (int)length, name)
                : snprintf(found, size, "%s/%.*s", candidates[i], (int)length, name);
        if (written > 0 && (size_t)written < size && exists(found))
            return 1;
    }
    return 0;
}

static const char *skipBlanks(const char *p, const char *end)
{
    while (p < end && (*p == ' ' || *p == '\t'))
        ++p;
    return p;
}

/* The header an #include line from `line` to `end` names, or NULL for any other line;
 * `quoted` tells "name" from <name>. */
static const char *includedName(const char *line, const char *end, size_t *length, int *quoted)
{
    const char *p = skipBlanks(line, end);
    if (p == end || *p != '#')
        return NULL;
    p = skipBlanks(p + 1, end);
    if ((size_t)(end - p) <= 7 || strncmp(p, "include", 7) != 0)
        return NULL;
    p = skipBlanks(p + 7, end);
    const char close = *p == '"' ? '"' : *p == '<' ? '>' : '\0';
    const char *last = close ? memchr(p + 1, close, (size_t)(end - p - 1)) : NULL;
    if (!last)
        return NULL;
    *length = (size_t)(last - p - 1);
    *quoted = close == '"';
    return p + 1;
}

/* The dependency file of `compile`: the target, the source, then each included header. */
static int writeDependencyFile(const struct Compile *compile, const struct Text *source)
{
    struct Text text = {0};
    appendString(&text, compile->target ? compile->target : compile->output);
    appendString(&text, ": ");
    appendString(&text, compile->source);
    int result = 0;
    for (const char *line = source->data; *line && result == 0;) {
        const char *end = strchr(line, '\n');
        if (!end)
            end = line + strlen(line);
        size_t length;
        int quoted;
        const char *name = includedName(line, end, &length, &quoted);
        char found[4096];
        if (name && findHeader(compile, name, length, quoted, found, sizeof found)) {
            appendString(&text, " \\\n ");
            appendString(&text, found);
        } else if (name) {
            fprintf(stderr, "%s: fatal error: %.*s: No such file or directory\n", compile->source,
                    (int)length, name);
            result = 1;
        }
        line = *end ? end + 1 : end;
    }
    appendString(&text, "\n");
    if (result == 0)
        result = writeFile(compile->dependencyFile, text.data, text.size);
    free(text.data);
    return result;
}

static int compile(int argc, char **argv)
{
    struct Compile compile;
    parseCompile(argc, argv, &compile);
    if (!compile.source || !compile.output) {
        fprintf(stderr, "%s: no source or no -o file\n", program);
        return 1;
    }
    struct Text source = {0};
    if (readFile(compile.source, &source) != 0)
        return 1;
    int result = compile.dependencyFile ? writeDependencyFile(&compile, &source) : 0;
    free(source.data);
    static const char assembly[] = "\t.text\n";
    return result ? result : writeFile(compile.output, assembly, sizeof assembly - 1);
}

static int assemble(int argc, char **argv)
{
    const char *input = NULL;
    const char *output = NULL;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "-o") == 0 && i + 1 < argc)
            output = argv[++i];
        else if (argv[i][0] != '-' && !input)
            input = argv[i];
    }
    if (!output) {
        fprintf(stderr, "%s: no -o file\n", program);
        return 1;
    }
    struct Text text = {0};
    if (input && readFile(input, &text) != 0)
        return 1;
    free(text.data);
    static const char object[] = "fake object\n";
    return writeFile(output, object, sizeof object - 1);
}

static int archive(int argc, char **argv)
{
    if (argc < 3) {
        fprintf(stderr, "%s: usage: ar KEYS ARCHIVE MEMBER...\n", program);
        return 1;
    }
    struct Text text = {0};
    appendString(&text, "!<arch>\n");
    for (int i = 3; i < argc; ++i) {
        if (!exists(argv[i])) {
            errno = ENOENT;
            free(text.data);
            return fail("cannot add", argv[i]);
        }
        appendString(&text, basenameOf(argv[i]));
        appendString(&text, "\n");
    }
    const int result = writeFile(argv[2], text.data, text.size);
    free(text.data);
    return result;
}

static int other(int argc, char **argv)
{
    for (int i = 1; i + 1 < argc; ++i)
        if (strcmp(argv[i], "-o") == 0)
            return writeFile(argv[i + 1], "", 0);
    return 0;
}

int main(int argc, char **argv)
{
    program = basenameOf(argv[0]);
    if (strcmp(program, "cc1") == 0 || strcmp(program, "cc1plus") == 0)
        return compile(argc, argv);
    if (strcmp(program, "as") == 0)
        return assemble(argc, argv);
    if (strcmp(program, "ar") == 0)
        return archive(argc, argv);
    return other(argc, argv);
}
