// SPDX-License-Identifier: GPL-2.0-or-later
// Reading DXF drawings into a TMyCAD (the Tessal::DxfImport library).
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <map>

namespace tessal {

class TMyCAD;

// What an import did. Entities that could not become shapes are counted by entity type
// and reason ("ENTITY: reason"), never dropped silently.
struct TDxfImportReport
{
    // Entities that became shapes; one inside a block counts once for every copy of it.
    std::int64_t EntitiesRead = 0;
    std::int64_t ShapesCreated = 0; // shapes added, groups and copies of blocks included
    std::map<QString, std::int64_t> Skipped;
    // Problems that did not stop the import (for example more layers than a drawing holds).
    QStringList Notes;
    // Set when the file could not be read at all or only in part.
    QString Error;
    bool Cancelled = false; // the drawing's OnProgress stopped the import
    double UnitToMm = 1;    // the scale of the file's drawing unit ($INSUNITS, $MEASUREMENT)

    std::int64_t SkippedCount() const;
    // The report as lines of text for people: counts, skipped entities, notes, error.
    QStringList Lines() const;
};

// Called now and then with the work done so far and the whole work, which is the file's size:
// the parse takes the first half of it by the bytes read, the build of the shapes the rest
// by the entities built. Reports never go back, and the last one is the whole. The
// drawing's OnProgress gets the same reports and may cancel at any of them.
using TDxfProgress = std::function<void(std::int64_t done, std::int64_t total)>;

struct TDxfImportOptions
{
    TDxfProgress Progress;
    // An INSERT nests no deeper than this; deeper ones are skipped and counted.
    std::int32_t MaxBlockDepth = 16;
    // Copies of blocks stop once the drawing would exceed this many shapes.
    std::int64_t MaxShapes = 2'000'000;
};

// Replaces the drawing of cad with the DXF file: ASCII DXF from R12 to R2018. Each layer of
// the file becomes a layer (with its visibility), each entity a shape on its layer, each
// INSERT a group of its block's shapes. Millimetres become document pixels and Y is
// flipped against the control's height, the inverse of TMyCAD::SaveToDxf, so a drawing
// written and read back keeps its geometry; the control grows to hold the drawing. False
// when nothing could be read (binary DXF, not a DXF file, unreadable file), with
// report.Error and cad.LastError() saying why; a damaged file imports what was read before
// the damage, answers false and says so in the report. The shapes are built aside and replace
// the drawing only when all are built, while the drawing's OnProgress is told the progress
// (see TDxfProgress). A cancel at any report leaves the drawing untouched, its undo history
// and size included; the call answers false with report.Cancelled, and the report counts no
// shapes.
bool LoadFromDxf(TMyCAD &cad, const QString &fileName, TDxfImportReport &report,
                 const TDxfImportOptions &options = {});
// The same from the file's bytes.
bool LoadFromDxfData(TMyCAD &cad, const QByteArray &data, TDxfImportReport &report,
                     const TDxfImportOptions &options = {});

} // namespace tessal
