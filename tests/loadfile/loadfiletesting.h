#pragma once

#include "foundation/hexception.h"
#include "loadfile/loadfileinterface.h"
#include "support/testsupport.h"

#include <QFile>

#include <memory>
#include <string>

/// The main list of `file` as "ADDRESS+LENGTH" items in hexadecimal, one blank between.
inline std::string layout(LoadFileInterface &file)
{
    std::string text;
    for (const auto &section : file.loadFileSections()->list()) {
        text += text.empty() ? "" : " ";
        text += QStringLiteral("%1+%2")
                    .arg(section->address(), 0, 16)
                    .arg(section->length(), 0, 16)
                    .toStdString();
    }
    return text;
}

/// The bytes of `file`'s section number `index`.
inline std::string bytesOf(LoadFileInterface &file, int index = 0)
{
    const auto &section = file.loadFileSections()->list().at(index);
    return std::string(reinterpret_cast<const char *>(section->data()), section->length());
}

/// A reader of type `Reader` over a file holding `text`, kept in a scratch directory.
template <class Reader> std::unique_ptr<Reader> readerOf(const QByteArray &text)
{
    ScratchDir dir;
    return std::make_unique<Reader>(QFile::encodeName(dir.write("image", text)).constData());
}

/// What `Reader` throws for a file holding `text`, or "no error".
template <class Reader> std::string errorOf(const QByteArray &text)
{
    try {
        readerOf<Reader>(text);
    } catch (const HException &error) {
        return error.message();
    }
    return "no error";
}
