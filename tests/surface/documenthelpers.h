// SPDX-License-Identifier: MIT
// Builders and checks for document tests: shapes drawn by code, bound connectors, a
// field-level snapshot keyed by identity, and the consistency of every shape number.
#pragma once

#include <tessal/platform/binarystream.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapetools.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QBuffer>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <span>
#include <vector>

namespace tessal::test {

inline TMyShape *AddRectangle(TMyCAD &cad, float l, float t, float r, float b)
{
    const TMyPoint corners[] = {{l, t}, {r, b}};
    return cad.GetShapeByID(cad.AddShapeByCode(TDrawTool::SpRectangle, {}, corners, 0, {}));
}

// A shape of tool through points, as the surface makes it by code; nullptr when refused or
// when it is not a T.
template <typename T = TMyShape>
T *AddByCode(TMyCAD &cad, TDrawTool tool, std::span<const TMyPoint> points, double angle = 0,
             const QString &text = {})
{
    return dynamic_cast<T *>(cad.GetShapeByID(cad.AddShapeByCode(tool, {}, points, angle, text)));
}

template <typename T = TMyShape>
T *AddByCode(TMyCAD &cad, TDrawTool tool, std::initializer_list<TMyPoint> points, double angle = 0,
             const QString &text = {})
{
    return AddByCode<T>(cad, tool, std::span(points.begin(), points.size()), angle, text);
}

// A connector from a to b, bound at both ends the way the binding operations leave it: the
// ends name the shapes' numbers and each shape lists the connector.
inline TMyLinkLine *AddConnector(TMyCAD &cad, TMyShape *a, TMyShape *b)
{
    const TMyPoint ends[] = {a->GetCenterPoint(), b->GetCenterPoint()};
    auto *link = dynamic_cast<TMyLinkLine *>(
        cad.GetShapeByID(cad.AddShapeByCode(TDrawTool::SpLinkLine, {}, ends, 0, {})));
    const std::int32_t self = cad.GetShapeNoInMyShapes(link);
    link->SetStartSpNo(cad.GetShapeNoInMyShapes(a));
    link->SetStartSpPtId(0);
    link->SetEndSpNo(cad.GetShapeNoInMyShapes(b));
    link->SetEndSpPtId(1);
    AddLinklineShape(*a, self);
    AddLinklineShape(*b, self);
    return link;
}

// A connector's ends: start shape and point, end shape and point.
inline std::array<std::int32_t, 4> Ends(const TMyLinkLine *link)
{
    return {link->StartSpNo(), link->StartSpPtId(), link->EndSpNo(), link->EndSpPtId()};
}

inline std::int32_t IdAt(const TMyCAD &cad, std::int32_t no)
{
    const TMyShape *shape = cad.GetShapeByNo(no);
    return shape ? shape->ShapeId() : -1;
}

// A shape's fields with every shape number replaced by the identity it names, so that
// documents compare equal however their lists are ordered.
struct TShapeState
{
    QString Class;
    QString Name;
    std::int32_t Id = -1;
    TMyPointArray Points;
    std::int32_t Layer = -1;
    std::int32_t ParentId = -1;
    std::vector<std::int32_t> ChildIds;
    std::vector<std::int32_t> LinkIds;
    std::int32_t StartId = -1, StartPt = -1, EndId = -1, EndPt = -1;
    friend bool operator==(const TShapeState &, const TShapeState &) = default;
};

inline std::map<std::int32_t, TShapeState> Snapshot(const TMyCAD &cad)
{
    std::map<std::int32_t, TShapeState> states;
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no) {
        const TMyShape *shape = cad.GetShapeByNo(no);
        TShapeState s;
        s.Class = shape->ClassName();
        s.Name = shape->Name();
        s.Id = shape->ShapeId();
        s.Points = shape->Points();
        s.Layer = shape->LayerId();
        s.ParentId = IdAt(cad, shape->ParentNo());
        for (std::int32_t child : shape->ChildShapes())
            s.ChildIds.push_back(IdAt(cad, child));
        std::sort(s.ChildIds.begin(), s.ChildIds.end());
        for (std::int32_t link : shape->LinkShapes())
            s.LinkIds.push_back(IdAt(cad, link));
        std::sort(s.LinkIds.begin(), s.LinkIds.end());
        if (const auto *link = dynamic_cast<const TMyLinkLine *>(shape)) {
            s.StartId = IdAt(cad, link->StartSpNo());
            s.StartPt = link->StartSpPtId();
            s.EndId = IdAt(cad, link->EndSpNo());
            s.EndPt = link->EndSpPtId();
        }
        states[s.Id] = s;
    }
    return states;
}

// Every relation names a list position: parents and child lists agree both ways, child lists
// ascend, and a connector is listed by exactly the shapes its ends are bound to. (ShapeNo
// is where a shape was made, not a position.)
inline ::testing::AssertionResult RelationsValid(const TMyCAD &cad)
{
    const std::int32_t n = cad.GetShapesCount();
    for (std::int32_t no = 0; no < n; ++no) {
        const TMyShape *shape = cad.GetShapeByNo(no);
        const auto fail = [&](const char *what) {
            return ::testing::AssertionFailure() << what << " at shape " << no;
        };
        if (const TMyShape *parent = cad.GetShapeByNo(shape->ParentNo())) {
            const auto &siblings = parent->ChildShapes();
            if (std::find(siblings.begin(), siblings.end(), no) == siblings.end())
                return fail("parent does not list the member");
        } else if (shape->ParentNo() != -1) {
            return fail("parent number out of range");
        }
        const auto &children = shape->ChildShapes();
        if (!std::is_sorted(children.begin(), children.end()))
            return fail("child list not ascending");
        for (std::int32_t child : children)
            if (!cad.GetShapeByNo(child) || cad.GetShapeByNo(child)->ParentNo() != no)
                return fail("member does not name its group");
        for (std::int32_t k : shape->LinkShapes()) {
            const auto *link = dynamic_cast<const TMyLinkLine *>(cad.GetShapeByNo(k));
            if (!link || (link->StartSpNo() != no && link->EndSpNo() != no))
                return fail("listed connector is not bound to the shape");
        }
        if (const auto *link = dynamic_cast<const TMyLinkLine *>(shape)) {
            for (std::int32_t end : {link->StartSpNo(), link->EndSpNo()}) {
                if (end == -1)
                    continue;
                const TMyShape *bound = cad.GetShapeByNo(end);
                if (!bound ||
                    std::count(bound->LinkShapes().begin(), bound->LinkShapes().end(), no) != 1)
                    return fail("bound shape does not list the connector");
            }
        }
    }
    return ::testing::AssertionSuccess();
}

