// SPDX-License-Identifier: MIT
// Shape libraries: the tag tests, the entry framing, normalised entries and in-place edits.
#include <tessal/persistence/drawingfile_p.h>
#include <tessal/persistence/library.h>

#include <tessal/platform/binarystream.h>
#include <tessal/platform/canvas.h>
#include <tessal/platform/codepage.h>
#include <tessal/platform/filesaver_p.h>
#include <tessal/platform/streamprimitives.h>
#include <tessal/shapes/link.h>
#include <tessal/surface/cad.h>

#include <QBuffer>
#include <QFile>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace tessal {

namespace {

constexpr qsizetype TagSize = 10;
constexpr std::int32_t ClassNameWidth = 16;
constexpr char NewestTag[] = "ZEDALIBX.j";
// Width and height, the least an entry can hold after its size field.
constexpr std::int32_t MinEntrySize = 8;

// An entry of many shapes reports every this many, and at its start and end.
constexpr std::int32_t ProgressStep = 4096;

// The first 10 bytes of the file; empty when it cannot be read or is shorter.
QByteArray FileTag(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray tag = file.read(TagSize);
    return tag.size() == TagSize ? tag : QByteArray();
}

bool TagIsOneOf(const QString &fileName, std::initializer_list<const char *> tags)
{
    const QByteArray tag = FileTag(fileName);
    return !tag.isEmpty() &&
           std::any_of(tags.begin(), tags.end(), [&](const char *t) { return tag == t; });
}

// The coordinates a library stores, and how they are put back.
struct SavedGeometry
{
    TMyShape *Shape;
    TMyPointArray Points;
    TMyPointArray LinkPoints;
    TMyPoint TextPoint;
    QString Name;

    explicit SavedGeometry(TMyShape *shape)
        : Shape(shape)
        , Points(shape->Points())
        , LinkPoints(shape->LinkPoints())
        , TextPoint(shape->TextPoint())
        , Name(shape->Name())
    {}
    ~SavedGeometry()
    {
        Shape->Points() = Points;
        Shape->LinkPoints() = LinkPoints;
        Shape->SetTextPoint(TextPoint);
        Shape->SetName(Name);
    }
    SavedGeometry(const SavedGeometry &) = delete;
    SavedGeometry &operator=(const SavedGeometry &) = delete;
};

template <typename F>
void ForEachPoint(TMyShape &shape, F &&f)
{
    for (TMyPoint &p : shape.Points())
        f(p);
    for (TMyPoint &p : shape.LinkPoints())
        f(p);
    TMyPoint text = shape.TextPoint();
    f(text);
    shape.SetTextPoint(text);
}

bool IsLinkPoint(const TMyShape *shape)
{
    return dynamic_cast<const TMyLinkPoint *>(shape) != nullptr;
}

// A box side rounded half to even, at least 1.
std::int32_t WholeSide(double extent)
{
    const double rounded = std::nearbyint(extent);
    if (!(rounded >= 1))
        return 1;
    if (rounded >= double(std::numeric_limits<std::int32_t>::max()))
        return std::numeric_limits<std::int32_t>::max();
    return std::int32_t(rounded);
}

QString ReadName(const QByteArray &buffer, qsizetype pos, qsizetype length)
{
    return FromAnsi(buffer.mid(pos, length));
}

} // namespace

// ---- Tag tests ----

bool IsZEDALibFile(const QString &fileName)
{
    return TagIsOneOf(fileName,
                      {"ZEDALIBX.j", "ZEDALIBX.h", "ZEDALIBX.a", "ZEDALIBX.9", "ZEDALIBX.8",
                       "ZEDALIBX.7", "ZEDALIBX.6", "ZEDALIBX.3", "ZEDALIBX.2"});
}
bool IsZEDALibX2File(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIBX.2"});
}
bool IsZEDALibFileX67(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIBX.6", "ZEDALIBX.7"});
}
bool IsZEDALibFileX8(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIBX.8"});
}
bool IsZEDALibFileX9(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIBX.9"});
}
bool IsZEDALibFileXA(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIBX.a"});
}
bool IsZEDALibFileXE(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIBX.e"});
}
bool IsZEDALibFileXH(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIBX.h"});
}
bool IsZEDALibFileXI(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIBX.i"});
}
bool IsOLDZEDALibFile(const QString &fileName)
{
    return TagIsOneOf(fileName, {"ZEDALIB2.1"});
}

