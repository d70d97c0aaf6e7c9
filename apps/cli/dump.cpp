// SPDX-License-Identifier: MIT
// tessal-cli dump: shapes and drawings to JSON through their published meta-information.
#include "dump.h"

#include <tessal/platform/bitmap.h>
#include <tessal/platform/graphics.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QMetaEnum>
#include <QMetaProperty>
#include <QSet>

#include <optional>

namespace tessal::Cli {

namespace {

template <typename E>
TJson EnumJson(E value)
{
    return TJson::String(QString::fromLatin1(QMetaEnum::fromType<E>().valueToKey(int(value))));
}

TJson PointJson(TMyPoint p)
{
    TJson point = TJson::Array();
    point.Append(TJson::Single(p.X));
    point.Append(TJson::Single(p.Y));
    return point;
}

TJson NumbersJson(const std::vector<std::int32_t> &numbers)
{
    TJson list = TJson::Array();
    for (const std::int32_t n : numbers)
        list.Append(TJson::Integer(n));
    return list;
}

TJson BitmapJson(const TBitmap &bitmap)
{
    if (bitmap.IsEmpty())
        return {};
    TJson object = TJson::Object();
    object.Insert(QStringLiteral("Width"), TJson::Integer(bitmap.Width()));
    object.Insert(QStringLiteral("Height"), TJson::Integer(bitmap.Height()));
    return object;
}

// The enumeration of a property. Properties typed with an enumeration of another scope find
// it through the meta-object that declares it when the property itself cannot.
std::optional<QMetaEnum> PropertyEnum(const QMetaProperty &property)
{
    if (property.isEnumType() && property.enumerator().isValid())
        return property.enumerator();
    const QMetaType type = property.metaType();
    if (!(type.flags() & QMetaType::IsEnumeration) || !type.metaObject())
        return std::nullopt;
    const QByteArray name = type.name();
    const QByteArray shortName = name.mid(name.lastIndexOf(':') + 1);
    const int index = type.metaObject()->indexOfEnumerator(shortName.constData());
    if (index < 0)
        return std::nullopt;
    return type.metaObject()->enumerator(index);
}

// An enumeration held in a variant, widened from its stored size.
std::int64_t EnumValue(const QVariant &value)
{
    const void *data = value.constData();
    switch (value.metaType().sizeOf()) {
    case 1:
        return *static_cast<const std::uint8_t *>(data);
    case 2:
        return *static_cast<const std::uint16_t *>(data);
    case 4:
        return *static_cast<const std::int32_t *>(data);
    default:
        return *static_cast<const std::int64_t *>(data);
    }
}

std::optional<TJson> ValueJson(const QVariant &value, const QMetaProperty *property);

// Pens, brushes and fonts are gadgets: their published fields make the object.
TJson GadgetJson(const QMetaObject &meta, const void *gadget)
{
    TJson object = TJson::Object();
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        if (std::optional<TJson> json = ValueJson(property.readOnGadget(gadget), &property))
            object.Insert(QString::fromLatin1(property.name()), std::move(*json));
    }
    return object;
}

// Nothing for values that have no meaning outside the process (event handlers).
std::optional<TJson> ValueJson(const QVariant &value, const QMetaProperty *property)
{
    if (property) {
        if (const std::optional<QMetaEnum> meta = PropertyEnum(*property)) {
            const std::int64_t ordinal = EnumValue(value);
            const char *key = meta->valueToKey(int(ordinal));
            // An ordinal outside the enumeration (a damaged file) is shown as a number.
            return key ? TJson::String(QString::fromLatin1(key)) : TJson::Integer(ordinal);
        }
    }
    const QMetaType type = value.metaType();
    if (type == QMetaType::fromType<TUserData>())
        return UserDataJson(value.value<TUserData>());
    if (type == QMetaType::fromType<TBitmap>())
        return BitmapJson(value.value<TBitmap>());
    if (type.flags() & QMetaType::IsGadget)
        return GadgetJson(*type.metaObject(), value.constData());
    switch (type.id()) {
    case QMetaType::Bool:
        return TJson::Bool(value.toBool());
    case QMetaType::Float:
        return TJson::Single(value.toFloat());
    case QMetaType::Double:
        return TJson::Double(value.toDouble());
    case QMetaType::QString:
        return TJson::String(value.toString());
    case QMetaType::QStringList: {
        TJson list = TJson::Array();
        for (const QString &line : value.toStringList())
            list.Append(TJson::String(line));
        return list;
    }
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return TJson::Integer(value.toLongLong());
    default:
        return std::nullopt;
    }
}

void InsertProperty(TJson &object, const TMyShape &shape, const QMetaObject &meta, const char *name,
                    QSet<QString> &written)
{
    const int index = meta.indexOfProperty(name);
    if (index < 0)
        return;
    const QMetaProperty property = meta.property(index);
    if (std::optional<TJson> json = ValueJson(property.readOnGadget(&shape), &property)) {
        object.Insert(QString::fromLatin1(name), std::move(*json));
        written.insert(QString::fromLatin1(name));
    }
}

} // namespace

