#pragma once

#include "foundation/product.h"
#include "support/testsupport.h"

#include <QSettings>
#include <memory>

/// Points the settings store at a fresh scratch directory while it lives. QSettings keeps the
/// user directory it found first, so the path is set directly as well as through HOME and
/// XDG_CONFIG_HOME; the file lies where XDG_CONFIG_HOME would put it.
class IsolatedSettingsStore
{
public:
    IsolatedSettingsStore() : home(qgetenv("HOME")), configHome(qgetenv("XDG_CONFIG_HOME"))
    {
        qputenv("HOME", scratch.path().toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", scratch.path().toLocal8Bit());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, scratch.path());
    }
    ~IsolatedSettingsStore()
    {
        qputenv("HOME", home);
        qputenv("XDG_CONFIG_HOME", configHome);
    }

    /// The INI file of the store.
    QString storeFile() const
    {
        return scratch.file(QStringLiteral("%1/%2.ini").arg(Get_OWNER(), Get_BENCH_BRANDING()));
    }
    /// A direct view of the store, as another program would have it.
    static std::unique_ptr<QSettings> open()
    {
        return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                           QString::fromLatin1(Get_OWNER()),
                                           QString::fromLatin1(Get_BENCH_BRANDING()));
    }

    ScratchDir scratch;

private:
    QByteArray home;
    QByteArray configHome;
};
