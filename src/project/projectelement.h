#pragma once

#include "foundation/path.h"
#include "project/propertyinheritanceitem.h"

#include <QDateTime>
#include <QFileInfo>
#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>

class XMLElement;

/// A node of a loaded solution: a solution, configuration, project, folder or file. It owns
/// its children; every setting lives in the attributes of a `configuration` child.
class ProjectElement
{
public:
    /// The element types; the numbers are those of the file format's tags.
    enum Type { NoType = -1, Solution = 0, Configuration = 1, Project = 2, Folder = 3, File = 4 };

    /// The built-in configuration, present as a name whether or not any element has it.
    static const QString &commonConfiguration();

    /// An element of `type`.
    explicit ProjectElement(int type);
    /// An element for an XML tag; a tag outside the five gives `NoType`.
    explicit ProjectElement(const QString &tag);
    /// A copy of `other`'s type and attributes, without children, dates or file data.
    explicit ProjectElement(const ProjectElement *other);
    /// Deletes the children, however deep the tree.
    ~ProjectElement();
    ProjectElement(const ProjectElement &) = delete;
    ProjectElement &operator=(const ProjectElement &) = delete;

    /// The tag of an element type, or a null string for any other number.
    static QString tagName(int type);
    /// The type of an XML tag, or `NoType`.
    static int typeOfTag(const QString &tag);

    // Tree.

    /// The element type (see `Type`).
    int type() const { return m_type; }
    ProjectElement *parent() const { return m_parent; }
    ProjectElement *nextSibling() const { return m_nextSibling; }
    ProjectElement *firstChild() const { return m_firstChild; }
    /// The configuration children by name; the later of two of one name is the one held.
    const QMap<QString, ProjectElement *> &configurationChildren() const
    {
        return m_configurationChildren;
    }
    /// Links `child` behind the last child and takes ownership of it.
    void appendChild(ProjectElement *child);
    /// Unlinks `child` and hands ownership back to the caller.
    void removeChild(ProjectElement *child);
    /// The element following `element` in a pre-order walk that never leaves `boundary`'s
    /// subtree (nor moves to `boundary`'s siblings); with `descend` false, `element`'s own
    /// children are passed over. Null at the end.
    static ProjectElement *nextInWalk(const ProjectElement *element, const ProjectElement *boundary,
                                      bool descend = true);
    /// The nearest element of `type` at or above this one, or null.
    ProjectElement *nearest(int type) const;

    /// The tag of this element's type.
    QString getTagName() const { return tagName(m_type); }
    /// The committed "Name" attribute; asking makes an empty entry if there is none.
    QString getName();
    /// Sets the "Name" attribute.
    void setName(const QString &name, bool fromTemplate = false);

    // Attributes.

    /// Whether `name` is set, pending changes of a transaction included.
    bool hasAttribute(const QString &name) const;
    /// The value of `name`, pending changes included; a null string if unset.
    QString attribute(const QString &name) const;
    /// Sets an attribute; outside a transaction it marks the element modified and stamps it.
    void setAttribute(const QString &name, const QString &value, bool fromTemplate = false);
    /// Removes an attribute; outside a transaction the stamp stays after it is gone.
    void removeAttribute(const QString &name);
    /// Stores an attribute as read from a file: no stamp, no modified mark.
    void storeAttribute(const QString &name, const QString &value);
    /// Erases an attribute without a stamp or modified mark.
    void eraseAttribute(const QString &name);
    /// The committed attributes, by name.
    const QMap<QString, QString> &attributes() const { return m_attributes; }
    /// Whether the last setter of `name` said it came from a template.
    bool attributeFromTemplate(const QString &name) const
    {
        return m_fromTemplate.value(name, false);
    }
    /// Reads the attributes of `xml` (Latin-1) into the map, as from a file.
    void setAttributesFrom(const XMLElement *xml);
    /// Writes the attribute map onto `xml`, in name order; strings go to the current pool.
    void getAttributesFrom(XMLElement *xml) const;

    // Transactions.

    /// Opens a transaction on this element and every descendant.
    void startTransaction();
    /// Applies the pending changes here and below, stamping them now.
    void commitTransaction();
    /// Drops the pending changes here and below.
    void rollbackTransaction();
    /// Whether a transaction is open on this element.
    bool inTransaction() const { return m_inTransaction; }

    // Modification state and dates.

