// SPDX-License-Identifier: MIT
// Copy, cut and paste of the working shapes through the system clipboard, and the placing
// of a list of shapes with fresh identities that paste, blocks and library entries share.
#include <tessal/surface/cad.h>
#include <tessal/surface/shapestate_p.h>
#include <tessal/surface/shapetexts_p.h>

#include <tessal/platform/binarystream.h>
#include <tessal/platform/color.h>
#include <tessal/platform/streamprimitives.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapekind.h>

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QSvgGenerator>

#include <algorithm>
#include <new>

namespace tessal {

namespace {

constexpr std::int32_t ClassNameWidth = 16;
constexpr std::int32_t DataTagWidth = 16;
constexpr std::int32_t DataVersionWidth = 16;
// A picture larger than this a side is left out of the clipboard rather than allocated.
constexpr std::int32_t MaxPictureSide = 8192;

QString DataTag()
{
    return QStringLiteral("Tessal shapes");
}

using TNumberMap = std::function<std::int32_t(std::int32_t)>;

// Gives every shape number n in the shape's relations the number map(n); a negative answer
// removes the reference (a freed connector end also forgets its link point).
void RemapRelations(TMyShape &shape, const TNumberMap &map)
{
    const auto remap = [&map](std::vector<std::int32_t> &numbers) {
        std::vector<std::int32_t> kept;
        kept.reserve(numbers.size());
        for (std::int32_t n : numbers)
            if (const std::int32_t m = map(n); m >= 0)
                kept.push_back(m);
        numbers = std::move(kept);
    };
    if (shape.ParentNo() >= 0)
        shape.SetParentNo(std::max(map(shape.ParentNo()), -1));
    remap(shape.ChildShapes());
    remap(shape.LinkShapes());
    auto *link = dynamic_cast<TMyLinkLine *>(&shape);
    if (!link)
        return;
    if (link->StartSpNo() >= 0) {
        const std::int32_t m = map(link->StartSpNo());
        link->SetStartSpNo(std::max(m, -1));
        if (m < 0)
            link->SetStartSpPtId(-1);
    }
    if (link->EndSpNo() >= 0) {
        const std::int32_t m = map(link->EndSpNo());
        link->SetEndSpNo(std::max(m, -1));
        if (m < 0)
            link->SetEndSpPtId(-1);
    }
}

// Moves every stored position of the shape; the same as a drag, without the zoom's
// round trip.
void Translate(TMyShape &shape, TMyPoint by)
{
    if (by.X == 0 && by.Y == 0)
        return;
    MapShapePositions(shape, [by](TMyPoint p) { return TMyPoint{p.X + by.X, p.Y + by.Y}; });
}

// The list places of what a copy takes: the working shapes, their members at any depth,
// and the top-level connectors bound at both ends to shapes already taken; in list order.
// A cut takes only what deleting the selection removes (honourLocks): no locked shape, nor
// anything below a locked member.
std::vector<std::int32_t> CopiedNumbers(const TMyCAD &cad, bool honourLocks = false)
{
    const std::int32_t count = cad.GetShapesCount();
    const auto kept = [honourLocks](const TMyShape *shape) {
        return honourLocks && shape->Locked();
    };
    std::vector<bool> taken(std::size_t(count), false);
    std::vector<std::int32_t> pending;
    for (const TMyShape *shape : cad.WorkingShapes())
        if (const std::int32_t no = cad.GetShapeNoInMyShapes(shape); no >= 0 && !kept(shape))
            pending.push_back(no);
    while (!pending.empty()) {
        const std::int32_t no = pending.back();
        pending.pop_back();
        if (taken[std::size_t(no)])
            continue;
        taken[std::size_t(no)] = true;
        for (std::int32_t child : cad.GetShapeByNo(no)->ChildShapes())
            if (child >= 0 && child < count && !taken[std::size_t(child)] &&
                !kept(cad.GetShapeByNo(child)))
                pending.push_back(child);
    }
    const auto inside = [&](std::int32_t no) {
        return no >= 0 && no < count && taken[std::size_t(no)];
    };
    std::vector<bool> connectors(std::size_t(count), false);
    TShapeKind<TMyLinkLine> asLink;
    for (std::int32_t no = 0; no < count; ++no) {
        // The objects lie apart in memory: the next few are asked for while this one is tested.
        if (no + 8 < count)
            __builtin_prefetch(cad.GetShapeByNo(no + 8));
        const TMyLinkLine *link = asLink(cad.GetShapeByNo(no));
        connectors[std::size_t(no)] = link && !inside(no) && link->ParentNo() == -1 &&
                                      !kept(link) && inside(link->StartSpNo()) &&
                                      inside(link->EndSpNo());
    }
    std::vector<std::int32_t> numbers;
    for (std::int32_t no = 0; no < count; ++no)
        if (taken[std::size_t(no)] || connectors[std::size_t(no)])
            numbers.push_back(no);
    return numbers;
}

// The copied shapes that no other copied shape holds as a member.
std::vector<TMyShape *> CopiedRoots(const TMyCAD &cad, const std::vector<std::int32_t> &numbers)
{
    std::vector<TMyShape *> roots;
    for (std::int32_t no : numbers) {
        TMyShape *shape = cad.GetShapeByNo(no);
        if (!std::binary_search(numbers.begin(), numbers.end(), shape->ParentNo()))
            roots.push_back(shape);
    }
    return roots;
}

// Reads clipboard data into shapes created for cad, with their relations as stored, and
// gives them the texts in full when the texts part came with the records; an empty answer
// on success, else the reason (and no shapes).
QString ReadShapesData(TMyCAD &cad, const QByteArray &data, const QByteArray &texts,
                       std::vector<std::unique_ptr<TMyShape>> &shapes)
{
    QByteArray bytes = data;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const QString previous = cad.DiskFileVersion();
    QString error;
    try {
        BinaryStream s(&buffer);
        if (ReadFixedText(s, DataTagWidth).trimmed() != DataTag())
            throw TStreamError("the data does not hold shapes of this component");
        const QString version = ReadFixedText(s, DataVersionWidth).trimmed();
        if (version != cad.FileVersion())
            throw TStreamError("unknown record version \"" + version.toStdString() + "\"");
        cad.SetDiskFileVersion(version);
        const std::int32_t count = s.ReadInt32();
        if (count <= 0)
            throw TStreamError("the data holds no shapes");
        s.RequireBytes(count, ClassNameWidth);
        shapes.reserve(std::size_t(count));
        for (std::int32_t i = 0; i < count; ++i) {
            const QString className = ReadFixedText(s, ClassNameWidth).trimmed();
            std::unique_ptr<TMyShape> shape = cad.CreateShapeByName(className);
            if (!shape)
                throw TStreamError("unknown shape class \"" + className.toStdString() + "\"");
            shape->LoadFromStream(s);
            shape->SetCenterPoint(shape->GetCenterPoint());
            shapes.push_back(std::move(shape));
        }
        if (s.BytesLeft() != 0)
            throw TStreamError(std::to_string(s.BytesLeft()) + " bytes follow the last shape");
        if (!texts.isEmpty())
            ApplyShapeTexts(texts, shapes);
    } catch (const TStreamError &e) {
        error = QString::fromStdString(e.what());
    } catch (const std::bad_alloc &) {
        error = QStringLiteral("out of memory");
    }
    cad.SetDiskFileVersion(previous);
    if (!error.isEmpty())
        shapes.clear();
    return error;
}

std::vector<const TMyShape *> ShapesAt(const TMyCAD &cad, const std::vector<std::int32_t> &numbers)
{
    std::vector<const TMyShape *> shapes;
    shapes.reserve(numbers.size());
    for (std::int32_t no : numbers)
        shapes.push_back(cad.GetShapeByNo(no));
    return shapes;
}

QByteArray Encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

// The painted extent (control pixels) of the copied roots; false when it is empty or too
// large to become a picture.
bool SelectionBox(const TMyCAD &cad, const std::vector<TMyShape *> &roots, TRect &box)
{
    bool any = false;
    for (TMyShape *root : roots) {
        const TRect r = cad.ShapeScreenRect(root);
        if (r.Right <= r.Left || r.Bottom <= r.Top)
            continue;
        box = any ? TRect(std::min(box.Left, r.Left), std::min(box.Top, r.Top),
                          std::max(box.Right, r.Right), std::max(box.Bottom, r.Bottom))
                  : r;
        any = true;
    }
    const std::int64_t w = std::int64_t(box.Right) - box.Left;
    const std::int64_t h = std::int64_t(box.Bottom) - box.Top;
    return any && w <= MaxPictureSide && h <= MaxPictureSide;
}

// A shape related to none is written as it is, numbered for the copy: a clone per shape
// would cost an allocation and a copy of every field for nothing.
void WriteCopied(TMyCAD &cad, BinaryStream &s, TMyShape &shape, std::int32_t no,
                 const TNumberMap &map)
{
    const bool related = shape.ParentNo() >= 0 || !shape.ChildShapes().empty() ||
                         !shape.LinkShapes().empty() || dynamic_cast<TMyLinkLine *>(&shape);
    if (related) {
        std::unique_ptr<TMyShape> copy = cad.CloneShape(shape);
        if (!copy)
            throw TStreamError("the shape could not be copied");
        RemapRelations(*copy, map);
        copy->SetShapeNo(no);
        WriteFixedText(s, copy->ClassName(), ClassNameWidth);
        copy->SaveToStream(s);
        return;
    }
    const std::int32_t own = shape.ShapeNo();
    shape.SetShapeNo(no);
    try {
        WriteFixedText(s, shape.ClassName(), ClassNameWidth);
        shape.SaveToStream(s);
    } catch (...) {
        shape.SetShapeNo(own);
        throw;
    }
    shape.SetShapeNo(own);
}

} // namespace

// ---- Placing ----

std::vector<TMyShape *> TMyCAD::PlaceShapes(std::vector<std::unique_ptr<TMyShape>> shapes,
                                            TMyPoint offset, bool keepLayer)
{
    std::vector<TMyShape *> placed;
    const std::int32_t base = GetShapesCount();
    const std::int32_t count = std::int32_t(shapes.size());
    const TNumberMap map = [base, count](std::int32_t n) {
        return n >= 0 && n < count ? base + n : -1;
    };
    placed.reserve(shapes.size());
    for (std::int32_t i = 0; i < count; ++i) {
        TMyShape *shape = shapes[std::size_t(i)].get();
        RemapRelations(*shape, map);
        Translate(*shape, offset);
        const std::int32_t id = m_ShapeIdCounter;
        shape->SetShapeNo(base + i);
        shape->SetShapeId(id);
        shape->SetName(QStringLiteral("Shape") + QString::number(id));
        // Only the first can be refused: without any layer nothing is added.
        if (!AddShape(shape, keepLayer, false))
            return {};
        shapes[std::size_t(i)].release();
        placed.push_back(shape);
    }
    if (placed.empty())
        return placed;
    PushtoUndoRedoShapeList(placed, count - 1, ACT_ADD);
    m_WorkingShapes.clear();
    for (TMyShape *shape : placed)
        if (shape->ParentNo() == -1)
            m_WorkingShapes.push_back(shape);
    m_CurrentShape = m_WorkingShapes.empty() ? nullptr : m_WorkingShapes.back();
    if (m_OnShapeAdded) {
        for (TMyShape *shape : placed)
            m_OnShapeAdded(this, shape, GetShapesCount());
        DocumentChanged(); // the handler may have changed anything
    } else {
        Invalidate(); // the index takes in appended shapes at its next query
    }
    return placed;
}

std::unique_ptr<TMyShape> TMyCAD::CloneShape(const TMyShape &source)
{
    // Copied field by field rather than through the stored record, whose texts are 8-bit and
    // cut short: the copy is the shape an undo step would give back.
    std::unique_ptr<TMyShape> copy = CreateShapeByName(source.ClassName());
    if (!copy)
        return nullptr;
    CopyWholeState(*copy, source);
    copy->SetCenterPoint(source.CenterPoint());
    return copy;
}

// ---- Copy ----

QByteArray TMyCAD::CopiedShapesData()
{
    return ShapesDataOf(CopiedNumbers(*this));
}

QByteArray TMyCAD::CopiedShapeTexts()
{
    const std::vector<std::int32_t> numbers = CopiedNumbers(*this);
    return numbers.empty() ? QByteArray() : ShapeTextsData(ShapesAt(*this, numbers));
}

QByteArray TMyCAD::ShapesDataOf(const std::vector<std::int32_t> &numbers)
{
    if (numbers.empty())
        return {};
    std::vector<std::int32_t> place(m_Shapes.size(), -1);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        place[std::size_t(numbers[i])] = std::int32_t(i);
    const TNumberMap map = [&place](std::int32_t n) {
        return n >= 0 && std::size_t(n) < place.size() ? place[std::size_t(n)] : -1;
    };
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    try {
        BinaryStream s(&buffer);
        WriteFixedText(s, DataTag(), DataTagWidth);
        WriteFixedText(s, m_FileVersion, DataVersionWidth);
        s.WriteInt32(std::int32_t(numbers.size()));
        for (std::size_t i = 0; i < numbers.size(); ++i)
            WriteCopied(*this, s, *GetShapeByNo(numbers[i]), std::int32_t(i), map);
    } catch (const TStreamError &) {
        return {};
    }
    return data;
}

QImage TMyCAD::SelectionImage()
{
    return PictureOf(CopiedRoots(*this, CopiedNumbers(*this)));
}

QImage TMyCAD::PictureOf(const std::vector<TMyShape *> &roots)
{
    TRect box;
    if (!SelectionBox(*this, roots, box))
        return {};
    QImage image(box.Width(), box.Height(), QImage::Format_RGB32);
    image.fill(ToQColor(m_ColorOfBackGround));
    {
        TCanvas canvas(&image);
        canvas.SetOrigin(TPoint(box.Left, box.Top));
        for (TMyShape *root : roots)
            if (root->Visible())
                DrawShapeTree(canvas, root, 0);
        canvas.Flush();
    }
    return image;
}

// The shapes go through a canvas over the SVG writer, so that they arrive as figures that
// other applications can edit and scale.
QByteArray TMyCAD::SelectionSvg()
{
    return SvgOf(CopiedRoots(*this, CopiedNumbers(*this)));
}

QByteArray TMyCAD::SvgOf(const std::vector<TMyShape *> &roots)
{
    TRect box;
    if (!SelectionBox(*this, roots, box))
        return {};
    const QSize size(box.Width(), box.Height());
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    generator.setResolution(ScreenPixelsPerInch());
    generator.setTitle(QStringLiteral("Shapes"));
    {
        TCanvas canvas(static_cast<QPaintDevice *>(&generator));
        canvas.SetOrigin(TPoint(box.Left, box.Top));
        canvas.Brush().Color = m_ColorOfBackGround;
        canvas.Brush().Style = TBrushStyle::bsSolid;
        canvas.FillRect(box);
        for (TMyShape *root : roots)
            if (root->Visible())
                DrawShapeTree(canvas, root, 0);
    }
    return bytes;
}

bool TMyCAD::CopyToClipboard()
{
    return PutOnClipboard(CopiedNumbers(*this));
}

bool TMyCAD::PutOnClipboard(const std::vector<std::int32_t> &numbers)
{
    // The picture first: drawing updates what the line classes derive from their points
    // (their angle), and the records should hold the shapes as the copy leaves them.
    const std::vector<TMyShape *> roots = CopiedRoots(*this, numbers);
    const QImage image = PictureOf(roots);
    const QByteArray svg = SvgOf(roots);
    const QByteArray data = ShapesDataOf(numbers);
    if (data.isEmpty())
        return false;
    auto *mime = new QMimeData;
    mime->setData(ShapesMimeType(), data);
    mime->setData(ShapeTextsMimeType(), ShapeTextsData(ShapesAt(*this, numbers)));
    if (!image.isNull()) {
        mime->setData(QStringLiteral("image/png"), Encoded(image, "PNG"));
        mime->setData(QStringLiteral("image/svg+xml"), svg);
    }
    QGuiApplication::clipboard()->setMimeData(mime);
    return true;
}

bool TMyCAD::CutToClipboard()
{
    // Deleting leaves locked shapes where they are; copying them too would make a paste
    // duplicate them.
    const std::vector<std::int32_t> numbers = CopiedNumbers(*this, true);
    const std::vector<TMyShape *> roots = CopiedRoots(*this, numbers);
    if (!PutOnClipboard(numbers))
        return false;
    SetWorkingShapes(roots);
    DeleteSelectedShapes();
    return true;
}

// ---- Paste ----

bool TMyCAD::PasteShapesData(const QByteArray &data, const QByteArray &texts)
{
    m_LastError.clear();
    std::vector<std::unique_ptr<TMyShape>> shapes;
    m_LastError = ReadShapesData(*this, data, texts, shapes);
    if (!m_LastError.isEmpty())
        return false;
    if (PlaceShapes(std::move(shapes), {PasteOffset, PasteOffset}, false).empty()) {
        m_LastError = QStringLiteral("the drawing has no layer to hold the shapes");
        return false;
    }
    SetModified(true);
    return true;
}

bool TMyCAD::PasteFromClipboard()
{
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    if (!mime || !mime->hasFormat(ShapesMimeType())) {
        m_LastError = QStringLiteral("the clipboard holds no shapes");
        return false;
    }
    // Data of a program that does not write the texts part pastes with the records' texts.
    return PasteShapesData(mime->data(ShapesMimeType()), mime->data(ShapeTextsMimeType()));
}

} // namespace tessal