QString LibRecordVersion(const QByteArray &tag)
{
    if (tag.size() != TagSize || !tag.startsWith("ZEDALIBX."))
        return {};
    switch (tag.back()) {
    case 'j':
    case 'i':
    case 'h':
    case 'e':
    case 'a':
    case '9':
    case '8':
    case '7':
    case '6':
    case '2':
        return QStringLiteral("XP.") + QChar::fromLatin1(tag.back());
    case '3':
        return QStringLiteral("XP.4"); // those libraries hold records of the later layout
    default:
        return {};
    }
}

// ---- Buffer and file ----

TLibManager::TLibManager()
    : m_Buffer(NewestTag)
    , m_Drawing(std::make_unique<TMyCAD>())
{
    ReadLibTag();
}

TLibManager::TLibManager(const QString &fileName)
    : TLibManager()
{
    LoadFromFile(fileName);
    WriteLibTag();
}

TLibManager::~TLibManager() = default;

bool TLibManager::LoadFromFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        m_LastError = file.errorString();
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        m_LastError = file.errorString();
        return false;
    }
    if (!LoadFromBuffer(bytes))
        return false;
    m_FileName = fileName;
    return true;
}

bool TLibManager::LoadFromBuffer(const QByteArray &bytes)
{
    const QByteArray previous = m_Buffer;
    m_Buffer = bytes;
    std::vector<Entry> entries;
    if (!Walk(entries)) {
        m_Buffer = previous;
        ReadLibTag();
        return false;
    }
    m_LastError.clear();
    ReadLibTag();
    return true;
}

bool TLibManager::LoadFromOldFile(const QString &fileName)
{
    if (!IsOLDZEDALibFile(fileName)) {
        m_LastError = QStringLiteral("%1 is not an old library file").arg(fileName);
        return false;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        m_LastError = file.errorString();
        return false;
    }
    m_Buffer = file.readAll();
    m_FileName = fileName;
    m_LastError.clear();
    ReadLibTag();
    return true;
}

bool TLibManager::SaveToFile(const QString &fileName)
{
    ReplaceoldTagwithNewTag();
    const auto write = [this](QIODevice &device) {
        return device.write(m_Buffer) == m_Buffer.size();
    };
    if (!detail::SaveWholeFile(fileName, write, m_LastError))
        return false;
    m_FileName = fileName;
    m_LastError.clear();
    return true;
}

void TLibManager::Clear()
{
    m_Buffer = NewestTag;
    ReadLibTag();
}

QString TLibManager::ReadLibTag(std::int32_t &length, std::int64_t &position)
{
    if (m_Buffer.size() < TagSize) {
        length = 0;
        position = -1;
        m_Drawing->SetDiskFileVersion(QString());
        return {};
    }
    const QByteArray tag = m_Buffer.left(TagSize);
    length = TagSize;
    position = TagSize;
    m_Drawing->SetDiskFileVersion(LibRecordVersion(tag));
    return FromAnsi(tag);
}

QString TLibManager::ReadLibTag()
{
    std::int32_t length = 0;
    std::int64_t position = 0;
    return ReadLibTag(length, position);
}

void TLibManager::WriteLibTag()
{
    if (m_Buffer.size() < TagSize)
        m_Buffer = NewestTag;
    ReadLibTag();
}

void TLibManager::ReplaceoldTagwithNewTag()
{
    if (m_Buffer.size() < TagSize)
        m_Buffer = NewestTag;
    else
        m_Buffer.replace(0, TagSize, NewestTag);
    ReadLibTag();
}

// ---- Entry framing ----

bool TLibManager::Walk(std::vector<Entry> &entries)
{
    entries.clear();
    const qsizetype end = m_Buffer.size();
    qsizetype pos = TagSize;
    while (pos < end) {
        const qsizetype nameLength = std::uint8_t(m_Buffer[pos]);
        // The name, then the int32 entry size.
        if (end - pos - 1 < nameLength + 4) {
            m_LastError = QStringLiteral("entry %1 at offset %2 is cut off in its name")
                              .arg(entries.size())
                              .arg(pos);
            return false;
        }
        const qsizetype sizeAt = pos + 1 + nameLength;
        std::int32_t size = 0;
        for (int i = 3; i >= 0; --i)
            size = std::int32_t(std::uint32_t(size) << 8 | std::uint8_t(m_Buffer[sizeAt + i]));
        const qsizetype left = end - sizeAt - 4;
        if (size < MinEntrySize || size > left) {
            m_LastError = QStringLiteral("entry %1 at offset %2 has an impossible size %3 "
                                         "(%4 bytes left)")
                              .arg(entries.size())
                              .arg(pos)
                              .arg(size)
                              .arg(left);
            return false;
        }
        const qsizetype total = 1 + nameLength + 4 + size;
        entries.push_back({pos, total, ReadName(m_Buffer, pos + 1, nameLength)});
        pos += total;
    }
    return true;
}

