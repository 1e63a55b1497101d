#pragma once

#include "foundation/hexception.h"
#include "loadfile/loadfileinterface.h"
#include "support/testsupport.h"

#include <QFile>

#include <string>

/// What `file` holds: its sections as "ADDRESS:BYTES" and its entry point as "start ADDRESS",
/// all in hexadecimal and one blank apart.
inline std::string contents(LoadFileInterface &file)
{
    QStringList parts;
    for (const auto &section : file.loadFileSections()->list())
        parts +=
            QString::number(section->address(), 16) + ':' +
            QByteArray(reinterpret_cast<const char *>(section->data()), section->length()).toHex();
    if (file.hasEntryPoint())
        parts += "start " + QString::number(file.entryPoint(), 16);
    return parts.join(' ').toStdString();
}

/// What a `Reader` makes of a file holding `text`: its contents, or what it throws.
template <class Reader> std::string readOf(const QByteArray &text)
{
    ScratchDir dir;
    try {
        Reader file(QFile::encodeName(dir.write("image", text)).constData());
        return contents(file);
    } catch (const HException &error) {
        return error.message();
    }
}
