// SPDX-License-Identifier: MIT
// TMyShape: the base of every drawable object of a surface.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/platform/bitmap.h>
#include <tessal/platform/canvas.h>
#include <tessal/platform/graphics.h>
#include <tessal/platform/types.h>
#include <tessal/shapes/cursors.h>
#include <tessal/shapes/shapeenums.h>
#include <tessal/shapes/shapehost.h>
#include <tessal/shapes/userdata.h>

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace tessal {

class BinaryStream;
class TMyCAD;
class TMyShape;

// Fired by the surface when the shape is clicked, with the surface as sender, as its own
// events are; the shape clicked comes second.
using TShapeNotifyEvent = std::function<void(TMyCAD *sender, TMyShape *shape)>;

// The properties that most shapes leave at their defaults: texts, user data, the click
// handler, the gradient and the log text settings. A shape keeps them apart and allocates
// them on the first change, so that a plain shape stays small (drawings hold a million).
struct TShapeExtras
{
    QString Caption;
    QString Info;
    QStringList MultiInfo;
    TShapeNotifyEvent OnClick;
    TUserData UserData;
    TBitmap GradientBitmap;
    TColor ColorBegin = clWhite;
    TColor ColorEnd = clBlack;
    std::int32_t LogHeight = 10;
    std::int32_t LogWidth = 10;
    TGradientStyle GradientStyle = TGradientStyle::gsNone;
    TAlignment MultiInfoAlignment = TAlignment::taLeftJustify;
    bool LogUse = false;
};

// Geometry is stored in document units (pixels at zoom 1). Operations whose names end in
// "InZoom", AddPoint / AddLinkPoint, the Point...Add... operations and the drag operations
// take or give screen values (document value x the host's Zoom). Angles are radians.
//
// A shape is created for one host (the surface), which owns it and must outlive it. Setters
// compare first and do nothing for an equal value; otherwise they store, and ask the host
// to repaint where the value is visible. They never paint directly.
class TMyShape
{
    Q_GADGET
    Q_PROPERTY(float Angle READ Angle WRITE SetAngle)
    Q_PROPERTY(tessal::TBrush Brush READ Brush WRITE SetBrush)
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(bool CaptionShow READ CaptionShow WRITE SetCaptionShow)
    Q_PROPERTY(tessal::TColor ColorBegin READ ColorBegin WRITE SetColorBegin)
    Q_PROPERTY(tessal::TColor ColorEnd READ ColorEnd WRITE SetColorEnd)
    Q_PROPERTY(bool DragEnable READ DragEnable WRITE SetDragEnable)
    Q_PROPERTY(tessal::TFont Font READ Font WRITE SetFont)
    Q_PROPERTY(
        tessal::ShapeEnums::TGradientStyle GradientStyle READ GradientStyle WRITE SetGradientStyle)
    Q_PROPERTY(bool HotShow READ HotShow WRITE SetHotShow)
    Q_PROPERTY(QString Info READ Info WRITE SetInfo)
    Q_PROPERTY(bool IsFlipHorz READ IsFlipHorz WRITE SetIsFlipHorz)
    Q_PROPERTY(bool IsFlipVert READ IsFlipVert WRITE SetIsFlipVert)
    Q_PROPERTY(bool Locked READ Locked WRITE SetLocked)
    Q_PROPERTY(int LogHeight READ LogHeight WRITE SetLogHeight)
    Q_PROPERTY(bool LogUse READ LogUse WRITE SetLogUse)
    Q_PROPERTY(int LogWidth READ LogWidth WRITE SetLogWidth)
    Q_PROPERTY(QStringList MultiInfo READ MultiInfo WRITE SetMultiInfo)
    Q_PROPERTY(tessal::PlatformEnums::TAlignment MultiInfoAlignment READ MultiInfoAlignment WRITE
                   SetMultiInfoAlignment)
    Q_PROPERTY(tessal::TShapeNotifyEvent OnClick READ OnClick WRITE SetOnClick)
    Q_PROPERTY(tessal::TPen Pen READ Pen WRITE SetPen)
    Q_PROPERTY(tessal::ShapeEnums::TPenStyleJoinType PenStyleJoinType READ PenStyleJoinType WRITE
                   SetPenStyleJoinType)
    Q_PROPERTY(tessal::ShapeEnums::TPenStyleEndCapType PenStyleEndCapType READ PenStyleEndCapType
                   WRITE SetPenStyleEndCapType)
    Q_PROPERTY(bool ResizeEnable READ ResizeEnable WRITE SetResizeEnable)
    Q_PROPERTY(bool RotateEnable READ RotateEnable WRITE SetRotateEnable)
    Q_PROPERTY(int Tag READ Tag WRITE SetTag)
    Q_PROPERTY(tessal::TUserData UserData READ UserData WRITE SetUserData)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)

public:
    // Copies the host's pen, brush, font, join and end-cap types and the enable flags.
    explicit TMyShape(TShapeHost *host);
    TMyShape(const TMyShape &) = delete;
    TMyShape &operator=(const TMyShape &) = delete;
    virtual ~TMyShape();

    // The most-derived meta-object (for the property inspector) and the class name under
    // which the surface and the files create the shape.
    virtual const QMetaObject *MetaObject() const { return &staticMetaObject; }
    virtual QString ClassName() const { return QStringLiteral("TMyShape"); }

    TShapeHost *Host() const { return m_Host; }
    // The document that holds the shape from now on: it repaints it, finds its members and
    // hears of its identity.
    void SetHost(TShapeHost *host) { m_Host = host; }
    const QString &Name() const { return m_Name; }
    virtual void SetName(const QString &name);
    // Counts the renames of every shape, so that a table by name can tell it is out of date
    // whoever owns the renamed shape.
    static std::uint64_t NameGeneration();

    // ---- Edit protocol (virtual, in slot order) ----
    // Move by the difference of two screen points / by a zoomed offset.
    virtual void DragChangeValue(TPoint from, TPoint to);
    virtual void DragChangeValuedxdy(double dx, double dy);
    // Rubber-band previews drawn in xor during gestures; the base draws none.
    virtual void Draging(TCanvas &canvas, TPoint from, TPoint to);
    // Finishes a mouse drawing; may adjust the end point.
    virtual void Drawed(TPoint from, TPoint &to);
    // Selection handles; the base draws none.
    virtual void DrawHot(TCanvas &canvas);
    virtual void Drawing(TCanvas &canvas, TPoint from, TPoint to);
    // The distance between two screen points in the host's unit, e.g. "    12.70 mm".
    virtual QString GetLengthByUnit(TPoint from, TPoint to);
    virtual TCursor GetMouseCursor(std::int32_t x, std::int32_t y);
    virtual bool IsDrawingFinished(Qt::MouseButton button, TPoint point);
    // Turns points, link points, TextPoint and CenterPoint about centre (document) by angle.
    virtual void RotateChangeValueByAngle(TMyPoint centre, double angle);
    virtual void Rotating(TCanvas &canvas, TMyPoint centre, double angle);
    // Resizes by moving the current handle (document points); the base does nothing.
    virtual void SizeChangeValue(TMyPoint from, TMyPoint to);
    virtual void Sizing(TCanvas &canvas, TPoint from, TPoint to);
    // Appends a point given in screen coordinates.
    virtual void AddPointByMouse(TPoint point);

    // ---- Copying and public queries (virtual) ----
    // Assign copies points, link points, pen, brush, font, gradient (colours, style,
    // template), flips, Locked, Angle, Caption, Info, MultiInfo and its alignment, Tag,
    // UserData, LayerId and the relations (ChildShapes, LinkShapes, ParentNo), but not
    // TextPoint. AssignWithoutRelation copies the same plus TextPoint, without the
    // relations and MultiInfo. Both then recompute the centre (GetCenterPoint).
    virtual void Assign(const TMyShape &source);
    virtual void AssignWithoutRelation(const TMyShape &source);
    // The base draws only the info text.
    virtual void Draw(TCanvas &canvas);
    // Mirror about the centre of the root group (or the own centre when ungrouped).
    virtual void FlipHoriz();
    virtual void FlipVert();
    virtual TMyPoint GetCenterPoint() const;
    virtual TMyPoint GetCenterPointInZoom() const;
    virtual QString GetInfo() const { return Info(); }
    virtual TMyPoint GetPoint(std::int32_t index) const;
    // Handle number under the screen point, or -1; the base has no handles.
    virtual std::int32_t InWhichHot(TPoint point);
    virtual bool IsClickedMe(TCanvas &canvas, TPoint point);
    // How far outside the box of its points, in control pixels, IsClickedMe can answer true
    // at any zoom (for an arc, the points of its outline); -1 when the class does not say,
    // and a press then looks as far as anything the shape paints. A class that overrides
    // IsClickedMe says again.
    virtual std::int32_t HitReach() const { return -1; }

    // ---- Stored record (shapes/records) ----
    // Writes the newest record layout. Reads the layout of the host's DiskFileVersion();
    // a short or impossible stream throws TStreamError, leaving the shape partly read.
    virtual void SaveToStream(BinaryStream &stream) const;
    virtual void LoadFromStream(BinaryStream &stream);

    // ---- Points (indices are not range-checked) ----
    std::int32_t GetPointsCount() const { return std::int32_t(m_Points.size()); }
    std::int32_t GetLinkPointsCount() const { return std::int32_t(m_LinkPoints.size()); }
    void SetPoint(std::int32_t index, TMyPoint p) { m_Points[index] = p; }
    void SetPointX(std::int32_t index, float x) { m_Points[index].X = x; }
    void SetPointY(std::int32_t index, float y) { m_Points[index].Y = y; }
    TMyPoint GetPointInZoom(std::int32_t index) const;
    void SetPointInZoom(std::int32_t index, TMyPoint p);
    void SetPointXInZoom(std::int32_t index, float x);
    void SetPointYInZoom(std::int32_t index, float y);
    void AddPoint(TMyPoint p);
    void AddLinkPoint(TMyPoint p);
    void PointAddX(std::int32_t index, double dx);
    void PointAddY(std::int32_t index, double dy);
    void PointAddXY(std::int32_t index, double dx, double dy);
    void LinkPointAddXY(std::int32_t index, double dx, double dy);
    TMyPoint GetLinkPoint(std::int32_t index) const { return m_LinkPoints[index]; }
    void SetLinkPoint(std::int32_t index, TMyPoint p) { m_LinkPoints[index] = p; }
    void SetLinkPointX(std::int32_t index, float x) { m_LinkPoints[index].X = x; }
    void SetLinkPointY(std::int32_t index, float y) { m_LinkPoints[index].Y = y; }
    TMyPoint GetLinkPointInZoom(std::int32_t index) const;
    TMyPoint ZoomedValuePt(TMyPoint p) const;
    // The zoomed point mirrored by the host's XYMode; (0, 0) beyond the last point.
    TMyPoint GetPointInZoomWithMode(std::int32_t index) const;

    // Bounding box of the points (document); all zero without points.
    TMyPoint GetLeftTop() const;
    TMyPoint GetRightTop() const;
    TMyPoint GetLeftBottom() const;
    TMyPoint GetRightBottom() const;
    float GetWidth() const;
    float GetHeight() const;
    // Size in the shape's own unrotated frame (points turned back by -Angle about the
    // centre): what the gradient is stretched to.
    float GetMyWidth() const;
    float GetMyHeight() const;
    // 0 left-top, 1 right-top, 2 right-bottom, 3 left-bottom, 4 middle of the bounding box;
    // any other kind answers the current CenterPoint unchanged.
    TMyPoint ComputeCenterPoint(std::int32_t kind) const;

    // ---- Relations ----
    bool HasChildShapes() const { return !m_ChildShapes.empty(); }
    bool HasLinkShapes() const { return !m_LinkShapes.empty(); }
    bool HasParentShape() const { return m_ParentNo > -1; }
    std::int32_t GetShapeId() const { return m_ShapeId; }

    // ---- Hot tests (screen coordinates) ----
    // Link point whose 5-pixel square contains p (first wins), highlighted on the host's
    // screen canvas; -1 erases the remembered highlight.
    std::int32_t InWhichLinkHot(TMyPoint p);
    bool InTextPointHot(TPoint p) const;
    // Like InWhichLinkHot over the first and last point only, with the HotSize margin.
    std::int32_t InWhichPointHot(TMyPoint p);

    // ---- Drawing helpers ----
    // Rebuilds the gradient template from ColorBegin, ColorEnd and GradientStyle.
    void DrawGradient();
    // Fills (gradient, then brush) and strokes the closed screen polygon pts.
    void PowerDrawShape(TCanvas &canvas, std::span<const TPoint> pts, bool filled);
    // Selects a geometric pen of the given style, colour and width with the shape's join
    // and end-cap types; oldPen receives the canvas's previous pen, newPen the one set.
    void SetPS(TCanvas &canvas, TPenStyle style, TColor color, std::int32_t width, TPen &oldPen,
               TPen &newPen);
    void DrawInfo(TCanvas &canvas);
    // A red not-xor square of half-side 5 at p (screen) on unlocked shapes; drawing it
    // again erases it.
    void DrawHotLinkSquare(TCanvas &canvas, TMyPoint p);
    // Text output and measure for the shape's texts. With LogUse off they are the free
    // functions of scaledtext.h; with LogUse on, LogHeight replaces the font's point size
    // (LogWidth is kept for the files but does not change the output).
    void MyLogTextOut(TCanvas &canvas, std::int32_t x, std::int32_t y, const QString &text,
                      const TFont &font, double scale, double angle) const;
    TPoint GetTextWidthHeight(TCanvas &canvas, const QString &text, const TFont &font, double scale,
                              double angle) const;
    std::int32_t GetTextLineHeight(TCanvas &canvas, const TFont &font, double scale) const;

    // ---- Edit arithmetic ----
    // Scales by sx, sy about fixed (document) in the shape's own rotated frame.
    void SizeChangeValueByScale(double sx, double sy, TMyPoint fixed, TMyPoint from, TMyPoint to);
    // Scales with a box turned by frame (a group's) that keeps fixed. Free points follow the
    // box; a shape that must stay a box of its own (KeepsItsBox) at another angle keeps
    // that angle: its centre follows the group's box, and its sides grow by what the box's
    // scaling does to their directions.
    void ScaleInFrame(double sx, double sy, TMyPoint fixed, double frame);
    // The turn (radians, in (-pi, pi]) of a drag from -> to about centre.
    double GetRotatedAngle(TMyPoint centre, TMyPoint from, TMyPoint to, bool constrained) const;
    // p (screen) pulled onto the nearest side of other's zoomed bounding box when closer
    // than Zoom x 25 pixels.
    TMyPoint GetMagicPoint(const TMyShape &other, TMyPoint p) const;

    // ---- Published properties ----
    float Angle() const { return m_Angle; }
    void SetAngle(float angle);
    const TBrush &Brush() const { return m_Brush; }
    void SetBrush(const TBrush &brush);
    const QString &Caption() const { return Extras().Caption; }
    void SetCaption(const QString &caption);
    bool CaptionShow() const { return m_CaptionShow; }
    void SetCaptionShow(bool show);
    TColor ColorBegin() const { return Extras().ColorBegin; }
    void SetColorBegin(TColor color);
    TColor ColorEnd() const { return Extras().ColorEnd; }
    void SetColorEnd(TColor color);
    bool DragEnable() const { return m_DragEnable; }
    void SetDragEnable(bool enable);
    const TFont &Font() const { return m_Font; }
    void SetFont(const TFont &font);
    TGradientStyle GradientStyle() const { return Extras().GradientStyle; }
    void SetGradientStyle(TGradientStyle style);
    bool HotShow() const { return m_HotShow; }
    void SetHotShow(bool show);
    const QString &Info() const { return Extras().Info; }
    void SetInfo(const QString &info);
    bool IsFlipHorz() const { return m_IsFlipHorz; }
    void SetIsFlipHorz(bool flip);
    bool IsFlipVert() const { return m_IsFlipVert; }
    void SetIsFlipVert(bool flip);
    bool Locked() const { return m_Locked; }
    void SetLocked(bool locked);
    std::int32_t LogHeight() const { return Extras().LogHeight; }
    void SetLogHeight(std::int32_t height);
    bool LogUse() const { return Extras().LogUse; }
    void SetLogUse(bool use);
    std::int32_t LogWidth() const { return Extras().LogWidth; }
    void SetLogWidth(std::int32_t width);
    const QStringList &MultiInfo() const { return Extras().MultiInfo; }
    void SetMultiInfo(const QStringList &lines);
    // Starts left-justified although the published default marker says centre.
    TAlignment MultiInfoAlignment() const { return Extras().MultiInfoAlignment; }
    void SetMultiInfoAlignment(TAlignment alignment);
    const TShapeNotifyEvent &OnClick() const { return Extras().OnClick; }
    void SetOnClick(const TShapeNotifyEvent &handler);
    const TPen &Pen() const { return m_Pen; }
    void SetPen(const TPen &pen);
    TPenStyleJoinType PenStyleJoinType() const { return m_PenStyleJoinType; }
    void SetPenStyleJoinType(TPenStyleJoinType type);
    TPenStyleEndCapType PenStyleEndCapType() const { return m_PenStyleEndCapType; }
    void SetPenStyleEndCapType(TPenStyleEndCapType type);
    bool ResizeEnable() const { return m_ResizeEnable; }
    void SetResizeEnable(bool enable);
    bool RotateEnable() const { return m_RotateEnable; }
    void SetRotateEnable(bool enable);
    std::int32_t Tag() const { return m_Tag; }
    void SetTag(std::int32_t tag);
    const TUserData &UserData() const { return Extras().UserData; }
    TUserData &UserData() { return MutableExtras().UserData; }
    void SetUserData(const TUserData &data) { AssignExtra(&TShapeExtras::UserData, data); }
    bool Visible() const { return m_Visible; }
    void SetVisible(bool visible);

    // ---- Unpublished state ----
    // Raw setters without notification, for the surface (which locks whole groups through
    // them) and for the readers of stored shapes.
    void SetLockedFlag(bool locked) { m_Locked = locked; }
    void SetAngleValue(float angle) { m_Angle = angle; }
    void SetFlipFlags(bool horizontal, bool vertical);

    TMyPoint CenterPoint() const { return m_CenterPoint; }
    void SetCenterPoint(TMyPoint p) { m_CenterPoint = p; }
    TMyPoint TextPoint() const { return m_TextPoint; }
    void SetTextPoint(TMyPoint p) { m_TextPoint = p; }
    std::int32_t LayerId() const { return m_LayerId; }
    void SetLayerId(std::int32_t id) { m_LayerId = id; }
    std::int32_t ParentNo() const { return m_ParentNo; }
    void SetParentNo(std::int32_t no) { m_ParentNo = no; }
    std::int32_t CurrentHot() const { return m_CurrentHot; }
    void SetCurrentHot(std::int32_t hot) { m_CurrentHot = hot; }
    std::int32_t ShapeId() const { return m_ShapeId; }
    void SetShapeId(std::int32_t id);
    std::int32_t ShapeNo() const { return m_ShapeNo; }
    void SetShapeNo(std::int32_t no) { m_ShapeNo = no; }
    // Where the list holding the shape last had it: a hint that finds the shape without a
    // search. ShapeNo cannot serve alone, being whatever a file or the code that added the
    // shape said; the hint is never stored, and a wrong one costs only that search.
    std::int32_t ListPlace() const { return m_ListPlace; }
    void SetListPlace(std::int32_t place) const { m_ListPlace = place; }

    // Shape numbers of a group's members; connectors attached to this shape.
    std::vector<std::int32_t> &ChildShapes() { return m_ChildShapes; }
    const std::vector<std::int32_t> &ChildShapes() const { return m_ChildShapes; }
    std::vector<std::int32_t> &LinkShapes() { return m_LinkShapes; }
    const std::vector<std::int32_t> &LinkShapes() const { return m_LinkShapes; }
    TMyPointArray &Points() { return m_Points; }
    const TMyPointArray &Points() const { return m_Points; }
    TMyPointArray &LinkPoints() { return m_LinkPoints; }
    const TMyPointArray &LinkPoints() const { return m_LinkPoints; }
    // The gradient template (empty for gsNone), before stretching and turning.
    const TBitmap &GradientBitmap() const { return Extras().GradientBitmap; }

protected:
    // Whether the shape's look has a top: a picture or a text turned by pi is upside down,
    // where a box or a line is the same shape. A left-right flip of such a shape turns it
    // to -Angle instead of pi - Angle, so that it shows as the mirror of what it was.
    virtual bool HasUpright() const { return false; }
    // Whether the points are the corners of a turned box, which a scaling must keep one.
    virtual bool KeepsItsBox() const { return false; }
    // A length of `pixels` shown at `zoom` in the surface's unit and scale, as
    // GetLengthByUnit writes it; a length in document pixels is one shown at zoom 1.
    QString LengthText(double pixels, double zoom) const;
    double Zoom() const { return m_Host->Zoom(); }
    void Repaint() { m_Host->ShapeChanged(*this); }
    // The plain setters' pattern: nothing for an equal value, else store and, when the value
    // shows, ask for a repaint.
    template <typename T>
    void StoreAndRepaint(T &field, const T &value, bool visible = true)
    {
        if (field == value)
            return;
        field = value;
        if (visible)
            Repaint();
    }
    // The same for a member kept among the extras; a default value allocates nothing.
    template <typename T>
    void StoreExtraAndRepaint(T TShapeExtras::*field, const T &value, bool visible = true)
    {
        if (Extras().*field == value)
            return;
        MutableExtras().*field = value;
        if (visible)
            Repaint();
    }
    template <typename T>
    void AssignExtra(T TShapeExtras::*field, const T &value)
    {
        if (!(Extras().*field == value))
            MutableExtras().*field = value;
    }
    const TShapeExtras &Extras() const { return m_Extras ? *m_Extras : s_DefaultExtras; }
    TShapeExtras &MutableExtras();
    // Where PowerDrawShape puts the turned gradient copy (document); polygons override it.
    virtual TMyPoint GradientLeftTop() const { return GetLeftTop(); }
    // The centre that flips mirror about: the root group's when grouped.
    TMyPoint FlipCentre() const;
    // Gives every existing child the shape's pen, brush, font and gradient settings.
    void PassAppearanceToChildren();
    // Shared by InWhichLinkHot and InWhichPointHot.
    std::int32_t HighlightHot(std::int32_t found, TMyPoint square);
    void CopyAppearanceAndGeometry(const TMyShape &source);

private:
    // p scaled by sx, sy about fixed in a frame turned by frame.
    static TMyPoint ScaledInFrame(TMyPoint p, double sx, double sy, TMyPoint fixed, double frame);
    // Applies scale to every point, link point, TextPoint and CenterPoint.
    template <typename F>
    void ScaleAll(F scale);
    static const TShapeExtras s_DefaultExtras;

    TShapeHost *m_Host;
    QString m_Name;
    std::unique_ptr<TShapeExtras> m_Extras;
    TBrush m_Brush;
    TFont m_Font;
    TPen m_Pen;
    float m_Angle = 0;
    std::int32_t m_Tag = 0;
    std::int32_t m_LayerId = 0;
    std::int32_t m_ParentNo = -1;
    std::int32_t m_CurrentHot = -1;
    std::int32_t m_ShapeId = 0;
    std::int32_t m_ShapeNo = 0;
    mutable std::int32_t m_ListPlace = -1;
    TPenStyleJoinType m_PenStyleJoinType = TPenStyleJoinType::psjtROUND;
    TPenStyleEndCapType m_PenStyleEndCapType = TPenStyleEndCapType::psectROUND;
    bool m_CaptionShow = true;
    bool m_DragEnable = true;
    bool m_HotShow = true;
    bool m_IsFlipHorz = false;
    bool m_IsFlipVert = false;
    bool m_Locked = false;
    bool m_ResizeEnable = true;
    bool m_RotateEnable = true;
    bool m_Visible = true;
    TMyPoint m_CenterPoint;
    TMyPoint m_TextPoint;
    TMyPointArray m_Points;
    TMyPointArray m_LinkPoints;
    std::vector<std::int32_t> m_ChildShapes;
    std::vector<std::int32_t> m_LinkShapes;
};

} // namespace tessal

Q_DECLARE_METATYPE(tessal::TShapeNotifyEvent)
