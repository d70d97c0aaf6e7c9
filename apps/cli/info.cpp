// SPDX-License-Identifier: MIT
// tessal-cli info: the facts of a drawing, one a line.
#include "info.h"

#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QMetaEnum>

#include <map>

namespace tessal::Cli {

namespace {

template <typename E>
QString EnumName(E value)
{
    return QString::fromLatin1(QMetaEnum::fromType<E>().valueToKey(int(value)));
}

// Layer names are free text; quoting shows leading and trailing blanks.
QString Quoted(const QString &text)
{
    QString quoted = text;
    quoted.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    quoted.replace(QLatin1Char('"'), QLatin1String("\\\""));
    quoted.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

} // namespace

QString DrawingInfo(const TMyCAD &cad)
{
    QString text;
    QTextStream out(&text);
    out << "version: " << cad.DiskFileVersion() << '\n';
    out << "page: " << EnumName(cad.PageStyle()) << ", " << cad.PageWidth() << " x "
        << cad.PageHeight() << " mm, " << EnumName(cad.PageOrientation()) << '\n';
    out << "size: " << cad.width() << " x " << cad.height() << " pixels\n";
    out << "unit: " << EnumName(cad.TheUNIT()) << '\n';
    out << "layers: " << cad.GetLayersCount() << ", current " << cad.CurrentLayerId() << '\n';
    for (const TLayer &layer : cad.Layers())
        out << "  layer " << layer.Id << ' ' << Quoted(layer.Name) << ' '
            << (layer.Visible ? "visible" : "hidden") << ' ' << cad.GetShapesCountInALayer(layer.Id)
            << " shapes\n";
    std::map<QString, int> byClass;
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
        ++byClass[cad.GetShapeByNo(no)->ClassName()];
    out << "shapes: " << cad.GetShapesCount() << '\n';
    for (const auto &[className, count] : byClass)
        out << "  " << className << ' ' << count << '\n';
    return text;
}

int RunInfo(const QString &fileName, TIo io)
{
    QString error;
    const std::unique_ptr<TMyCAD> cad = LoadDrawing(fileName, error);
    if (!cad)
        return Fail(io, error);
    io.Out << "file: " << fileName << '\n' << DrawingInfo(*cad);
    io.Out.flush();
    return ExitOk;
}

} // namespace tessal::Cli