    /// Whether the element differs from its file.
    bool modified() const { return m_modified; }
    void setModified(bool modified) { m_modified = modified; }
    /// The time of the last change of `name` in this process, if there was one.
    bool hasModifiedProperty(const QString &name, QDateTime &out) const;
    /// Forgets every change time.
    void clearModifiedDates() { m_modifiedDates.clear(); }
    /// The latest change time of any property of any element in this process; invalid when
    /// nothing was ever changed, as in a console build.
    /// Whether any element's setting was changed in this run after `since`.
    static bool changedAfter(const QDateTime &since)
    {
        return s_latestModification.isValid() && s_latestModification > since;
    }
    /// Whether the `configuration` child decides if `saveName` changed after `since`; if it
    /// does, `changed` holds the answer.
    bool propertyHasChanged(const QString &configuration, const QString &saveName,
                            const QDateTime &since, bool &changed) const;

    // Configurations.

    /// Whether the element has any configuration child.
    bool hasConfigurationChildren() const { return !m_configurationChildren.isEmpty(); }
    /// The configuration child of that name, or null.
    ProjectElement *getConfigurationElement(const QString &configuration) const;
    /// Looks `saveName` up in the `configuration` child and, if found, assigns it to an empty
    /// `result` or appends ";" and it; a trace, if given, records the find.
    bool getProperty(const QString &configuration, const QString &saveName, QString &result,
                     PropertyInheritanceInformation *trace) const;

    // File data of file and solution elements.

    /// Fixes the element's file to `path` without touching "file_name".
    void setPath(const QString &path);
    /// Makes the element stand for the file `path`: "file_name" becomes the form stored in
    /// files, and the name the file name.
    void setFile(const QString &path, bool fromTemplate = false);
    /// Makes the element stand for `name`, a path that may hold macros, stored as it is.
    void setFileName(const QString &name, bool fromTemplate = false);
    /// Works out where the file `info` lies relative to its project.
    void doFileStuff(const QFileInfo &info);
    /// Works out the file data from "file_name" if that hasn't been done.
    void checkDoFileStuff();
    /// The absolute file of the element.
    const Path &path();
    /// The file as last set, without working it out from "file_name"; empty if never set.
    const Path &storedPath() const;
    const QFileInfo &fileInfo();
    /// The full name of the element's file, as `fileInfo()` would give it, without making one.
    QString filePath();
    /// The directory of the project the file belongs to.
    QString projectDirectory();
    /// The file relative to its project directory, or absolute if it has no relative form.
    QString relativePath();
    /// The file type worked out before, or empty.
    QString cachedFileType() const { return m_cachedFileType; }
    void setCachedFileType(const QString &type) { m_cachedFileType = type; }

    // Solution data.

    /// Whether this solution stands for an `import` in its parent's file.
    bool imported() const { return m_imported; }
    void setImported(bool imported) { m_imported = imported; }
    /// The projects of this solution and its imports, by their names as seen from here.
    QMap<QString, ProjectElement *> &projects() { return m_projects; }
    const QMap<QString, ProjectElement *> &projects() const { return m_projects; }
    /// The "inherited_configurations" lists of this solution's configurations, parsed.
    const QMap<QString, QStringList> &inheritedConfigurations() const
    {
        return m_inheritedConfigurations;
    }
    /// Parses the "inherited_configurations" lists of the configuration children again.
    void updateInheritenceMap();
    /// The file's last-modified time at load or save.
    QDateTime loadDate() const { return m_loadDate; }
    void setLoadDate(const QDateTime &date) { m_loadDate = date; }

private:
    /// Deletes the children without recursion, leaving this element childless.
    void deleteChildren();

    ProjectElement *m_parent = nullptr;
    ProjectElement *m_nextSibling = nullptr;
    ProjectElement *m_firstChild = nullptr;
    /// The end of the child chain, so that appending doesn't walk it.
    ProjectElement *m_lastChild = nullptr;
    QMap<QString, ProjectElement *> m_configurationChildren;
    int m_type = NoType;
    QMap<QString, QString> m_attributes;
    bool m_modified = false;
    QMap<QString, QDateTime> m_modifiedDates;
    static QDateTime s_latestModification;
    /// Records that `name` changed now.
    void stampModified(const QString &name);
    QMap<QString, QString> m_pendingSet;
    QMap<QString, QString> m_pendingRemoved;
    bool m_inTransaction = false;
    bool m_fileInfoValid = false;
    /// Made from `m_filePath` when first asked for after the file was worked out: a build
    /// asks for few of them.
    mutable Path m_path;
    mutable bool m_pathStale = false;
    /// The full name of the element's file; its QFileInfo is made only when someone asks for
    /// it, as thousands of elements rarely need one.
    QString m_filePath;
    mutable std::unique_ptr<QFileInfo> m_fileInfo;
    QString m_projectDirectory;
    QString m_relativePath;
    QString m_cachedFileType;
    bool m_imported = false;
    QMap<QString, ProjectElement *> m_projects;
    QMap<QString, QStringList> m_inheritedConfigurations;
    QDateTime m_loadDate;
    QMap<QString, bool> m_fromTemplate;
};
