#pragma once

#include <cstdio>
#include <string>

class XMLNode;

/// Writes a node tree as XML text to a file, without recursion.
class XMLWriter
{
public:
    XMLWriter(FILE *file, unsigned int indentWidth) : file(file), indentWidth(indentWidth) {}

    /// Writes `node` and its subtree at nesting `level`.
    void writeNode(const XMLNode *node, unsigned int level);
    /// Writes `text` with markup characters and non-printable bytes as references.
    void saveString(const char *text);
    /// Writes `text` as it is.
    void write(const char *text);
    /// Writes out what is buffered; false if the file reported an error.
    bool flush();

private:
    void indent(unsigned int level);
    void newline();
    void openElement(const XMLNode *node, bool &hasChildren);

    FILE *file;
    unsigned int indentWidth;
    std::string buffer;
};
