// SPDX-License-Identifier: MIT
// TMyCAD::SaveToDxf and SaveToDxf1: the shapes as a minimal ENTITIES-only DXF file.
#include <tessal/dxf/dxfnumbers.h>
#include <tessal/dxf/dxfwriter_p.h>
#include <tessal/platform/filesaver_p.h>
#include <tessal/shapes/text.h>
#include <tessal/surface/cad.h>

#include <charconv>

#include <vector>

namespace tessal {

TDxfWriter::TDxfWriter(double controlHeight, double zoom, bool glyphs)
    : m_Height(controlHeight)
    , m_Zoom(zoom)
    , m_Glyphs(glyphs)
{
    Pair(0, "SECTION");
    Pair(2, "ENTITIES");
}

bool TDxfWriter::Drain(QIODevice &device, qsizetype atLeast)
{
    if (m_Out.size() < atLeast)
        return true;
    const bool written = device.write(m_Out) == m_Out.size();
    m_Out.truncate(0); // the buffer is kept for the next piece
    return written;
}

QByteArray TDxfWriter::Finish()
{
    Pair(0, "ENDSEC");
    Pair(0, "EOF");
    return std::move(m_Out);
}

// Group code and value, each on its own line. Lines end in CR LF, as DXF files have
// traditionally been written; every reader also takes them. A file holds millions of
// values, so they are appended without making texts of their own.
void TDxfWriter::Code(int code)
{
    char text[16];
    m_Out.append(text, std::to_chars(text, text + sizeof text, code).ptr - text);
    m_Out.append("\r\n", 2);
}

void TDxfWriter::Pair(int code, QByteArrayView value)
{
    Code(code);
    m_Out.append(value);
    m_Out.append("\r\n", 2);
}

void TDxfWriter::Number(int code, double value)
{
    Code(code);
    char text[Dxf::MaxNumberLength];
    m_Out.append(text, qsizetype(Dxf::WriteNumber(text, value)));
    m_Out.append("\r\n", 2);
}

// Entity type, handle and layer "0", the start of every record.
void TDxfWriter::Head(const char *type)
{
    Pair(0, type);
    char handle[16];
    Pair(5, QByteArrayView(handle, std::to_chars(handle, handle + sizeof handle, m_Handle++).ptr));
    Pair(8, "0");
}

void TDxfWriter::Point(int code, QPointF p)
{
    Number(code, p.x() / Dxf::PixelsPerMm);
    Number(code + 10, (m_Height - p.y()) / Dxf::PixelsPerMm);
    Pair(code + 20, "0.0");
}

void TDxfWriter::Line(QPointF a, QPointF b)
{
    Head("LINE");
    Point(10, a);
    Point(11, b);
}

// One LINE per segment between consecutive points.
void TDxfWriter::Chain(std::span<const TMyPoint> points)
{
    for (std::size_t i = 1; i < points.size(); ++i)
        Line({points[i - 1].X, points[i - 1].Y}, {points[i].X, points[i].Y});
}

// A POLYLINE with its VERTEX records and SEQEND, always flagged closed (70 = 1).
void TDxfWriter::Polyline(std::span<const QPointF> points)
{
    Head("POLYLINE");
    Pair(66, "1");
    Pair(10, "0.0");
    Pair(20, "0.0");
    Pair(30, "0.0");
    Pair(70, "1");
    for (QPointF p : points) {
        Head("VERTEX");
        Point(10, p);
    }
    Head("SEQEND");
}

void TDxfWriter::Polyline(std::span<const TMyPoint> points)
{
    std::vector<QPointF> converted;
    converted.reserve(points.size());
    for (TMyPoint p : points)
        converted.emplace_back(p.X, p.Y);
    Polyline(converted);
}

void TDxfWriter::Circle(QPointF centre, double radiusPixels)
{
    Head("CIRCLE");
    Point(10, centre);
    Number(40, radiusPixels / Dxf::PixelsPerMm);
}

QByteArray TMyCAD::DxfText(bool glyphs) const
{
    TDxfWriter writer(height(), Zoom(), glyphs);
    for (const std::unique_ptr<TMyShape> &shape : m_Shapes)
        writer.WriteShape(*shape);
    return writer.Finish();
}

namespace {

// A report every this many shapes keeps the handler's cost out of sight.
constexpr std::int32_t ProgressStep = 4096;
// The text goes to the file in pieces of about this many bytes.
constexpr qsizetype PieceSize = qsizetype(1) << 18;

enum class TWritten { Complete, Cancelled, Failed };

// The file's text written to file as it is made, with progress per shape through
// OnProgress, which may cancel.
TWritten WriteDxf(const TMyCAD &cad, bool glyphs, QIODevice &file)
{
    const std::int32_t count = cad.GetShapesCount();
    auto report = [&cad, count](std::int32_t done) {
        bool cancelled = false;
        if (cad.OnProgress())
            cad.OnProgress()(const_cast<TMyCAD *>(&cad), done, count, cancelled);
        return !cancelled;
    };
    if (!report(0))
        return TWritten::Cancelled;
    TDxfWriter writer(cad.height(), cad.Zoom(), glyphs);
    for (std::int32_t i = 0; i < count; ++i) {
        writer.WriteShape(*cad.GetShapeByNo(i));
        if (!writer.Drain(file, PieceSize))
            return TWritten::Failed;
        if ((i + 1) % ProgressStep == 0 && !report(i + 1))
            return TWritten::Cancelled;
    }
    if (!report(count))
        return TWritten::Cancelled;
    const QByteArray rest = writer.Finish();
    return file.write(rest) == rest.size() ? TWritten::Complete : TWritten::Failed;
}

// The text goes to a temporary file that replaces the old one only when complete, so that
// a cancel or a failed write (a full disk, a file-size limit) leaves the old file as it was.
bool SaveDxf(TMyCAD &cad, bool glyphs, const QString &fileName)
{
    bool cancelled = false;
    QString reason;
    const bool saved = detail::SaveWholeFile(
        fileName,
        [&](QIODevice &file) {
            const TWritten written = WriteDxf(cad, glyphs, file);
            cancelled = written == TWritten::Cancelled;
            return written == TWritten::Complete;
        },
        reason);
    if (cancelled)
        reason = QStringLiteral("%1: cancelled").arg(fileName);
    cad.SetLastDxfError(saved ? QString() : reason);
    return saved;
}

} // namespace

bool TMyCAD::SaveToDxf(const QString &fileName)
{
    return SaveDxf(*this, false, fileName);
}

bool TMyCAD::SaveToDxf1(const QString &fileName)
{
    return SaveDxf(*this, true, fileName);
}

} // namespace tessal
