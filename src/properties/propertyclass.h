#pragma once

#include <QString>
#include <QStringList>

class QColor;
class XMLElement;

/// An editor of a property in an interactive front end; opaque here and never set.
class PropertyEditor;

/// The description of one setting: the name it is saved under, its type, the texts that present
/// it, its default and its limits. Shared by every value of the setting.
class PropertyClass
{
public:
    /// The kinds of setting; each name is also its keyword in the XML form.
    enum Type {
        Boolean,
        Integer,
        IntegerHex,
        IntegerRange,
        String,
        FileName,
        ProjFileName,
        Binary,
        AID,
        StringList,
        DirPath,
        DirPathList,
        Enumeration,
        Color,
        Font,
        FixedPitchFont,
        Custom
    };

    /// A setting of any type with a default text; a Boolean one without a default gets "No".
    PropertyClass(const QString &saveName, Type type, const QString &group,
                  const QString &shortDescription, const QString &longDescription,
                  const QString &defaultValue = QString());
    /// A numeric setting with limits; the default is stored as decimal text.
    PropertyClass(const QString &saveName, Type type, int minimum, int maximum,
                  const QString &group, const QString &shortDescription,
                  const QString &longDescription, int defaultValue);
    /// A Boolean setting with its own two state names, false first.
    PropertyClass(const QString &saveName, const QString &group, const QString &shortDescription,
                  const QString &longDescription, bool defaultValue, const QStringList &enumerates);
    /// A setting with a list of allowed texts.
    PropertyClass(const QString &saveName, Type type, const QStringList &enumerates,
                  const QString &group, const QString &shortDescription,
                  const QString &longDescription, const QString &defaultValue = QString());
    /// A colour setting; the default is stored as the colour's "#rrggbb" name.
    PropertyClass(const QString &saveName, const QString &group, const QString &shortDescription,
                  const QString &longDescription, const QColor &defaultValue);
    /// A setting described by the attributes of an XML element ("name", "type", "group",
    /// "short", "long", "default", "minimum", "maximum", "enumeration").
    explicit PropertyClass(const XMLElement *element);
    virtual ~PropertyClass();

    /// The keyword of `type` in the XML form.
    static QString typeName(Type type);
    /// The type whose keyword is `name`; false if there is none.
    static bool typeFromName(const QString &name, Type &type);

    /// The attribute name the setting is saved under.
    QString saveName() const { return m_saveName; }
    /// The heading the setting is listed under.
    QString group() const { return m_group; }
    /// The setting's title.
    QString shortDescription() const { return m_shortDescription; }
    /// The setting's explanation.
    QString longDescription() const { return m_longDescription; }
    /// The text a dialog shows for the setting.
    QString dialogDescription() const { return m_dialogDescription; }
    /// Sets the text a dialog shows for the setting.
    void setDialogDescription(const QString &text) { m_dialogDescription = text; }
    /// The text of a special value or, for file names, a file filter such as "XML (*.xml)".
    QString specialValueText() const { return m_specialValueText; }
    /// Sets the special value text or file filter.
    void setSpecialValueText(const QString &text) { m_specialValueText = text; }
    /// The value when none is set.
    QString defaultValue() const { return m_defaultValue; }
    /// Sets the value when none is set.
    void setDefault(const QString &value) { m_defaultValue = value; }
    /// The unit of the value, such as "bytes".
    QString suffix() const { return m_suffix; }
    /// Sets the unit of the value.
    void setSuffix(const QString &text) { m_suffix = text; }
    /// True if values of the setting may not be changed.
    bool readOnly() const { return m_readOnly; }
    /// Makes values of the setting read-only or not.
    void setReadOnly(bool readOnly) { m_readOnly = readOnly; }
    /// True if the setting may differ between configurations.
    bool perConfiguration() const { return m_perConfiguration; }
    /// Says whether the setting may differ between configurations.
    void setPerConfiguration(bool perConfiguration) { m_perConfiguration = perConfiguration; }
    /// The kind of setting.
    Type type() const { return m_type; }
    /// The allowed texts; a Boolean setting without its own gives "No", "Yes" (false first).
    QStringList enumerates() const;
    /// Sets the allowed texts.
    void setEnumerates(const QStringList &enumerates) { m_enumerates = enumerates; }
    /// The lower limit of a numeric setting.
    int minimum() const { return m_minimum; }
    /// The upper limit of a numeric setting.
    int maximum() const { return m_maximum; }
    /// Attaches an interactive editor; unused by the command-line program.
    void setEditor(PropertyEditor *editor) { m_editor = editor; }
    /// The attached interactive editor, or null.
    PropertyEditor *editor() const { return m_editor; }

private:
    QString m_saveName;
    QString m_group;
    QString m_shortDescription;
    QString m_longDescription;
    QString m_dialogDescription;
    QString m_specialValueText;
    QString m_defaultValue;
    QString m_suffix;
    bool m_readOnly = false;
    bool m_perConfiguration = true;
    Type m_type = Boolean;
    QStringList m_enumerates;
    int m_minimum = 0;
    int m_maximum = 0;
    PropertyEditor *m_editor = nullptr;
};
