#include "properties/propertyvalue.h"

#include "properties/propertyclass.h"
#include "properties/stringlistcodec.h"

#include <QRect>

namespace {
bool usesEnumerates(const PropertyClass *propertyClass)
{
    return propertyClass && (propertyClass->type() == PropertyClass::Enumeration ||
                             propertyClass->type() == PropertyClass::Boolean);
}
} // namespace

PropertyValue::PropertyValue() = default;

PropertyValue::PropertyValue(PropertyClass *propertyClass)
    : m_readOnly(propertyClass && propertyClass->readOnly()), m_visible(true),
      m_propertyClass(propertyClass)
{
}

PropertyValue::~PropertyValue() = default;

bool PropertyValue::readOnly() const
{
    return m_readOnly;
}

bool PropertyValue::inherited() const
{
    return true;
}

void PropertyValue::setPropertyClass(PropertyClass *propertyClass)
{
    if (!propertyClass)
        return;
    m_propertyClass = propertyClass;
    m_readOnly = propertyClass->readOnly();
    setPropertyValue(propertyClass->defaultValue());
    m_visible = true;
}

QString PropertyValue::toString() const
{
    return propertyValue();
}

QString PropertyValue::textOrDefault() const
{
    const QString text = propertyValue();
    if (text.isEmpty() && m_propertyClass)
        return m_propertyClass->defaultValue();
    return text;
}

bool PropertyValue::toBool() const
{
    const QString text = textOrDefault();
    const int index = m_propertyClass ? m_propertyClass->enumerates().indexOf(text) : -1;
    if (index == 0)
        return false;
    if (index == 1)
        return true;
    const QString lower = text.toLower();
    return lower == QLatin1String("true") || lower == QLatin1String("yes") ||
           lower == QLatin1String("1");
}

int PropertyValue::toInt() const
{
    const QString text = textOrDefault();
    if (usesEnumerates(m_propertyClass))
        return qMax(0, int(m_propertyClass->enumerates().indexOf(text)));
    return text.toInt(nullptr, 10);
}

QStringList PropertyValue::toStringList(bool keepEmpty) const
{
    return splitStringList(textOrDefault(), keepEmpty);
}

QRect PropertyValue::toRect() const
{
    const QString text = propertyValue();
    if (text.isNull())
        return QRect();
    const QStringList fields = text.split(QLatin1Char(','));
    if (fields.size() != 4)
        return QRect();
    int numbers[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        numbers[i] = fields.at(i).toInt(&ok, 10);
        if (!ok)
            return QRect();
    }
    return QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
}

void PropertyValue::setValue(const QString &value)
{
    setPropertyValue(value);
}

void PropertyValue::setValue(const char *value)
{
    setPropertyValue(QString::fromLatin1(value));
}

void PropertyValue::setValue(const QStringList &value)
{
    setPropertyValue(joinStringList(value));
}

void PropertyValue::setValue(const QRect &value)
{
    setPropertyValue(QStringLiteral("%1,%2,%3,%4")
                         .arg(value.left())
                         .arg(value.top())
                         .arg(value.width())
                         .arg(value.height()));
}

void PropertyValue::setValue(int value)
{
    const PropertyClass::Type type =
        m_propertyClass ? m_propertyClass->type() : PropertyClass::Custom;
    if (usesEnumerates(m_propertyClass)) {
        const QStringList enumerates = m_propertyClass->enumerates();
        if (value < 0 || value >= enumerates.size()) {
            qWarning("PropertyValue::setValue(int): Setting an enumeration to a value which isn't "
                     "in its enumerates");
            setPropertyValue(QString());
            return;
        }
        setPropertyValue(enumerates.at(value));
    } else if (type == PropertyClass::Integer || type == PropertyClass::IntegerRange) {
        setPropertyValue(QString::number(value));
    } else {
        qWarning("PropertyValue::setValue(int): Setting a non-integer property");
    }
}

void PropertyValue::setValue(bool value)
{
    if (!m_propertyClass || m_propertyClass->type() != PropertyClass::Boolean)
        qWarning("PropertyValue::setValue(int): Setting a non-Boolean property");
    setValue(value ? 1 : 0);
}
