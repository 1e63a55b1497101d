#include "properties/propertyclass.h"

#include "xml/xmlelement.h"


namespace {
const char *const typeNames[] = {
    "Boolean",      "Integer", "IntegerHex", "IntegerRange",   "String",  "FileName",
    "ProjFileName", "Binary",  "AID",        "StringList",     "DirPath", "DirPathList",
    "Enumeration",  "Color",   "Font",       "FixedPitchFont", "Custom"};
const int typeCount = int(sizeof typeNames / sizeof typeNames[0]);
} // namespace

PropertyClass::PropertyClass(const QString &saveName, Type type, const QString &group,
                             const QString &shortDescription, const QString &longDescription,
                             const QString &defaultValue)
    : m_saveName(saveName), m_group(group), m_shortDescription(shortDescription),
      m_longDescription(longDescription), m_defaultValue(defaultValue), m_type(type)
{
    if (type == Boolean && defaultValue.isNull())
        m_defaultValue = QStringLiteral("No");
}

PropertyClass::PropertyClass(const QString &saveName, Type type, int minimum, int maximum,
                             const QString &group, const QString &shortDescription,
                             const QString &longDescription, int defaultValue)
    : m_saveName(saveName), m_group(group), m_shortDescription(shortDescription),
      m_longDescription(longDescription), m_defaultValue(QString::number(defaultValue)),
      m_type(type), m_minimum(minimum), m_maximum(maximum)
{
}

PropertyClass::PropertyClass(const QString &saveName, const QString &group,
                             const QString &shortDescription, const QString &longDescription,
                             bool defaultValue, const QStringList &enumerates)
    : m_saveName(saveName), m_group(group), m_shortDescription(shortDescription),
      m_longDescription(longDescription), m_type(Boolean), m_enumerates(enumerates)
{
    m_defaultValue = enumerates.value(defaultValue ? 1 : 0);
}

PropertyClass::PropertyClass(const QString &saveName, Type type, const QStringList &enumerates,
                             const QString &group, const QString &shortDescription,
                             const QString &longDescription, const QString &defaultValue)
    : m_saveName(saveName), m_group(group), m_shortDescription(shortDescription),
      m_longDescription(longDescription), m_defaultValue(defaultValue), m_type(type),
      m_enumerates(enumerates)
{
}

PropertyClass::PropertyClass(const XMLElement *element)
{
    const auto attribute = [element](const char *name) {
        return QString::fromLatin1(element->attribute(name));
    };
    m_saveName = attribute("name");
    typeFromName(attribute("type"), m_type);
    m_group = attribute("group");
    m_shortDescription = attribute("short");
    m_longDescription = attribute("long");
    if (element->hasAttribute("default"))
        m_defaultValue = attribute("default");
    if (element->hasAttribute("minimum"))
        m_minimum = attribute("minimum").toInt(nullptr, 10);
    if (element->hasAttribute("maximum"))
        m_maximum = attribute("maximum").toInt(nullptr, 10);
    if (element->hasAttribute("enumeration"))
        m_enumerates = attribute("enumeration").split(QLatin1Char(';'), Qt::SkipEmptyParts);
}

PropertyClass::~PropertyClass() = default;

QString PropertyClass::typeName(Type type)
{
    const int index = int(type);
    return index >= 0 && index < typeCount ? QString::fromLatin1(typeNames[index]) : QString();
}

bool PropertyClass::typeFromName(const QString &name, Type &type)
{
    for (int i = 0; i < typeCount; ++i) {
        if (name == QLatin1String(typeNames[i])) {
            type = Type(i);
            return true;
        }
    }
    return false;
}

QStringList PropertyClass::enumerates() const
{
    if (m_type == Boolean && m_enumerates.isEmpty())
        return {QStringLiteral("No"), QStringLiteral("Yes")};
    return m_enumerates;
}
