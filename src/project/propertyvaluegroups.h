#pragma once

#include <QList>
#include <QString>

class PropertyValueGroupClass;
class PropertyValueGroupFile;

/// The property group files loaded so far and the one in use. A file that changed on disk is
/// loaded anew; its old form is kept, since values may still refer to its classes.
class PropertyValueGroups
{
public:
    PropertyValueGroups() = default;
    ~PropertyValueGroups();
    PropertyValueGroups(const PropertyValueGroups &) = delete;
    PropertyValueGroups &operator=(const PropertyValueGroups &) = delete;

    /// Makes the file `path` current, loading it unless it is loaded and unchanged; "None", or
    /// a file that can't be loaded, leaves no file current.
    void setGroupFile(const QString &path);
    /// The first group of the current file saved as `name`; null without a current file.
    PropertyValueGroupClass *getGroupClass(const QString &name) const;

    /// The file in use, or null.
    PropertyValueGroupFile *currentFile() const { return m_current; }
    /// The files loaded and still up to date when last asked for, in load order.
    const QList<PropertyValueGroupFile *> &files() const { return m_files; }
    /// The files replaced because they changed on disk.
    const QList<PropertyValueGroupFile *> &outdatedFiles() const { return m_outdated; }

private:
    QList<PropertyValueGroupFile *> m_files;
    QList<PropertyValueGroupFile *> m_outdated;
    PropertyValueGroupFile *m_current = nullptr;
};

/// The process-wide property groups.
extern PropertyValueGroups propertyValueGroups;
