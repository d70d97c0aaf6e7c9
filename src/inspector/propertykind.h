// SPDX-License-Identifier: MIT
// What kind of editor a property value needs, and how typed input becomes a value.
#pragma once

#include <QMetaEnum>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace tessal {

enum class TPropertyKind : std::uint8_t {
    Bool,
    Integer, // whole numbers of any width; the range comes from the type
    Real,    // float and double
    Enum,    // a Q_ENUM, edited by name
    Set,     // bits named by a TSetDescription (font styles)
    Color,   // a TColor (0x00BBGGRR) or a QColor
    Font,    // a TFont or a QFont
    Pen,
    Brush,
    String,
    StringList,
    Picture, // a TBitmap
    UserData,
    Menu,      // a QMenu whose items are edited in place
    Object,    // a QObject of this library whose properties show as children (the grid settings)
    Reference, // a link to another object (a label): chosen by name among the open windows
    Event,     // a handler the application assigns in code; shown, never edited
    Other      // anything else: shown as text, read-only
};

// One property as the inspector sees it: the meta-type, the name, the enumeration (when
// Kind is Enum) and the class that holds the value (a gadget's name for nested values).
struct TPropertyType
{
    QMetaType Type;
    QString Name;
    TPropertyKind Kind = TPropertyKind::Other;
    QMetaEnum Enumerator;
    QByteArray Holder;
};

// The kind of a property. Colours of the component are plain unsigned 32-bit values;
// they are recognised by their name, which always contains "Color".
TPropertyKind KindOf(const QMetaType &type, const QString &name, const QByteArray &holder,
                     bool isEnum);

// The named bits of a set property.
struct TSetBit
{
    QString Name;
    int Bit;
};
std::vector<TSetBit> SetBitsOf(const TPropertyType &type);

// The text a grid cell shows for a value.
QString DisplayText(const TPropertyType &type, const QVariant &value);

// Turns editor input (text from a line edit, a name, or an already typed value) into a
// value of the property's type. False, with a message naming the property and the problem,
// when the input cannot be parsed or lies outside the range of the type or of the property.
bool ConvertInput(const TPropertyType &type, const QVariant &input, QVariant &value,
                  QString &error);

// The objects a reference of type can point at: those of its class in the application's
// windows, by object name (unnamed ones are left out).
std::vector<QObject *> ReferenceCandidates(const QMetaType &type);
// A value of a pointer type holding object (which must be of that class or nullptr).
QVariant ReferenceValue(const QMetaType &type, QObject *object);

// An enumeration value of type from its integer.
QVariant EnumValue(const QMetaType &type, int value);
int EnumInt(const QVariant &value);

} // namespace tessal
