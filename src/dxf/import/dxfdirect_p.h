// SPDX-License-Identifier: GPL-2.0-or-later
// The DXF file read as groups, and the most common simple entities decoded straight from
// their groups.
#pragma once

#include <tessal/dxf/import/dxfmodel_p.h>

#include <QByteArray>

#include <string_view>

namespace tessal::DxfImport {

// The file's lines taken in pairs: a group code and its value. The code is read as strtol
// reads it (blanks around it ignored, 0 when it is no number); the value loses only its
// line end, since blanks belong to texts and names.
class TGroupReader
{
public:
    explicit TGroupReader(const QByteArray &data);
    // The next group; false when fewer than two lines are left.
    bool Next();
    int Code() const { return m_Code; }
    std::string_view Value() const { return m_Value; }
    // Bytes read so far.
    qsizetype Offset() const { return m_At - m_Begin; }
    // The group's two lines as they are in the file, line ends included.
    const char *GroupBegin() const { return m_Group; }
    const char *GroupEnd() const { return m_At; }

private:
    std::string_view NextLine();

    const char *m_Begin;
    const char *m_At;
    const char *m_End;
    const char *m_Group = nullptr;
    int m_Code = 0;
    std::string_view m_Value;
};

// A real number as the file writes it; a decimal comma counts as a point. 0 when it is no
// number, infinite when it is too large (such geometry is refused later).
double ToReal(std::string_view s);

// LINE, POINT, CIRCLE, ARC, LWPOLYLINE, TEXT, and the POLYLINE of older files with its
// VERTEX entities: most of a drawing, and simple enough to decode here, which spares the
// parser library's number conversion (a string stream per value).
bool IsDirectEntity(std::string_view type);

// One such entity, collected group by group as the parser library would read it: the last
// value of a code wins, a missing one is 0 (colour 256, true colour and weight -1).
class TDirectEntity
{
public:
    // A POLYLINE entity only starts a polyline; each VERTEX after it adds a point.
    enum class TPart { Entity, PolylineStart, Vertex };

    void Start(std::string_view type);
    void Add(int code, std::string_view value);
    TEntity Finish();
    TPart Part() const { return m_Part; }
    // Group 70.
    std::int32_t Flags() const { return m_Flags; }
    // A VERTEX's point and bulge, read without finishing it as an entity.
    QPointF VertexPoint() const { return m_First; }
    double VertexBulge() const { return m_Bulge; }

private:
    TEntity m_Entity;
    TPart m_Part = TPart::Entity;
    QPointF m_First, m_Second;
    double m_Bulge = 0;
    std::int32_t m_Flags = 0;
    std::int32_t m_VAlign = 0;
    std::string m_Text;
};

} // namespace tessal::DxfImport