bool TLibManager::Find(const QString &name, Entry &entry)
{
    std::vector<Entry> entries;
    const bool whole = Walk(entries);
    for (const Entry &e : entries) {
        if (e.Name == name) {
            entry = e;
            return true;
        }
    }
    if (whole)
        m_LastError = QStringLiteral("the library has no entry \"%1\"").arg(name);
    return false;
}

std::int32_t TLibManager::GetcmbShapesCount()
{
    std::vector<Entry> entries;
    Walk(entries);
    return std::int32_t(entries.size());
}

QString TLibManager::GetCmbShapesNameByID(std::int32_t index)
{
    std::vector<Entry> entries;
    Walk(entries);
    if (index < 0 || std::size_t(index) >= entries.size())
        return {};
    return entries[std::size_t(index)].Name;
}

bool TLibManager::GetExistShape(const QString &name, std::int64_t &position, std::int64_t &size)
{
    Entry entry;
    if (!Find(name, entry))
        return false;
    position = entry.Position;
    size = entry.Size;
    return true;
}

// ---- Reading entries ----

void TLibManager::SetOnProgress(const TProgressEvent &handler)
{
    m_Drawing->SetOnProgress(handler);
}

const TProgressEvent &TLibManager::OnProgress() const
{
    return m_Drawing->OnProgress();
}

void TLibManager::Report(std::int64_t done, std::int64_t total)
{
    const TProgressEvent &handler = m_Drawing->OnProgress();
    if (!handler)
        return;
    bool cancel = false;
    handler(m_Drawing.get(), done, total, cancel);
    if (cancel)
        throw TLoadCancelled();
}

bool TLibManager::ReadEntry(const Entry &entry, const QString &version, bool userDataBlock,
                            bool linkPointsOnly, Contents &out)
{
    const qsizetype nameLength = std::uint8_t(m_Buffer.at(qsizetype(entry.Position)));
    const qsizetype bodyAt = entry.Position + 1 + nameLength + 4;
    QByteArray body = m_Buffer.mid(bodyAt, entry.Position + entry.Size - bodyAt);
    QBuffer device(&body);
    device.open(QIODevice::ReadOnly);
    BinaryStream s(&device);
    const QString tagVersion = m_Drawing->DiskFileVersion();
    m_Drawing->SetDiskFileVersion(version);
    m_Drawing->SetZoom(1.0);
    Contents read;
    try {
        read.Width = s.ReadInt32();
        read.Height = s.ReadInt32();
        if (read.Width < 1 || read.Height < 1)
            throw TStreamError("impossible entry size " + std::to_string(read.Width) + " x " +
                               std::to_string(read.Height));
        if (userDataBlock) {
            const std::int32_t count = s.ReadInt32();
            s.RequireBytes(count, 8);
            std::vector<TUserDataRecord> records;
            records.reserve(std::size_t(count));
            for (std::int32_t i = 0; i < count; ++i) {
                QString key = ReadCountedText(s);
                records.push_back({key, ReadCountedText(s)});
            }
            read.UserData.SetUserDataRecord(records);
        }
        const std::int32_t count = s.ReadInt32();
        s.RequireBytes(count, ClassNameWidth);
        read.Shapes.reserve(std::size_t(count));
        const double w = read.Width, h = read.Height;
        Report(0, count);
        for (std::int32_t i = 0; i < count; ++i) {
            if (i > 0 && i % ProgressStep == 0)
                Report(i, count);
            const QString className = ReadFixedText(s, ClassNameWidth).trimmed();
            std::unique_ptr<TMyShape> shape = m_Drawing->CreateShapeByName(className);
            if (!shape)
                throw TStreamError("unknown shape class \"" + className.toStdString() +
                                   "\" at offset " + std::to_string(bodyAt + s.Pos() - 16));
            shape->LoadFromStream(s);
            ForEachPoint(*shape, [&](TMyPoint &p) {
                p.X = float(p.X * w);
                p.Y = float(p.Y * h);
            });
            shape->SetCenterPoint(shape->GetCenterPoint());
            if (linkPointsOnly && IsLinkPoint(shape.get())) {
                const TMyPointArray &points = shape->LinkPoints();
                read.LinkPoints.insert(read.LinkPoints.end(), points.begin(), points.end());
            } else {
                read.Shapes.push_back(std::move(shape));
            }
        }
        if (s.BytesLeft() != 0)
            throw TStreamError(std::to_string(s.BytesLeft()) + " bytes follow the last shape");
        Report(count, count);
    } catch (const TLoadCancelled &) {
        m_LastError = QStringLiteral("entry \"%1\": reading was cancelled").arg(entry.Name);
        m_Drawing->SetDiskFileVersion(tagVersion);
        return false;
    } catch (const TStreamError &e) {
        m_LastError =
            QStringLiteral("entry \"%1\": %2").arg(entry.Name, QString::fromStdString(e.what()));
        m_Drawing->SetDiskFileVersion(tagVersion);
        return false;
    } catch (const std::bad_alloc &) {
        m_LastError = QStringLiteral("entry \"%1\": out of memory").arg(entry.Name);
        m_Drawing->SetDiskFileVersion(tagVersion);
        return false;
    }
    m_Drawing->SetDiskFileVersion(tagVersion);
    out = std::move(read);
    return true;
}

