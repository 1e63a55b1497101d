#pragma once

#include "foundation/product.h"
#include "support/testsupport.h"

#include <QSettings>
#include <memory>

/// Points the settings store at a fresh scratch directory while it lives. QSettings keeps the
/// user directory it found first, so besides HOME and XDG_CONFIG_HOME the path is also set
/// directly; the file then lies where XDG_CONFIG_HOME would put it.
class IsolatedSettingsStore
{
public:
    IsolatedSettingsStore()
        : previousHome(qgetenv("HOME")), previousConfigHome(qgetenv("XDG_CONFIG_HOME"))
    {
        qputenv("HOME", scratch.path().toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", scratch.path().toLocal8Bit());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, scratch.path());
    }
    ~IsolatedSettingsStore()
    {
        qputenv("HOME", previousHome);
        qputenv("XDG_CONFIG_HOME", previousConfigHome);
    }

    /// The INI file of the store.
    QString storeFile() const
    {
        return scratch.file(QString::fromLatin1(Get_OWNER()) + "/" +
                            QString::fromLatin1(Get_BENCH_BRANDING()) + ".ini");
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
    QByteArray previousHome;
    QByteArray previousConfigHome;
};
