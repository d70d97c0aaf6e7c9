// SPDX-License-Identifier: GPL-2.0-or-later
// Groups of a DXF file, and simple entities decoded from them.
#include <tessal/dxf/import/dxfdirect_p.h>
#include <tessal/dxf/import/dxfvalues_p.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace tessal::DxfImport {

namespace {

std::string_view TrimBlanks(std::string_view s)
{
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
        s.remove_suffix(1);
    return s;
}

} // namespace

std::int32_t ToInt(std::string_view s)
{
    s = TrimBlanks(s);
    if (!s.empty() && s.front() == '+')
        s.remove_prefix(1);
    long long value = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value);
    if (ec == std::errc::result_out_of_range)
        value = !s.empty() && s.front() == '-' ? INT64_MIN : INT64_MAX;
    (void)end;
    return std::int32_t(value);
}

double ToReal(std::string_view s)
{
    s = TrimBlanks(s);
    if (!s.empty() && s.front() == '+')
        s.remove_prefix(1);
    char buffer[64];
    if (s.find(',') != std::string_view::npos && s.size() < sizeof buffer) {
        std::copy(s.begin(), s.end(), buffer);
        std::replace(buffer, buffer + s.size(), ',', '.');
        s = {buffer, s.size()};
    }
    double value = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value);
    (void)end;
    if (ec == std::errc::result_out_of_range)
        return !s.empty() && s.front() == '-' ? -HUGE_VAL : HUGE_VAL;
    return ec == std::errc() ? value : 0;
}

bool IsDirectEntity(std::string_view type)
{
    return type == "LINE" || type == "LWPOLYLINE" || type == "CIRCLE" || type == "ARC" ||
           type == "TEXT" || type == "POINT" || type == "POLYLINE" || type == "VERTEX";
}

void TDirectEntity::Start(std::string_view type)
{
    m_Entity = {};
    m_Part = type == "POLYLINE" ? TPart::PolylineStart
             : type == "VERTEX" ? TPart::Vertex
                                : TPart::Entity;
    m_First = m_Second = {};
    m_Bulge = 0;
    m_Flags = m_VAlign = 0;
    m_Text.clear();
    // Both polyline kinds are reported as POLYLINE, as the parser library hands them on.
    m_Entity.Kind = type == "LINE"     ? TKind::Line
                    : type == "POINT"  ? TKind::Point
                    : type == "CIRCLE" ? TKind::Circle
                    : type == "ARC"    ? TKind::Arc
                    : type == "TEXT"   ? TKind::Text
                                       : TKind::Polyline;
    m_Entity.Type = m_Entity.Kind == TKind::Polyline ? "POLYLINE" : std::string(type);
}

void TDirectEntity::Add(int code, std::string_view value)
{
    TEntity &e = m_Entity;
    // A LWPOLYLINE lists its vertices; a POLYLINE's group 10 is no vertex.
    const bool vertices = e.Kind == TKind::Polyline && m_Part == TPart::Entity;
    switch (code) {
    case 1:
        m_Text.assign(value);
        break;
    case 8:
        e.Style.Layer.assign(value);
        break;
    case 62:
        e.Style.Aci = ToInt(value);
        break;
    case 420:
        e.Style.TrueColor = ToInt(value);
        break;
    case 370:
        e.Style.Weight = ToInt(value);
        break;
    case 10:
        if (vertices) {
            e.Points.emplace_back(ToReal(value), 0);
        } else {
            m_First.setX(ToReal(value));
        }
        break;
    case 20:
        if (!vertices)
            m_First.setY(ToReal(value));
        else if (!e.Points.empty())
            e.Points.back().setY(ToReal(value));
        break;
    case 11:
        m_Second.setX(ToReal(value));
        break;
    case 21:
        m_Second.setY(ToReal(value));
        break;
    case 40:
        e.Radius = e.Height = ToReal(value);
        break;
    case 42:
        if (!vertices)
            m_Bulge = ToReal(value);
        else
            SetLastBulge(e, ToReal(value));
        break;
    case 50:
        e.Start = ToReal(value);
        break;
    case 51:
        e.End = ToReal(value);
        break;
    case 70:
        m_Flags = ToInt(value);
        break;
    case 72:
        e.HAlign = ToInt(value);
        break;
    case 73:
        m_VAlign = ToInt(value);
        break;
    default:
        break;
    }
}

TEntity TDirectEntity::Finish()
{
    TEntity &e = m_Entity;
    switch (e.Kind) {
    case TKind::Line:
        e.Points = {m_First, m_Second};
        break;
    case TKind::Point:
        e.Points = {m_First};
        break;
    case TKind::Circle:
    case TKind::Arc:
        e.Centre = m_First;
        break;
    case TKind::Text: {
        const double degrees = e.Start;
        e.Start = e.Radius = 0;
        SetText(e, m_First, m_Second, e.Height, degrees, e.HAlign, m_VAlign, m_Text);
        break;
    }
    default:
        // Widths and thickness are not drawn.
        e.Radius = e.Start = e.End = 0;
        e.Closed = m_Flags & 1;
        break;
    }
    if (e.Kind != TKind::Text)
        e.Height = e.HAlign = 0;
    return std::move(e);
}

} // namespace tessal::DxfImport