bool TLibManager::ReadNamed(const QString &name, const QString &version, bool userDataBlock,
                            bool linkPointsOnly, TMyPointArray &linkPoints, TUserData &userData,
                            TShapeList &shapes, std::int32_t &width, std::int32_t &height)
{
    linkPoints.clear();
    userData.ClearAll();
    shapes.clear();
    width = height = 0;
    Entry entry;
    Contents read;
    if (!Find(name, entry) || !ReadEntry(entry, version, userDataBlock, linkPointsOnly, read))
        return false;
    m_LastError.clear();
    linkPoints = std::move(read.LinkPoints);
    userData = std::move(read.UserData);
    shapes = std::move(read.Shapes);
    width = read.Width;
    height = read.Height;
    return true;
}

bool TLibManager::GetCmbShape(const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints,
                              TUserData &userData, TShapeList &shapes, std::int32_t &width,
                              std::int32_t &height)
{
    const QByteArray tag = m_Buffer.left(TagSize);
    return ReadNamed(name, LibRecordVersion(tag), tag == NewestTag, linkPointsOnly, linkPoints,
                     userData, shapes, width, height);
}

#define TESSAL_OLDER_READER(Suffix, Version)                                                       \
    bool TLibManager::GetCmbShapefor##Suffix(                                                      \
        const QString &name, bool linkPointsOnly, TMyPointArray &linkPoints, TUserData &userData,  \
        TShapeList &shapes, std::int32_t &width, std::int32_t &height)                             \
    {                                                                                              \
        return ReadNamed(name, QStringLiteral(Version), false, linkPointsOnly, linkPoints,         \
                         userData, shapes, width, height);                                         \
    }
TESSAL_OLDER_READER(X8, "XP.8")
TESSAL_OLDER_READER(X9, "XP.9")
TESSAL_OLDER_READER(XA, "XP.a")
TESSAL_OLDER_READER(XE, "XP.e")
TESSAL_OLDER_READER(XH, "XP.h")
TESSAL_OLDER_READER(XI, "XP.i")
#undef TESSAL_OLDER_READER

QImage TLibManager::GetCmbShapeImage(const QString &name, QSize size, TColor background)
{
    TMyPointArray linkPoints;
    TUserData userData;
    TShapeList shapes;
    std::int32_t width = 0, height = 0;
    if (size.isEmpty() || !GetCmbShape(name, false, linkPoints, userData, shapes, width, height))
        return {};
    QImage image(size, QImage::Format_RGB32);
    image.fill(ToQColor(background));
    const int margin = std::min({2, (size.width() - 1) / 2, (size.height() - 1) / 2});
    const double scale = std::min(double(size.width() - 2 * margin) / width,
                                  double(size.height() - 2 * margin) / height);
    const double dx = (size.width() - width * scale) / 2;
    const double dy = (size.height() - height * scale) / 2;
    m_Drawing->SetZoom(scale);
    {
        TCanvas canvas(&image);
        canvas.SetWorldTransform(QTransform::fromTranslate(dx, dy));
        for (const auto &shape : shapes) {
            if (shape->Visible())
                shape->Draw(canvas);
        }
    }
    m_Drawing->SetZoom(1.0);
    return image;
}

