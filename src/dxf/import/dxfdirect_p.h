// SPDX-License-Identifier: GPL-2.0-or-later
// The most common simple entities decoded straight from their groups, and the numbers of
// group values.
#pragma once

#include <tessal/dxf/import/dxfmodel_p.h>

#include <cstdint>
#include <string_view>

namespace tessal::DxfImport {

// An integer as strtol reads one: leading blanks and a sign, then digits; 0 when there are
// none, the nearest 64-bit value when there are too many, then cut to 32 bits as a long is
// cut to an int.
std::int32_t ToInt(std::string_view s);

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