TJson PointsJson(const TMyPointArray &points)
{
    TJson list = TJson::Array();
    for (const TMyPoint p : points)
        list.Append(PointJson(p));
    return list;
}

TJson UserDataJson(const TUserData &data)
{
    TJson list = TJson::Array();
    for (const TUserDataRecord &record : data.Records()) {
        TJson pair = TJson::Array();
        pair.Append(TJson::String(record.Key));
        pair.Append(TJson::String(record.Value));
        list.Append(std::move(pair));
    }
    return list;
}

TJson ShapeJson(const TMyShape &shape)
{
    TJson object = TJson::Object();
    object.Insert(QStringLiteral("ClassName"), TJson::String(shape.ClassName()));
    object.Insert(QStringLiteral("Name"), TJson::String(shape.Name()));
    object.Insert(QStringLiteral("ShapeId"), TJson::Integer(shape.ShapeId()));
    object.Insert(QStringLiteral("ShapeNo"), TJson::Integer(shape.ShapeNo()));
    object.Insert(QStringLiteral("LayerId"), TJson::Integer(shape.LayerId()));
    object.Insert(QStringLiteral("ParentNo"), TJson::Integer(shape.ParentNo()));
    object.Insert(QStringLiteral("ChildShapes"), NumbersJson(shape.ChildShapes()));
    object.Insert(QStringLiteral("LinkShapes"), NumbersJson(shape.LinkShapes()));
    object.Insert(QStringLiteral("Points"), PointsJson(shape.Points()));
    object.Insert(QStringLiteral("LinkPoints"), PointsJson(shape.LinkPoints()));
    object.Insert(QStringLiteral("TextPoint"), PointJson(shape.TextPoint()));

    // The base's published values in the order of the record, then whatever else the class
    // publishes (the base's remaining switches, connector ends, text lines, image settings).
    const QMetaObject &meta = *shape.MetaObject();
    QSet<QString> written;
    for (const char *name :
         {"Tag", "Angle", "Caption", "Info", "ColorBegin", "ColorEnd", "GradientStyle", "UserData",
          "MultiInfo", "MultiInfoAlignment", "IsFlipHorz", "IsFlipVert", "Visible", "Locked", "Pen",
          "Brush", "Font"})
        InsertProperty(object, shape, meta, name, written);
    for (int i = 0; i < meta.propertyCount(); ++i) {
        const char *name = meta.property(i).name();
        if (!written.contains(QString::fromLatin1(name)))
            InsertProperty(object, shape, meta, name, written);
    }
    return object;
}

TJson DrawingJson(const TMyCAD &cad)
{
    TJson object = TJson::Object();
    object.Insert(QStringLiteral("Version"), TJson::String(cad.DiskFileVersion()));
    object.Insert(QStringLiteral("Width"), TJson::Integer(cad.width()));
    object.Insert(QStringLiteral("Height"), TJson::Integer(cad.height()));
    object.Insert(QStringLiteral("ColorOfBackGround"), TJson::Integer(cad.ColorOfBackGround()));
    object.Insert(QStringLiteral("TheUNIT"), EnumJson(cad.TheUNIT()));
    object.Insert(QStringLiteral("Ratio"), TJson::Double(cad.Ratio()));
    object.Insert(QStringLiteral("BkBitmapMode"), EnumJson(cad.BkBitmapMode()));
    object.Insert(QStringLiteral("BkBitmap"), BitmapJson(cad.BkBitmap()));
    object.Insert(QStringLiteral("Tag"), TJson::Integer(cad.Tag()));
    object.Insert(QStringLiteral("UserData"), UserDataJson(cad.UserData()));
    TJson layers = TJson::Array();
    for (const TLayer &layer : cad.Layers()) {
        TJson entry = TJson::Object();
        entry.Insert(QStringLiteral("Name"), TJson::String(layer.Name));
        entry.Insert(QStringLiteral("Id"), TJson::Integer(layer.Id));
        entry.Insert(QStringLiteral("Visible"), TJson::Bool(layer.Visible));
        layers.Append(std::move(entry));
    }
    object.Insert(QStringLiteral("Layers"), std::move(layers));
    object.Insert(QStringLiteral("CurrentLayerId"), TJson::Integer(cad.CurrentLayerId()));
    TJson shapes = TJson::Array();
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
        shapes.Append(ShapeJson(*cad.GetShapeByNo(no)));
    object.Insert(QStringLiteral("Shapes"), std::move(shapes));
    return object;
}

int RunDump(const QString &fileName, TIo io)
{
    QString error;
    const std::unique_ptr<TMyCAD> cad = LoadDrawing(fileName, error);
    if (!cad)
        return Fail(io, error);
    io.Out << QString::fromUtf8(DrawingJson(*cad).ToText());
    io.Out.flush();
    return ExitOk;
}

} // namespace tessal::Cli