bool TLibManager::GetCmbShapeImage(const QString &name, TBitmap &bitmap, std::int32_t width,
                                   std::int32_t height, TColor background)
{
    const QImage image = GetCmbShapeImage(name, QSize(width, height), background);
    if (image.isNull())
        return false;
    bitmap = TBitmap(image);
    return true;
}

// ---- Writing entries ----

bool TLibManager::CheckNewName(const QString &name, QByteArray &ansi)
{
    ansi = ToAnsi(name);
    if (name.isEmpty() || ansi.size() > 255 || FromAnsi(ansi) != name) {
        m_LastError = QStringLiteral("\"%1\" cannot name a library entry").arg(name);
        return false;
    }
    Entry existing;
    if (Find(name, existing)) {
        m_LastError = QStringLiteral("the library has an entry \"%1\" already").arg(name);
        return false;
    }
    return true;
}

QByteArray TLibManager::BuildEntry(const QString &name, std::span<TMyShape *const> shapes,
                                   const TUserData &userData)
{
    // The box of everything but the link points, which are placed relative to it.
    double left = 0, top = 0, right = 0, bottom = 0;
    bool any = false;
    for (const TMyShape *shape : shapes) {
        if (!shape || IsLinkPoint(shape) || shape->GetPointsCount() == 0)
            continue;
        const TMyPoint lt = shape->GetLeftTop(), rb = shape->GetRightBottom();
        left = any ? std::min(left, double(lt.X)) : lt.X;
        top = any ? std::min(top, double(lt.Y)) : lt.Y;
        right = any ? std::max(right, double(rb.X)) : rb.X;
        bottom = any ? std::max(bottom, double(rb.Y)) : rb.Y;
        any = true;
    }
    const std::int32_t width = WholeSide(right - left);
    const std::int32_t height = WholeSide(bottom - top);

    QByteArray body;
    QBuffer device(&body);
    device.open(QIODevice::WriteOnly);
    BinaryStream s(&device);
    s.WriteInt32(width);
    s.WriteInt32(height);
    s.WriteInt32(userData.GetCount());
    for (const TUserDataRecord &r : userData.Records()) {
        WriteCountedAnsiText(s, r.Key);
        WriteCountedAnsiText(s, r.Value);
    }
    std::int32_t count = 0;
    for (const TMyShape *shape : shapes)
        count += shape ? 1 : 0;
    s.WriteInt32(count);
    for (TMyShape *shape : shapes) {
        if (!shape)
            continue;
        const SavedGeometry saved(shape);
        ForEachPoint(*shape, [&](TMyPoint &p) {
            p.X = float((p.X - left) / width);
            p.Y = float((p.Y - top) / height);
        });
        shape->SetName(QString());
        WriteFixedText(s, shape->ClassName(), ClassNameWidth);
        shape->SaveToStream(s);
    }
    device.close();

    const QByteArray ansi = ToAnsi(name);
    QByteArray entry;
    QBuffer out(&entry);
    out.open(QIODevice::WriteOnly);
    BinaryStream e(&out);
    e.WriteUInt8(std::uint8_t(ansi.size()));
    e.WriteBytes(ansi);
    e.WriteInt32(std::int32_t(body.size()));
    e.WriteBytes(body);
    return entry;
}

bool TLibManager::InsertNewShape(std::int64_t position, const QString &name,
                                 std::span<TMyShape *const> shapes, const TUserData &userData)
{
    QByteArray ansi;
    if (!CheckNewName(name, ansi))
        return false;
    std::vector<Entry> entries;
    if (m_Buffer.size() < TagSize) {
        m_LastError = QStringLiteral("the library has no tag");
        return false;
    }
    if (!Walk(entries))
        return false;
    const bool atBoundary = position == m_Buffer.size() ||
                            std::any_of(entries.begin(), entries.end(),
                                        [&](const Entry &e) { return e.Position == position; });
    if (!atBoundary) {
        m_LastError = QStringLiteral("no entry starts at offset %1").arg(position);
        return false;
    }
    const QByteArray entry = BuildEntry(name, shapes, userData);
    m_Buffer.insert(qsizetype(position), entry);
    m_LastError.clear();
    return true;
}

