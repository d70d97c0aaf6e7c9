// SPDX-License-Identifier: MIT
// Property kinds, display texts and input conversion for the inspector.
#include <tessal/inspector/propertykind.h>
#include <tessal/platform/bitmap.h>
#include <tessal/platform/color.h>
#include <tessal/platform/graphics.h>
#include <tessal/shapes/userdata.h>

#include <QApplication>
#include <QColor>
#include <QFont>
#include <QLocale>
#include <QMenu>
#include <QStringList>

#include <cmath>
#include <cstring>
#include <limits>

namespace tessal {

namespace {

bool IsIntegerType(int id)
{
    switch (id) {
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

// The range of a whole-number type, limited to what a long long holds.
void IntegerRange(int id, qint64 &lo, qint64 &hi)
{
    switch (id) {
    case QMetaType::SChar:
    case QMetaType::Char:
        lo = -128, hi = 127;
        return;
    case QMetaType::UChar:
        lo = 0, hi = 255;
        return;
    case QMetaType::Short:
        lo = -32768, hi = 32767;
        return;
    case QMetaType::UShort:
        lo = 0, hi = 65535;
        return;
    case QMetaType::Int:
        lo = std::numeric_limits<qint32>::min(), hi = std::numeric_limits<qint32>::max();
        return;
    case QMetaType::UInt:
        lo = 0, hi = std::numeric_limits<quint32>::max();
        return;
    default:
        lo = std::numeric_limits<qint64>::min(), hi = std::numeric_limits<qint64>::max();
        return;
    }
}

// Narrower limits of particular properties: values their owners cannot work with.
struct TLimit
{
    const char *Name;
    double Lo;
    double Hi;
};
constexpr TLimit Limits[] = {
    {"Zoom", 0.01, 100},         // factor of the shown size
    {"Ratio", 0.01, 100},        // drawing scale of the readouts
    {"PixelsPerInch", 1, 10000}, // resolution
    {"Size", 1, 1000},           // font size in points
    {"GridWidth", 0.1, 10000},   // grid steps in document pixels
    {"GridHeight", 0.1, 10000},  // (the same)
    {"PageWidth", 1, 10000},     // paper size in millimetres
    {"PageHeight", 1, 10000},    // (the same)
};

bool WithinLimits(const TPropertyType &type, double v, QString &error)
{
    for (const TLimit &limit : Limits) {
        if (type.Name != QLatin1String(limit.Name))
            continue;
        if (v < limit.Lo || v > limit.Hi) {
            error = QObject::tr("%1 must lie between %2 and %3; %4 is outside.")
                        .arg(type.Name)
                        .arg(limit.Lo)
                        .arg(limit.Hi)
                        .arg(v);
            return false;
        }
    }
    return true;
}

bool ToInteger(const TPropertyType &type, const QVariant &input, QVariant &value, QString &error)
{
    bool ok = false;
    const QString text = input.toString().trimmed();
    const qint64 n = QLocale::c().toLongLong(text, &ok);
    if (!ok) {
        error = QObject::tr("“%1” is not a whole number (%2).").arg(text, type.Name);
        return false;
    }
    qint64 lo = 0;
    qint64 hi = 0;
    IntegerRange(type.Type.id(), lo, hi);
    if (n < lo || n > hi) {
        error = QObject::tr("%1 is out of range for %2 (%3 to %4).")
                    .arg(n)
                    .arg(type.Name)
                    .arg(lo)
                    .arg(hi);
        return false;
    }
    if (!WithinLimits(type, double(n), error))
        return false;
    value = QVariant(n);
    return value.convert(type.Type);
}

bool ToReal(const TPropertyType &type, const QVariant &input, QVariant &value, QString &error)
{
    bool ok = false;
    const QString text = input.toString().trimmed();
    const double d = QLocale::c().toDouble(text, &ok);
    if (!ok || !std::isfinite(d)) {
        error = QObject::tr("“%1” is not a number (%2).").arg(text, type.Name);
        return false;
    }
    if (type.Type.id() == QMetaType::Float && std::abs(d) > std::numeric_limits<float>::max()) {
        error = QObject::tr("%1 is out of range for %2.").arg(text, type.Name);
        return false;
    }
    if (!WithinLimits(type, d, error))
        return false;
    value = QVariant(d);
    return value.convert(type.Type);
}

bool ToEnum(const TPropertyType &type, const QVariant &input, QVariant &value, QString &error)
{
    bool isNumber = false;
    int v = input.toInt(&isNumber);
    if (input.metaType().id() == QMetaType::QString) {
        const QByteArray key = input.toString().trimmed().toLatin1();
        v = type.Enumerator.keyToValue(key.constData(), &isNumber);
    }
    if (!isNumber || !type.Enumerator.valueToKey(v)) {
        error = QObject::tr("“%1” is not a value of %2.").arg(input.toString(), type.Name);
        return false;
    }
    value = EnumValue(type.Type, v);
    return true;
}

bool ToBool(const TPropertyType &type, const QVariant &input, QVariant &value, QString &error)
{
    if (input.metaType().id() == QMetaType::Bool) {
        value = input;
        return true;
    }
    const QString text = input.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        value = true;
    else if (text == QLatin1String("false") || text == QLatin1String("0"))
        value = false;
    else {
        error = QObject::tr("%1 is either True or False, not “%2”.").arg(type.Name, text);
        return false;
    }
    return true;
}

bool ToColor(const TPropertyType &type, const QVariant &input, QVariant &value, QString &error)
{
    QColor colour;
    if (input.metaType().id() == QMetaType::QColor)
        colour = input.value<QColor>();
    else if (input.metaType().id() == QMetaType::UInt) {
        value = input;
        return value.convert(type.Type);
    } else
        colour = QColor(input.toString().trimmed());
    if (!colour.isValid()) {
        error = QObject::tr("“%1” is not a colour (%2).").arg(input.toString(), type.Name);
        return false;
    }
    if (type.Type.id() == QMetaType::QColor)
        value = colour;
    else
        value = QVariant::fromValue(TColor(FromQColor(colour)));
    return true;
}

QString ColorText(const QVariant &value)
{
    if (value.metaType().id() == QMetaType::QColor)
        return value.value<QColor>().name();
    const TColor c = value.toUInt();
    if ((c & 0xFF000000u) == clSystemColor)
        return QObject::tr("system colour %1").arg(c & 0xFFu);
    return ToQColor(c).name();
}

QString FontText(const QVariant &value)
{
    if (value.metaType().id() == QMetaType::QFont) {
        const QFont f = value.value<QFont>();
        return QStringLiteral("%1, %2 pt").arg(f.family()).arg(f.pointSize());
    }
    const TFont f = value.value<TFont>();
    QString text = QStringLiteral("%1, %2 pt").arg(f.Name).arg(f.Size());
    if (f.Bold())
        text += QObject::tr(", bold");
    if (f.Italic())
        text += QObject::tr(", italic");
    return text;
}

QString EnumKey(const QMetaEnum &e, int v)
{
    const char *key = e.valueToKey(v);
    return key ? QString::fromLatin1(key) : QString::number(v);
}

} // namespace

TPropertyKind KindOf(const QMetaType &type, const QString &name, const QByteArray &holder,
                     bool isEnum)
{
    const int id = type.id();
    if (isEnum)
        return TPropertyKind::Enum;
    if (holder == "tessal::TFont" && name == QLatin1String("Style"))
        return TPropertyKind::Set;
    if ((id == QMetaType::UInt && name.contains(QLatin1String("Color"))) || id == QMetaType::QColor)
        return TPropertyKind::Color;
    if (id == QMetaType::Bool)
        return TPropertyKind::Bool;
    if (IsIntegerType(id))
        return TPropertyKind::Integer;
    if (id == QMetaType::Double || id == QMetaType::Float)
        return TPropertyKind::Real;
    if (id == QMetaType::QString)
        return TPropertyKind::String;
    if (id == QMetaType::QStringList)
        return TPropertyKind::StringList;
    if (id == QMetaType::QFont || type == QMetaType::fromType<TFont>())
        return TPropertyKind::Font;
    if (type == QMetaType::fromType<TPen>())
        return TPropertyKind::Pen;
    if (type == QMetaType::fromType<TBrush>())
        return TPropertyKind::Brush;
    if (type == QMetaType::fromType<TBitmap>())
        return TPropertyKind::Picture;
    if (type == QMetaType::fromType<TUserData>())
        return TPropertyKind::UserData;
    if (type.flags() & QMetaType::PointerToQObject) {
        const QMetaObject *mo = type.metaObject();
        if (mo && mo->inherits(&QMenu::staticMetaObject))
            return TPropertyKind::Menu;
        return mo && QByteArray(mo->className()).startsWith("tessal::") ? TPropertyKind::Object
                                                                        : TPropertyKind::Reference;
    }
    if (name.startsWith(QLatin1String("On")) && id >= QMetaType::User)
        return TPropertyKind::Event;
    return TPropertyKind::Other;
}

std::vector<TSetBit> SetBitsOf(const TPropertyType &type)
{
    if (type.Kind != TPropertyKind::Set)
        return {};
    return {{QStringLiteral("fsBold"), fsBold},
            {QStringLiteral("fsItalic"), fsItalic},
            {QStringLiteral("fsUnderline"), fsUnderline},
            {QStringLiteral("fsStrikeOut"), fsStrikeOut}};
}

std::vector<QObject *> ReferenceCandidates(const QMetaType &type)
{
    std::vector<QObject *> found;
    const QMetaObject *mo = type.metaObject();
    if (!mo)
        return found;
    for (QWidget *top : QApplication::topLevelWidgets()) {
        QList<QObject *> all = top->findChildren<QObject *>();
        all.prepend(top);
        for (QObject *o : all)
            if (o->metaObject()->inherits(mo) && !o->objectName().isEmpty())
                found.push_back(o);
    }
    return found;
}

QVariant ReferenceValue(const QMetaType &type, QObject *object)
{
    QVariant v(type);
    *static_cast<QObject **>(v.data()) = object;
    return v;
}

QVariant EnumValue(const QMetaType &type, int value)
{
    QVariant v(type);
    void *data = v.data();
    switch (type.sizeOf()) {
    case 1: {
        const auto b = std::uint8_t(value);
        std::memcpy(data, &b, 1);
        break;
    }
    case 2: {
        const auto s = std::uint16_t(value);
        std::memcpy(data, &s, 2);
        break;
    }
    default:
        std::memcpy(data, &value, std::min<std::size_t>(sizeof value, type.sizeOf()));
        break;
    }
    return v;
}

int EnumInt(const QVariant &value)
{
    const QMetaType type = value.metaType();
    const void *data = value.constData();
    switch (type.sizeOf()) {
    case 1:
        return *static_cast<const std::uint8_t *>(data);
    case 2:
        return *static_cast<const std::uint16_t *>(data);
    default: {
        int v = 0;
        std::memcpy(&v, data, std::min<std::size_t>(sizeof v, type.sizeOf()));
        return v;
    }
    }
}

QString DisplayText(const TPropertyType &type, const QVariant &value)
{
    switch (type.Kind) {
    case TPropertyKind::Bool:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case TPropertyKind::Integer:
        return QString::number(value.toLongLong());
    case TPropertyKind::Real:
        return QString::number(value.toDouble(), 'g', type.Type.id() == QMetaType::Float ? 7 : 12);
    case TPropertyKind::Enum:
        return EnumKey(type.Enumerator, EnumInt(value));
    case TPropertyKind::Set: {
        QStringList names;
        for (const TSetBit &bit : SetBitsOf(type))
            if (value.toInt() & bit.Bit)
                names << bit.Name;
        return QLatin1Char('[') + names.join(QLatin1String(", ")) + QLatin1Char(']');
    }
    case TPropertyKind::Color:
        return ColorText(value);
    case TPropertyKind::Font:
        return FontText(value);
    case TPropertyKind::Pen: {
        const TPen pen = value.value<TPen>();
        return QStringLiteral("%1, %2, %3")
            .arg(EnumKey(QMetaEnum::fromType<TPenStyle>(), int(pen.Style)))
            .arg(pen.Width)
            .arg(ToQColor(pen.Color).name());
    }
    case TPropertyKind::Brush: {
        const TBrush brush = value.value<TBrush>();
        return QStringLiteral("%1, %2")
            .arg(EnumKey(QMetaEnum::fromType<TBrushStyle>(), int(brush.Style)))
            .arg(ToQColor(brush.Color).name());
    }
    case TPropertyKind::String:
        return value.toString();
    case TPropertyKind::StringList:
        return value.toStringList().join(QStringLiteral(" ⏎ "));
    case TPropertyKind::Picture: {
        const TBitmap bitmap = value.value<TBitmap>();
        return bitmap.IsEmpty() ? QObject::tr("(none)")
                                : QStringLiteral("%1 × %2")
                                      .arg(bitmap.Image().width())
                                      .arg(bitmap.Image().height());
    }
    case TPropertyKind::UserData:
        return QObject::tr("(%n record(s))", nullptr, value.value<TUserData>().GetCount());
    case TPropertyKind::Object: {
        const QObject *object = value.value<QObject *>();
        return object ? QStringLiteral("(%1)").arg(QLatin1String(object->metaObject()->className()))
                      : QObject::tr("(none)");
    }
    case TPropertyKind::Menu: {
        const auto *menu = qobject_cast<const QMenu *>(value.value<QObject *>());
        return menu ? QObject::tr("(%n item(s))", nullptr, int(menu->actions().size()))
                    : QObject::tr("(none)");
    }
    case TPropertyKind::Reference: {
        const QObject *object = value.value<QObject *>();
        return !object ? QObject::tr("(none)")
               : object->objectName().isEmpty()
                   ? QStringLiteral("(%1)").arg(QLatin1String(object->metaObject()->className()))
                   : object->objectName();
    }
    case TPropertyKind::Event:
        return QObject::tr("(set in code)");
    case TPropertyKind::Other:
        break;
    }
    const QString text = value.toString();
    return text.isEmpty() ? QStringLiteral("(%1)").arg(QLatin1String(type.Type.name())) : text;
}

bool ConvertInput(const TPropertyType &type, const QVariant &input, QVariant &value, QString &error)
{
    switch (type.Kind) {
    case TPropertyKind::Integer:
        return ToInteger(type, input, value, error);
    case TPropertyKind::Real:
        return ToReal(type, input, value, error);
    case TPropertyKind::Enum:
        return ToEnum(type, input, value, error);
    case TPropertyKind::Bool:
        return ToBool(type, input, value, error);
    case TPropertyKind::Color:
        return ToColor(type, input, value, error);
    case TPropertyKind::Set: {
        bool ok = false;
        const int bits = input.toInt(&ok);
        int all = 0;
        for (const TSetBit &bit : SetBitsOf(type))
            all |= bit.Bit;
        if (!ok || (bits & ~all)) {
            error = QObject::tr("“%1” is not a set of %2.").arg(input.toString(), type.Name);
            return false;
        }
        value = QVariant(bits);
        return value.convert(type.Type);
    }
    case TPropertyKind::String:
        value = input.toString();
        return true;
    case TPropertyKind::StringList:
        value = input.toStringList();
        return true;
    default:
        if (input.metaType() != type.Type) {
            error = QObject::tr("%1 cannot take a value of type %2.")
                        .arg(type.Name, QLatin1String(input.metaType().name()));
            return false;
        }
        value = input;
        return true;
    }
}

} // namespace tessal
