// SPDX-License-Identifier: MIT
// The clipboard's lossless copy of every text a shape holds.
#include <tessal/surface/shapetexts_p.h>

#include <tessal/platform/binarystream.h>
#include <tessal/platform/streamprimitives.h>
#include <tessal/shapes/ruleline.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/text.h>

#include <QStringList>

namespace tessal {

namespace {

constexpr std::int32_t TagWidth = 16;
constexpr std::int32_t ClassNameWidth = 16;
// The least a text or a list takes: its count.
constexpr std::int64_t CountBytes = 4;

QString Tag()
{
    return QStringLiteral("Tessal texts");
}

void WriteText(BinaryStream &s, const QString &text)
{
    s.WriteInt32(std::int32_t(text.size()));
    for (const QChar unit : text)
        s.WriteUInt16(unit.unicode());
}

QString ReadText(BinaryStream &s)
{
    const std::int32_t length = s.ReadInt32();
    s.RequireBytes(length, 2);
    QString text(length, Qt::Uninitialized);
    for (QChar &unit : text)
        unit = QChar(s.ReadUInt16());
    return text;
}

void WriteList(BinaryStream &s, const QStringList &texts)
{
    s.WriteInt32(std::int32_t(texts.size()));
    for (const QString &text : texts)
        WriteText(s, text);
}

QStringList ReadList(BinaryStream &s)
{
    const std::int32_t count = s.ReadInt32();
    s.RequireBytes(count, CountBytes);
    QStringList texts;
    texts.reserve(count);
    for (std::int32_t i = 0; i < count; ++i)
        texts.append(ReadText(s));
    return texts;
}

// The texts that only some classes have. A class that gains a text field adds it here.
QStringList OwnTexts(const TMyShape &shape)
{
    if (const auto *text = dynamic_cast<const TMyText *>(&shape))
        return text->Lines();
    if (const auto *rule = dynamic_cast<const TMyRuleLine *>(&shape))
        return {rule->UserInfo()};
    return {};
}

void SetOwnTexts(TMyShape &shape, const QStringList &texts)
{
    if (auto *text = dynamic_cast<TMyText *>(&shape))
        text->SetLines(texts);
    else if (auto *rule = dynamic_cast<TMyRuleLine *>(&shape); rule && texts.size() == 1)
        rule->SetUserInfo(texts.front());
    else if (!texts.isEmpty())
        throw TStreamError("texts for a " + shape.ClassName().toStdString() +
                           " that it cannot hold");
}

void WriteShapeTexts(BinaryStream &s, const TMyShape &shape)
{
    WriteFixedText(s, shape.ClassName(), ClassNameWidth);
    WriteText(s, shape.Caption());
    WriteText(s, shape.Info());
    WriteText(s, shape.Font().Name);
    WriteList(s, shape.MultiInfo());
    const std::vector<TUserDataRecord> &records = shape.UserData().Records();
    s.WriteInt32(std::int32_t(records.size()));
    for (const TUserDataRecord &r : records) {
        WriteText(s, r.Key);
        WriteText(s, r.Value);
    }
    WriteList(s, OwnTexts(shape));
}

TUserData ReadUserData(BinaryStream &s)
{
    const std::int32_t count = s.ReadInt32();
    s.RequireBytes(count, 2 * CountBytes);
    std::vector<TUserDataRecord> records(static_cast<std::size_t>(count));
    for (TUserDataRecord &r : records) {
        r.Key = ReadText(s);
        r.Value = ReadText(s);
    }
    TUserData data;
    data.SetUserDataRecord(records);
    return data;
}

void ReadShapeTexts(BinaryStream &s, TMyShape &shape)
{
    const QString className = ReadFixedText(s, ClassNameWidth).trimmed();
    if (className != shape.ClassName())
        throw TStreamError("the texts of a " + className.toStdString() +
                           " follow the record of a " + shape.ClassName().toStdString());
    shape.SetCaption(ReadText(s));
    shape.SetInfo(ReadText(s));
    TFont font = shape.Font();
    font.Name = ReadText(s);
    shape.SetFont(font);
    shape.SetMultiInfo(ReadList(s));
    shape.SetUserData(ReadUserData(s));
    SetOwnTexts(shape, ReadList(s));
}

} // namespace

QByteArray ShapeTextsData(std::span<const TMyShape *const> shapes)
{
    QByteArray data;
    {
        BinaryStream s(&data);
        WriteFixedText(s, Tag(), TagWidth);
        s.WriteInt32(std::int32_t(shapes.size()));
        for (const TMyShape *shape : shapes)
            WriteShapeTexts(s, *shape);
    }
    return data;
}

void ApplyShapeTexts(const QByteArray &data, std::span<const std::unique_ptr<TMyShape>> shapes)
{
    BinaryStream s(data.constData(), data.size());
    if (ReadFixedText(s, TagWidth).trimmed() != Tag())
        throw TStreamError("the texts part does not hold texts of shapes");
    if (const std::int32_t count = s.ReadInt32(); count != std::int32_t(shapes.size()))
        throw TStreamError("the texts part speaks of " + std::to_string(count) + " shapes, not " +
                           std::to_string(shapes.size()));
    for (const std::unique_ptr<TMyShape> &shape : shapes)
        ReadShapeTexts(s, *shape);
    if (s.BytesLeft() != 0)
        throw TStreamError(std::to_string(s.BytesLeft()) + " bytes follow the last shape's texts");
}

} // namespace tessal