bool TLibManager::AppendNewShape(const QString &name, std::span<TMyShape *const> shapes,
                                 const TUserData &userData)
{
    return InsertNewShape(m_Buffer.size(), name, shapes, userData);
}

bool TLibManager::DeleteShape(const QString &name)
{
    Entry entry;
    if (!Find(name, entry))
        return false;
    m_Buffer.remove(entry.Position, entry.Size);
    m_LastError.clear();
    return true;
}

bool TLibManager::RenameCmbShapeName(const QString &oldName, const QString &newName)
{
    Entry entry;
    if (!Find(oldName, entry))
        return false;
    if (oldName == newName)
        return true;
    QByteArray ansi;
    if (!CheckNewName(newName, ansi))
        return false;
    const qsizetype oldLength = std::uint8_t(m_Buffer.at(qsizetype(entry.Position)));
    m_Buffer.replace(entry.Position, 1 + oldLength, char(ansi.size()) + ansi);
    m_LastError.clear();
    return true;
}

bool TLibManager::MoveCmbShapeBeforeByName(const QString &name, const QString &beforeName)
{
    Entry moved, before;
    if (!Find(name, moved) || !Find(beforeName, before))
        return false;
    m_LastError.clear();
    if (moved.Position == before.Position)
        return true;
    const QByteArray bytes = m_Buffer.mid(moved.Position, moved.Size);
    m_Buffer.remove(moved.Position, moved.Size);
    // The cut shifts the target when the moved entry lay in front of it.
    const std::int64_t at =
        before.Position > moved.Position ? before.Position - moved.Size : before.Position;
    m_Buffer.insert(at, bytes);
    return true;
}

bool TLibManager::RepalceExistShape(const QString &name, std::span<TMyShape *const> shapes,
                                    const TUserData &userData)
{
    Entry entry;
    if (!Find(name, entry))
        return false;
    const QByteArray bytes = BuildEntry(entry.Name, shapes, userData);
    m_Buffer.replace(entry.Position, entry.Size, bytes);
    m_LastError.clear();
    return true;
}

// ---- Upgrades ----

bool TLibManager::Upgrade(std::initializer_list<const char *> fromTags, const QString &version)
{
    const QByteArray tag = m_Buffer.left(TagSize);
    if (std::none_of(fromTags.begin(), fromTags.end(), [&](const char *t) { return tag == t; }))
        return true;
    const QByteArray original = m_Buffer;
    const QString readVersion = version.isEmpty() ? LibRecordVersion(tag) : version;
    std::vector<Entry> entries;
    bool ok = Walk(entries);
    // Entries keep their order and count, so after each rewrite the next one is found by
    // walking again.
    for (std::size_t i = 0; ok && i < entries.size(); ++i) {
        std::vector<Entry> now;
        Contents read;
        ok = Walk(now) && ReadEntry(now[i], readVersion, false, false, read);
        if (!ok)
            break;
        std::vector<TMyShape *> shapes;
        for (const auto &shape : read.Shapes)
            shapes.push_back(shape.get());
        m_Buffer.replace(now[i].Position, now[i].Size,
                         BuildEntry(now[i].Name, shapes, read.UserData));
    }
    if (!ok) {
        m_Buffer = original;
        ReadLibTag();
        return false;
    }
    ReplaceoldTagwithNewTag();
    m_LastError.clear();
    return true;
}

bool TLibManager::Upgradefromx6tox8()
{
    return Upgrade({"ZEDALIBX.2", "ZEDALIBX.3", "ZEDALIBX.6", "ZEDALIBX.7"}, QString());
}
bool TLibManager::Upgradefromx8tox9()
{
    return Upgrade({"ZEDALIBX.8"}, QStringLiteral("XP.8"));
}
bool TLibManager::Upgradefromx9toxa()
{
    return Upgrade({"ZEDALIBX.9"}, QStringLiteral("XP.9"));
}
bool TLibManager::Upgradefromxatoxe()
{
    return Upgrade({"ZEDALIBX.a"}, QStringLiteral("XP.a"));
}
bool TLibManager::Upgradefromxetoxh()
{
    return Upgrade({"ZEDALIBX.e"}, QStringLiteral("XP.e"));
}
bool TLibManager::Upgradefromxhtoxi()
{
    return Upgrade({"ZEDALIBX.h"}, QStringLiteral("XP.h"));
}
bool TLibManager::Upgradefromxitoxj()
{
    return Upgrade({"ZEDALIBX.i"}, QStringLiteral("XP.i"));
}

} // namespace tessal