// Points equal to expected within 1e-4.
inline void ExpectNear(const TMyPointArray &actual, const TMyPointArray &expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(actual[i].X, expected[i].X, 1e-4) << "point " << i;
        EXPECT_NEAR(actual[i].Y, expected[i].Y, 1e-4) << "point " << i;
    }
}

// The number of steps in the history.
inline std::int32_t StepCount(const TMyCAD &cad)
{
    const auto &list = cad.UndoRedoShapeList();
    return list.empty() ? 0 : list.back().Step + 1;
}

// The drawing as the drawing file holds it, for byte-for-byte comparisons.
inline QByteArray Saved(const TMyCAD &cad)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(cad.SaveToStream(&buffer)) << cad.LastError().toStdString();
    return bytes;
}

// A shape's stored record.
inline QByteArray Saved(const TMyShape &shape)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    BinaryStream stream(&buffer);
    shape.SaveToStream(stream);
    return data;
}

// Equal bytes, or where the first difference is.
inline ::testing::AssertionResult SameBytes(const QByteArray &now, const QByteArray &expected)
{
    if (now == expected)
        return ::testing::AssertionSuccess();
    qsizetype at = 0;
    while (at < now.size() && at < expected.size() && now[at] == expected[at])
        ++at;
    return ::testing::AssertionFailure()
           << "sizes " << now.size() << " and " << expected.size() << ", first difference at " << at
           << ": " << now.mid(at, 24).toHex(' ').toStdString() << " instead of "
           << expected.mid(at, 24).toHex(' ').toStdString();
}

// Rectangles, connectors between them, groups (some nested) and locked shapes.
inline void BuildRandomDrawing(TMyCAD &cad, std::mt19937 &rng)
{
    std::uniform_real_distribution<float> at(0, 500);
    std::vector<TMyShape *> boxes;
    for (int i = 0; i < 24; ++i) {
        const float x = at(rng), y = at(rng);
        boxes.push_back(AddRectangle(cad, x, y, x + 40, y + 30));
    }
    for (int i = 0; i < 8; ++i)
        AddConnector(cad, boxes[rng() % boxes.size()], boxes[rng() % boxes.size()]);
    for (int i = 0; i < 6; ++i) {
        std::vector<TMyShape *> members;
        for (TMyShape *box : {boxes[rng() % boxes.size()], boxes[rng() % boxes.size()]}) {
            TMyShape *root = cad.GetRootParentShape(box);
            if (std::find(members.begin(), members.end(), root) == members.end())
                members.push_back(root);
        }
        cad.GroupShapes(members, false);
    }
    for (int i = 0; i < 3; ++i)
        boxes[rng() % boxes.size()]->SetLockedFlag(true);
}

// Every identity from -1 to two past the counter is found where a search of the list from
// its start finds it first.
inline ::testing::AssertionResult IdsAgreeWithTheScan(const TMyCAD &cad)
{
    for (std::int32_t id = -1; id <= cad.ShapeIdCounter() + 1; ++id) {
        std::int32_t first = -1;
        for (std::int32_t no = 0; first < 0 && no < cad.GetShapesCount(); ++no)
            if (cad.GetShapeByNo(no)->ShapeId() == id)
                first = no;
        if (cad.GetShapeNoById(id) != first)
            return ::testing::AssertionFailure()
                   << "identity " << id << " at " << cad.GetShapeNoById(id) << ", first at "
                   << first;
    }
    return ::testing::AssertionSuccess();
}

// Whatever the index answers for the squares of the given sides laid every step over area
// (control pixels), a plain scan of the list answers too: the shapes a command, gesture or
// undo changed told the index themselves.
inline ::testing::AssertionResult IndexAgreesWithTheScan(TMyCAD &cad, const TRect &area, int step,
                                                         std::initializer_list<int> sides)
{
    std::vector<TRect> rects;
    for (int y = area.Top; y < area.Bottom; y += step)
        for (int x = area.Left; x < area.Right; x += step)
            for (const int side : sides)
                rects.emplace_back(x, y, x + side, y + side);
    // The index first: connector routes that follow the screen are worked out as it is built.
    std::vector<std::vector<std::int32_t>> indexed;
    for (const TRect &r : rects)
        indexed.push_back(cad.ShapesInRect(r));
    const std::vector<std::vector<std::int32_t>> linear = cad.ShapesInRectsLinear(rects);
    for (std::size_t i = 0; i < rects.size(); ++i)
        if (indexed[i] != linear[i])
            return ::testing::AssertionFailure() << "at " << rects[i].Left << "," << rects[i].Top
                                                 << " side " << rects[i].Right - rects[i].Left;
    return ::testing::AssertionSuccess();
}

} // namespace tessal::test
