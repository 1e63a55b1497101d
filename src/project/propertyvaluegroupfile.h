#pragma once

#include "xml/xmlpp2.h"

#include <QDateTime>
#include <QList>
#include <QString>

class PropertyValueGroupClass;

/// A loaded property group file: its document, read through the XML preprocessor, and one
/// group class per `group` element of the root, which it owns.
class PropertyValueGroupFile : public XMLPP2
{
public:
    /// A file not yet loaded.
    explicit PropertyValueGroupFile(const QString &path);
    ~PropertyValueGroupFile() override;

    /// Reads the file and makes its group classes; false if it can't be read or parsed or has
    /// no root element.
    bool load();
    /// Whether the file on disk still has the time it had when it was loaded.
    bool isUpToDate() const;
    /// The first group saved as `name`, or null.
    PropertyValueGroupClass *getGroupClass(const QString &name) const;
    /// Reports a problem found while reading the file.
    void warning(const QString &message);

    /// The file as given to the constructor.
    QString path() const { return m_path; }
    /// The groups in file order.
    const QList<PropertyValueGroupClass *> &groupClasses() const { return m_groupClasses; }

    void error(const QString &message) override { warning(message); }

private:
    QString m_path;
    QDateTime m_lastModified;
    QList<PropertyValueGroupClass *> m_groupClasses;
};
