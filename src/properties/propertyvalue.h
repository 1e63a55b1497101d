#pragma once

#include <QString>
#include <QStringList>

class PropertyClass;
class QColor;
class QFont;
class QRect;

/// One value of a setting, held as text at rest and converted on access. Subclasses decide
/// where the text lives.
class PropertyValue
{
public:
    /// A value without a class: read-only, not transient, not visible.
    PropertyValue();
    /// A visible value of `propertyClass`, read-only as the class says.
    explicit PropertyValue(PropertyClass *propertyClass);
    virtual ~PropertyValue();
    PropertyValue(const PropertyValue &) = delete;
    PropertyValue &operator=(const PropertyValue &) = delete;

    /// True if the value may not be changed.
    virtual bool readOnly() const;
    /// True if the value comes from elsewhere rather than being set here.
    virtual bool inherited() const;
    /// Stores `value` as the text of the value.
    virtual void setPropertyValue(const QString &value) = 0;
    /// The text of the value; may be empty, in which case conversions use the default.
    virtual QString propertyValue() const = 0;

    /// The setting this is a value of, or null.
    PropertyClass *propertyClass() const { return m_propertyClass; }
    /// Binds the value to `propertyClass`, taking its read-only flag and default, and shows it.
    void setPropertyClass(PropertyClass *propertyClass);
    /// Shows or hides the value.
    void setVisible(bool visible) { m_visible = visible; }
    /// True if the value is shown.
    bool visible() const { return m_visible; }
    /// Makes the value read-only or not.
    void setReadOnly(bool readOnly) { m_readOnly = readOnly; }
    /// True if the value is owned by the list that holds it.
    bool transient() const { return m_transient; }
    /// Says whether the value is owned by the list that holds it.
    void setTransient(bool transient) { m_transient = transient; }

    /// The text of the value, as `propertyValue`.
    QString toString() const;
    /// True for the second entry of the class's enumerates, or a text such as "yes" or "1".
    bool toBool() const;
    /// The index in the enumerates for Boolean and Enumeration settings, else the decimal number.
    int toInt() const;
    /// The items of a list value.
    QStringList toStringList(bool keepEmpty = false) const;
    /// The colour; "Automatic" gives the invalid colour.
    QColor toColor() const;
    /// The font, or `fallback` if there is no text.
    QFont toFont(const QFont &fallback) const;
    /// The rectangle "x,y,width,height"; the invalid rectangle if the text isn't one.
    QRect toRect() const;

    /// Stores `value`.
    void setValue(const QString &value);
    /// Stores `value`.
    void setValue(const char *value);
    /// Stores the list encoded as one string.
    void setValue(const QStringList &value);
    /// Stores "x,y,width,height".
    void setValue(const QRect &value);
    /// Stores the colour's "#rrggbb" name, or "Automatic" for the invalid colour.
    void setValue(const QColor &value);
    /// Stores the font's description.
    void setValue(const QFont &value);
    /// Stores the enumerate at `value` for Boolean and Enumeration settings, else the number.
    void setValue(int value);
    /// Stores the Boolean state, as `setValue(int)` with 0 or 1.
    void setValue(bool value);
    /// Refused: an enum such as Qt::red would silently pick `setValue(int)`; pass a QColor.
    void setValue(Qt::GlobalColor value) = delete;

private:
    /// The text, or the class's default if it is empty.
    QString textOrDefault() const;

    bool m_readOnly = true;
    bool m_transient = false;
    bool m_visible = false;
    PropertyClass *m_propertyClass = nullptr;
};
