// The colour and font values of properties need the GUI module. The programs never use them,
// and they start faster without its libraries, so these live in a library of their own.
#include "properties/propertyclass.h"
#include "properties/propertyvalue.h"

#include <QColor>
#include <QFont>

namespace {
const char automaticColor[] = "Automatic";
} // namespace

PropertyClass::PropertyClass(const QString &saveName, const QString &group,
                             const QString &shortDescription, const QString &longDescription,
                             const QColor &defaultValue)
    : m_saveName(saveName), m_group(group), m_shortDescription(shortDescription),
      m_longDescription(longDescription), m_defaultValue(defaultValue.name()), m_type(Color)
{
}

QColor PropertyValue::toColor() const
{
    const QString text = textOrDefault();
    if (text == QLatin1String(automaticColor))
        return QColor();
    return QColor(text);
}

QFont PropertyValue::toFont(const QFont &fallback) const
{
    const QString text = textOrDefault();
    if (text.isEmpty())
        return fallback;
    QFont font;
    font.fromString(text);
    return font;
}

void PropertyValue::setValue(const QColor &value)
{
    setPropertyValue(value.isValid() ? value.name() : QString::fromLatin1(automaticColor));
}

void PropertyValue::setValue(const QFont &value)
{
    setPropertyValue(value.toString());
}
