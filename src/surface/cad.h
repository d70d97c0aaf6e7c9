// SPDX-License-Identifier: MIT
// TMyCAD: the drawing surface widget that owns a document of layers and shapes.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/platform/bitmap.h>
#include <tessal/platform/canvas.h>
#include <tessal/platform/enums.h>
#include <tessal/platform/graphics.h>
#include <tessal/platform/types.h>
#include <tessal/shapes/shapeenums.h>
#include <tessal/shapes/shapehost.h>
#include <tessal/shapes/userdata.h>
#include <tessal/surface/cadevents.h>
#include <tessal/surface/gridobject.h>
#include <tessal/surface/surfaceenums.h>
#include <tessal/surface/workingshapes.h>

#include <QIODevice>
#include <QImage>
#include <QLabel>
#include <QRegion>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class QPrinter;

namespace tessal {

class BinaryStream;
class TMyShape;
class TMyLinkLine;
class TShapeIndex;       // spatial index of the shapes (private to the surface)
class TIdPlaces;         // places of the identities in the list (private to the surface)
class TShapesById;       // the shapes by identity at one moment (private to the surface)
class TNamePlaces;       // places of the names in the list (private to the surface)
class TPressCursor;      // the candidates of a press, from the index (private to the surface)
class TMouseMachine;     // the gesture state machine (private to the surface)
struct TDrawingSettings; // a drawing file's settings, read before they are applied
struct TLoadedDrawing;   // a whole drawing file, read before it replaces the drawing
class TDrawingDraft;     // a drawing built aside, to replace the drawing in one step

// The action names of undo records.
inline const QString ACT_ADD = QStringLiteral("ACT_ADD");
inline const QString ACT_CHANGE = QStringLiteral("ACT_CHANGE");
inline const QString ACT_DELETE = QStringLiteral("ACT_DELETE");
inline const QString ACT_GROUP = QStringLiteral("ACT_GROUP");
inline const QString ACT_UNGROUP = QStringLiteral("ACT_UNGROUP");
inline const QString ACT_BRINGTOFRONT = QStringLiteral("ACT_BRINGTOFRONT");
inline const QString ACT_SENDTOBACK = QStringLiteral("ACT_SENDTOBACK");
inline const QString ACT_BRINGTOFRONTBYSTEP = QStringLiteral("ACT_BRINGTOFRONTBYSTEP");
inline const QString ACT_SENDTOBACKBYSTEP = QStringLiteral("ACT_SENDTOBACKBYSTEP");

// One entry of the layer table. Layers are identified by Id, which is never reused.
struct TLayer
{
    QString Name;
    std::int32_t Id = 0;
    bool Visible = true;
    friend bool operator==(const TLayer &, const TLayer &) = default;
};

// ---- Blocks (defined in the persistence layer) ----
// Where the shapes of a drawing inserted as a block go: all onto the current layer (Merge),
// or onto the drawing's layers at the places their layers have in the block (Import).
enum class TBlockLayerMode : std::uint8_t { Merge = 0, Import = 1 };

// How Print places the drawing page on the printer's sheets: scaled to fit one sheet, or at
// its own size in millimetres over as many sheets as it needs (left to right, then down).
enum class TPrintScale : std::uint8_t { FitToPage = 0, ActualSize = 1 };

// What the picture files show: the whole drawing page, or the working shapes' extent.
enum class TExportArea : std::uint8_t { Page = 0, Selection = 1 };

// The surface. Document geometry is in pixels at zoom 1; the widget's own coordinates
// (mouse positions, repaint rectangles) are screen pixels, i.e. document values x Zoom.
// Page sizes are millimetres. The surface owns every shape in its list, its layer table,
// the grid settings, the background bitmap, pen, brush, fonts and user data.
//
// Published properties are the Q_PROPERTYs below, in their published order. Property
// setters store and invalidate; painting happens later in paintEvent. Enabled and Visible
// are the component's capitalised counterparts of QWidget's enabled and visible.
class TMyCAD : public QWidget, public TShapeHost
{
    Q_OBJECT
    Q_PROPERTY(tessal::ShapeEnums::TArcMode ArcMode READ ArcMode WRITE SetArcMode)
    Q_PROPERTY(int ArrowAngle READ ArrowAngle WRITE SetArrowAngle)
    Q_PROPERTY(std::uint8_t ArrowLength READ ArrowLength WRITE SetArrowLength)
    Q_PROPERTY(std::uint8_t ArrowOffset READ ArrowOffset WRITE SetArrowOffset)
    Q_PROPERTY(tessal::ShapeEnums::TArrowStyle ArrowStyle READ ArrowStyle WRITE SetArrowStyle)
    Q_PROPERTY(tessal::TBitmap BkBitmap READ BkBitmap WRITE SetBkBitmap)
    Q_PROPERTY(
        tessal::SurfaceEnums::TBkBitmapMode BkBitmapMode READ BkBitmapMode WRITE SetBkBitmapMode)
    Q_PROPERTY(tessal::TBrush Brush READ Brush WRITE SetBrush)
    Q_PROPERTY(tessal::TColor ColorOfBackGround READ ColorOfBackGround WRITE SetColorOfBackGround)
    Q_PROPERTY(tessal::TColor ColorOfHot READ ColorOfHot WRITE SetColorOfHot)
    Q_PROPERTY(bool CrossLine READ CrossLine WRITE SetCrossLine)
    Q_PROPERTY(bool DragEnable READ DragEnable WRITE SetDragEnable)
    Q_PROPERTY(tessal::SurfaceEnums::TDragMode DragMode READ DragMode WRITE SetDragShapeMode)
    Q_PROPERTY(bool DragTrace READ DragTrace WRITE SetDragTrace)
    Q_PROPERTY(bool DisableTextInput READ DisableTextInput WRITE SetDisableTextInput)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(tessal::TFont Font READ Font WRITE SetFont)
    Q_PROPERTY(tessal::TGridObject *GridOperation READ GridOperation WRITE SetGridOperation)
    Q_PROPERTY(bool HotShow READ HotShow WRITE SetHotShow)
    Q_PROPERTY(std::uint8_t HotSize READ HotSize WRITE SetHotSize)
    Q_PROPERTY(QLabel *LabelValue READ LabelValue WRITE SetLabelValue)
    Q_PROPERTY(QLabel *LabelXY READ LabelXY WRITE SetLabelXY)
    Q_PROPERTY(bool LinklineAroundShape READ LinklineAroundShape WRITE SetLinklineAroundShape)
    Q_PROPERTY(tessal::ShapeEnums::TLinkLineDrawStyle LinkLineDrawStyle READ LinkLineDrawStyle WRITE
                   SetLinkLineDrawStyle)
    Q_PROPERTY(bool LockBound READ LockBound WRITE SetLockBound)
    Q_PROPERTY(bool MouseEffect READ MouseEffect WRITE SetMouseEffect)
    Q_PROPERTY(tessal::TActionToolToSelecting OnActionToolToSelecting READ OnActionToolToSelecting
                   WRITE SetOnActionToolToSelecting)
    Q_PROPERTY(tessal::TChildShapeSelected OnChildShapeSelected READ OnChildShapeSelected WRITE
                   SetOnChildShapeSelected)
    Q_PROPERTY(tessal::TNotifyEvent OnClick READ OnClick WRITE SetOnClick)
    Q_PROPERTY(tessal::TNotifyEvent OnDblClick READ OnDblClick WRITE SetOnDblClick)
    Q_PROPERTY(tessal::TDeleteLayer OnDeleteLayer READ OnDeleteLayer WRITE SetOnDeleteLayer)
    Q_PROPERTY(tessal::TDragDropEvent OnDragDrop READ OnDragDrop WRITE SetOnDragDrop)
    Q_PROPERTY(tessal::TDragOverEvent OnDragOver READ OnDragOver WRITE SetOnDragOver)
    Q_PROPERTY(tessal::TMouseEvent OnMouseDown READ OnMouseDown WRITE SetOnMouseDown)
    Q_PROPERTY(tessal::TNotifyEvent OnMouseEnter READ OnMouseEnter WRITE SetOnMouseEnter)
    Q_PROPERTY(tessal::TEnterLeaveShape OnMouseEnterShape READ OnMouseEnterShape WRITE
                   SetOnMouseEnterShape)
    Q_PROPERTY(tessal::TNotifyEvent OnMouseLeave READ OnMouseLeave WRITE SetOnMouseLeave)
    Q_PROPERTY(tessal::TEnterLeaveShape OnMouseLeaveShape READ OnMouseLeaveShape WRITE
                   SetOnMouseLeaveShape)
    Q_PROPERTY(tessal::TMouseMoveEvent OnMouseMove READ OnMouseMove WRITE SetOnMouseMove)
    Q_PROPERTY(tessal::TMouseEvent OnMouseUp READ OnMouseUp WRITE SetOnMouseUp)
    Q_PROPERTY(tessal::TNewLayer OnNewLayer READ OnNewLayer WRITE SetOnNewLayer)
    Q_PROPERTY(tessal::TNodeAdded OnNodeAdded READ OnNodeAdded WRITE SetOnNodeAdded)
    Q_PROPERTY(tessal::TNodeDeleted OnNodeDeleted READ OnNodeDeleted WRITE SetOnNodeDeleted)
    Q_PROPERTY(tessal::TNotifyEvent OnPaint READ OnPaint WRITE SetOnPaint)
    Q_PROPERTY(tessal::TShapeAdded OnShapeAdded READ OnShapeAdded WRITE SetOnShapeAdded)
    Q_PROPERTY(tessal::TShapeCodeDragging OnShapeCodeDragging READ OnShapeCodeDragging WRITE
                   SetOnShapeCodeDragging)
    Q_PROPERTY(tessal::TShapeCodeRotating OnShapeCodeRotating READ OnShapeCodeRotating WRITE
                   SetOnShapeCodeRotating)
    Q_PROPERTY(tessal::TShapeDeleted OnShapeDeleted READ OnShapeDeleted WRITE SetOnShapeDeleted)
    Q_PROPERTY(tessal::TShapeMouseDraggingSizingRotating OnShapeMouseDragged READ
                   OnShapeMouseDragged WRITE SetOnShapeMouseDragged)
    Q_PROPERTY(tessal::TShapeMouseDraggingSizingRotating OnShapeMouseDragging READ
                   OnShapeMouseDragging WRITE SetOnShapeMouseDragging)
    Q_PROPERTY(tessal::TShapeMouseDraggingSizingRotating OnShapeMouseResized READ
                   OnShapeMouseResized WRITE SetOnShapeMouseResized)
    Q_PROPERTY(tessal::TShapeMouseDraggingSizingRotating OnShapeMouseResizeFinished READ
                   OnShapeMouseResizeFinished WRITE SetOnShapeMouseResizeFinished)
    Q_PROPERTY(tessal::TShapeMouseDraggingSizingRotating OnShapeMouseResizing READ
                   OnShapeMouseResizing WRITE SetOnShapeMouseResizing)
    Q_PROPERTY(tessal::TShapeMouseDraggingSizingRotating OnShapeMouseRotated READ
                   OnShapeMouseRotated WRITE SetOnShapeMouseRotated)
    Q_PROPERTY(tessal::TShapeMouseDraggingSizingRotating OnShapeMouseRotating READ
                   OnShapeMouseRotating WRITE SetOnShapeMouseRotating)
    Q_PROPERTY(tessal::TShapeSelected OnShapeSelected READ OnShapeSelected WRITE SetOnShapeSelected)
    Q_PROPERTY(
        tessal::TWholeDragOperation OnWholeDragged READ OnWholeDragged WRITE SetOnWholeDragged)
    Q_PROPERTY(bool OperateAllLayer READ OperateAllLayer WRITE SetOperateAllLayer)
    Q_PROPERTY(QString PageFoot READ PageFoot WRITE SetPageFoot)
    Q_PROPERTY(tessal::PlatformEnums::TAlignment PageFootAlignment READ PageFootAlignment WRITE
                   SetPageFootAlignment)
    Q_PROPERTY(tessal::TFont PageFootFont READ PageFootFont WRITE SetPageFootFont)
    Q_PROPERTY(std::uint8_t PageFootToBottom READ PageFootToBottom WRITE SetPageFootToBottom)
    Q_PROPERTY(QString PageHead READ PageHead WRITE SetPageHead)
    Q_PROPERTY(tessal::PlatformEnums::TAlignment PageHeadAlignment READ PageHeadAlignment WRITE
                   SetPageHeadAlignment)
    Q_PROPERTY(tessal::TFont PageHeadFont READ PageHeadFont WRITE SetPageHeadFont)
    Q_PROPERTY(std::uint8_t PageHeadToTop READ PageHeadToTop WRITE SetPageHeadToTop)
    Q_PROPERTY(std::uint32_t PageHeight READ PageHeight WRITE SetPageHeight)
    Q_PROPERTY(tessal::SurfaceEnums::TPrinterOrientation PageOrientation READ PageOrientation WRITE
                   SetPageOrientation)
    Q_PROPERTY(tessal::SurfaceEnums::TPageStyle PageStyle READ PageStyle WRITE SetPageStyle)
    Q_PROPERTY(std::uint32_t PageWidth READ PageWidth WRITE SetPageWidth)
    Q_PROPERTY(tessal::TPen Pen READ Pen WRITE SetPen)
    Q_PROPERTY(tessal::ShapeEnums::TPenStyleJoinType PenStyleJoinType READ PenStyleJoinType WRITE
                   SetPenStyleJoinType)
    Q_PROPERTY(tessal::ShapeEnums::TPenStyleEndCapType PenStyleEndCapType READ PenStyleEndCapType
                   WRITE SetPenStyleEndCapType)
    Q_PROPERTY(bool PrintABorder READ PrintABorder WRITE SetPrintABorder)
    Q_PROPERTY(
        std::uint8_t PrintABordertoBottom READ PrintABordertoBottom WRITE SetPrintABordertoBottom)
    Q_PROPERTY(std::uint8_t PrintABordertoLeft READ PrintABordertoLeft WRITE SetPrintABordertoLeft)
    Q_PROPERTY(
        std::uint8_t PrintABordertoRight READ PrintABordertoRight WRITE SetPrintABordertoRight)
    Q_PROPERTY(std::uint8_t PrintABordertoTop READ PrintABordertoTop WRITE SetPrintABordertoTop)
    Q_PROPERTY(bool PrintBackground READ PrintBackground WRITE SetPrintBackground)
    Q_PROPERTY(double Ratio READ Ratio WRITE SetRatio)
    Q_PROPERTY(bool ResizeEnable READ ResizeEnable WRITE SetResizeEnable)
    Q_PROPERTY(bool ReturnToSelecting READ ReturnToSelecting WRITE SetReturnToSelecting)
    Q_PROPERTY(
        int RotateConstraintDegree READ RotateConstraintDegree WRITE SetRotateConstraintDegree)
    Q_PROPERTY(bool RotateEnable READ RotateEnable WRITE SetRotateEnable)
    Q_PROPERTY(tessal::ShapeEnums::TDrawTool ShapeTool READ ShapeTool WRITE SetShapeTool)
    Q_PROPERTY(bool ShowHint READ ShowHint WRITE SetShowHint)
    Q_PROPERTY(bool ShowHotLink READ ShowHotLink WRITE SetShowHotLink)
    Q_PROPERTY(bool Snap READ Snap WRITE SetSnap)
    // Never written by property streaming: the snap distance is a per-session setting.
    Q_PROPERTY(std::uint8_t SnapPixels READ SnapPixels WRITE SetSnapPixels STORED false)
    Q_PROPERTY(bool SnapShape READ SnapShape WRITE SetSnapShape)
    Q_PROPERTY(int Tag READ Tag WRITE SetTag)
    Q_PROPERTY(tessal::GeometryEnums::TUnits TheUNIT READ TheUNIT WRITE SetTheUNIT)
    Q_PROPERTY(std::uint8_t UndoRedoSize READ UndoRedoSize WRITE SetUndoRedoSize)
    // Form files cannot hold a TUserData; form designers edit UserDataTexts instead.
    Q_PROPERTY(tessal::TUserData UserData READ UserData WRITE SetUserData DESIGNABLE false)
    Q_PROPERTY(QString Version READ Version)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)
    Q_PROPERTY(tessal::ShapeEnums::TXYMode XYMode READ XYMode WRITE SetXYMode)
    Q_PROPERTY(double Zoom READ Zoom WRITE SetZoom)
    // Beyond the component's classic set: keyboard editing, connectors that follow during a
    // gesture, the picture source of the image tool, and the user data as texts.
    Q_PROPERTY(bool KeyboardEditing READ KeyboardEditing WRITE SetKeyboardEditing)
    Q_PROPERTY(bool LiveConnectors READ LiveConnectors WRITE SetLiveConnectors)
    Q_PROPERTY(
        tessal::TRequestPicture OnRequestPicture READ OnRequestPicture WRITE SetOnRequestPicture)
    Q_PROPERTY(QStringList UserDataTexts READ UserDataTexts WRITE SetUserDataTexts)

public:
    explicit TMyCAD(QWidget *parent = nullptr);
    ~TMyCAD() override;

    // The default marker of a published property: the value that property streaming
    // leaves out. Invalid for properties without a marker. The marker may differ from the
    // construction value (PageFootAlignment starts right-justified, its marker is centre).
    static QVariant DefaultMarker(const char *property);

    // ---- Layers ----
    // Appends a layer and makes it current; answers its ID, or -1 when the name (compared
    // case-sensitively) is taken or the table already holds MaxLayers layers.
    std::int32_t NewLayer(const QString &name, bool visible);
    std::int32_t GetLayersCount() const { return std::int32_t(m_Layers.size()); }
    // The ID of the last layer in the table, -1 without layers.
    std::int32_t GetMaxLayerId() const;
    // Look-ups answer -1 (IDs, numbers), an empty name or false when nothing matches.
    std::int32_t GetLayerIdByName(const QString &name) const;
    std::int32_t GetLayerIdByNo(std::int32_t no) const;
    QString GetLayerNameByID(std::int32_t id) const;
    std::int32_t GetLayerNoById(std::int32_t id) const;
    std::int32_t GetLayerNoByName(const QString &name) const;
    bool IsVisibleLayerByID(std::int32_t id) const;
    std::int32_t CurrentLayerId() const { return m_CurrentLayerId; }
    const std::vector<TLayer> &Layers() const { return m_Layers; }
    // The ID the next new layer receives.
    std::int32_t LayerIdCounter() const { return m_LayerIdCounter; }
    // Layer counts are stored in a byte.
    static constexpr std::int32_t MaxLayers = 255;

    // ---- Shapes ----
    // Takes ownership of shape and appends it: unless keepLayer it joins the current
    // layer; unless noIdCount the identity counter advances. False for no shape; without
    // any layer the no-layer handler runs and the caller keeps the shape.
    bool AddShape(TMyShape *shape, bool keepLayer, bool noIdCount);
    std::int32_t GetShapesCount() const { return std::int32_t(m_Shapes.size()); }
    TMyShape *GetShapeByNo(std::int32_t no) const override;
    // Follows ParentNo up to the shape that has no parent; nullptr for nullptr.
    TMyShape *GetRootParentShape(TMyShape *shape) const override;
    // The identity the next created shape receives.
    std::int32_t ShapeIdCounter() const { return m_ShapeIdCounter; }

    // ---- Document ----
    // Layer edits answer false for an unknown layer and repaint otherwise. A rename is
    // refused when another layer already has the name (names stay unique, as NewLayer
    // keeps them).
    bool SetLayerNameByID(std::int32_t id, const QString &name);
    bool SetLayerNameByName(const QString &oldName, const QString &newName);
    bool VisibleLayerByID(std::int32_t id);
    bool VisibleLayerByName(const QString &name);
    bool InVisibleLayerByID(std::int32_t id);
    bool InVisibleLayerByName(const QString &name);
    void VisibleAllLayer();
    bool SetCurrentLayerId(std::int32_t id);
    // Removing a layer removes every shape on it, locked ones included and without undo
    // records, through the renumbering of DeleteShapeById, so relations stay valid: a group
    // on the layer takes its members with it even where they lie on other layers, a member
    // on the layer leaves its group, and a connector on another layer that was bound to a
    // removed shape keeps its place with that end set free. OnShapeDeleted fires for each
    // removed top-level shape, then OnDeleteLayer for the layer. When the current layer goes,
    // the last layer of the table becomes current (-1 when none is left). Layer IDs are
    // never reused.
    bool DeleteLayerByID(std::int32_t id);
    bool DeleteLayerByName(const QString &name);
    void DeleteAllLayers();
    // Moves every shape of layer from onto layer to, keeping list places and relations, and
    // removes from (OnDeleteLayer fires); to becomes current if from was. Refused for an
    // unknown layer or from == to.
    bool MergeLayers(std::int32_t from, std::int32_t to);
    // Shapes whose LayerId is id, in list order (members of groups included).
    std::vector<TMyShape *> GetShapesByLayerId(std::int32_t id) const;
    std::int32_t GetShapesCountInALayer(std::int32_t id) const;
    // The working shapes become the roots of the layer's shapes, in list order.
    void SelectAllShapesByLayerId(std::int32_t id);

    // What AddShape does when there is no layer at all. The default shows the message
    // "Error!There is no Layer!" and asks the application to quit; tests install their
    // own. An empty handler restores the default. Answers the previous handler.
    using TNoLayerHandler = std::function<void(TMyCAD *surface)>;
    static TNoLayerHandler SetNoLayerHandler(TNoLayerHandler handler);

    // A new shape of the stored class name (one of the seventeen) or of a drawing tool, for
    // owner (this surface when nullptr); not yet in the document. Nullptr for other names
    // and for tools that make no shape.
    std::unique_ptr<TMyShape> CreateShapeByName(const QString &className,
                                                TShapeHost *owner = nullptr);
    std::unique_ptr<TMyShape> CreateShapeBySpTool(TDrawTool tool, TShapeHost *owner = nullptr);
    // Creates, copies source (when given) and adds a shape with the next identity; its name
    // and caption are "Shape" followed by the identity. Nullptr when nothing was added.
    TMyShape *CreateAddShapeByName(const QString &className, const TMyShape *source = nullptr);
    // Draws a shape by code on this surface (points in document units) and answers its
    // identity, or -1 when the tool makes no shape, the points do not suit it or no layer
    // exists. How the points become the shape's points:
    //  - SpRectangle, SpEllipse, SpText, SpImage, SpLinkPoint, SpLineLinkLine: two opposite
    //    corners p, q give the four corners in the rectangle's order p, (q.X, p.Y), q,
    //    (p.X, q.Y); four points are taken as they are (an already turned box).
    //  - SpLine, SpRuleLine, SpLinkLine, SpPolyLine, SpFreeLine, SpBLine, SpElliArc: at
    //    least two points (SpElliArc: three), taken as given. SpPolyBezier: 1 + 3k points.
    //  - SpPolygon: at least three points; the closing repeat of point 0 is appended when
    //    the last point differs from the first.
    // The centre is the middle of the points' box; the text point is the centre for chains
    // and 10 units below the box's bottom edge, at the centre's X, for boxes. Then the shape
    // turns to angle (radians), SpText shapes take text as Info and as their lines, the
    // caption is set, the shape is added (name "Shape" + ID), recorded as "ACT_ADD",
    // becomes the only working shape and the current shape, and OnShapeAdded fires.
    std::int32_t AddShapeByCode(TDrawTool tool, const QString &caption,
                                std::span<const TMyPoint> points, double angle,
                                const QString &text);
    // The same from a box: point is its left-top corner, width and height its size. Boxes
    // and lines use the two corners point and point + (width, height). The third integer,
    // count, is the number of vertices for SpPolyLine, SpPolygon, SpFreeLine and SpBLine,
    // spread evenly around the ellipse inscribed in the box, clockwise from its top (at
    // least 2, 3 for polygons); SpPolyBezier makes count pieces (at least 1) across the box,
    // joined on its middle line, each with its first control point on the top edge and its
    // second on the bottom edge. Other tools ignore count.
    std::int32_t AddShapeByCode2(TDrawTool tool, const QString &caption, TMyPoint point,
                                 std::int32_t width, std::int32_t height, std::int32_t count,
                                 double angle, const QString &text);
    // A TMyImage whose left-top corner is point and whose size is the picture's: loaded
    // from file when file names a readable picture, else bitmap. -1 when neither gives a
    // picture. Recorded and announced like AddShapeByCode.
    std::int32_t AddImageShapeByCode(const QString &file, TMyPoint point, const TBitmap &bitmap);

    // Look-ups answer nullptr or -1 when nothing matches. GetShapeByID refuses identities
    // outside 0 .. ShapeIdCounter() - 1 without searching.
    TMyShape *GetShapeByID(std::int32_t id) const override;
    TMyShape *GetShapeByName(const QString &name) const;
    std::int32_t GetShapeNoById(std::int32_t id) const;
    // The place of a live shape in the list, or -1 for a detached one. A deleted shape is
    // gone: ask for its ID with GetShapeByID instead of keeping its pointer.
    std::int32_t GetShapeNoInMyShapes(const TMyShape *shape) const override;
    // Only when old != new, a shape is named old and none is named new.
    bool RenameShapeName(const QString &oldName, const QString &newName);
    // Removes the shape and its group members (members first; a locked member stays, with
    // its subtree, and becomes top-level). Connectors bound to a removed shape are set free
    // at that end; a removed connector leaves its shapes' connector lists. Every remaining
    // relation (ParentNo, ChildShapes, LinkShapes, connector ends) is renumbered to the new
    // list places. ShapeNo is left alone: it is the list length when the shape was made, as
    // files store it, not its place (GetShapeNoInMyShapes answers that). A locked shape is not
    // removed (false). A group whose last member goes stays, empty, until it is removed itself.
    // OnShapeDeleted fires with the shape before anything changes; with withUndo the shape
    // and its members are recorded as "ACT_DELETE". The working shapes are emptied.
    bool DeleteShapeById(std::int32_t id, bool withUndo);
    // The unlocked working shapes, recorded together as one "ACT_DELETE" step.
    void DeleteSelectedShapes();
    // Every shape, locked ones too, without undo records; the identity counter keeps its
    // value. OnShapeDeleted fires for each top-level shape.
    void DeleteAllShapes();
    // Replaces the layers and shapes by those of draft (drawingdraft.h), which is left empty:
    // the drawing's own go as DeleteAllLayers removes them (OnShapeDeleted, OnDeleteLayer),
    // the undo history is cleared, the draft's current layer and next free identities are
    // taken over, and OnNewLayer fires for each layer of the draft in table order.
    void CommitDraft(TDrawingDraft &draft);
    // Two different shapes that are both members of groups with the same root group.
    bool areTheyBrother(TMyShape *a, TMyShape *b) const;
    // The nearest shape after (before) number no that has no parent: an ungrouped shape or
    // the root of a group. Nullptr when there is none.
    TMyShape *GetNextSingleorRootShape(std::int32_t no) const;
    TMyShape *GetPrevSingleorRootShape(std::int32_t no) const;

    // The working shapes: the ordered selection of top-level shapes (a group member is
    // represented by its root group, once). The current shape is the one the last gesture
    // or command concerned. Deleting shapes and taking steps back empty both.
    const std::vector<TMyShape *> &WorkingShapes() const { return m_WorkingShapes; }
    void SetWorkingShapes(std::span<TMyShape *const> shapes);
    void AddWorkingShape(TMyShape *shape);
    void ClearWorkingShapes();
    bool IsWorkingShape(const TMyShape *shape) const;
    TMyShape *CurrentShape() const { return m_CurrentShape; }
    void SetCurrentShape(TMyShape *shape);

    // ---- Undo ----
    // One recorded shape of a step. Copy is a detached shape of the same class with the
    // recorded state: identity, name, list number (ShapeNo), geometry, appearance and
    // relations, with an empty connector list. ParentId and ChildIds name the shapes that
    // ParentNo and ChildShapes pointed at when recorded, so that a restored shape finds its
    // relatives by identity however the list was renumbered in between.
    struct TUndoRecord
    {
        std::int32_t Step = 0;
        QString ShapeName;
        std::unique_ptr<TMyShape> Copy;
        QString Action;
        std::int32_t ParentId = -1;
        std::vector<std::int32_t> ChildIds;
        // The shape's place in the list when recorded. A deleted shape that comes back at
        // that place, not after the present shapes: set by commands that replace shapes
        // (RecordEdit).
        std::int32_t Place = -1;
        bool AtPlace = false;
        // For a connector: the identities of the shapes its ends were bound to (-1: free).
        std::int32_t StartId = -1;
        std::int32_t EndId = -1;
        // What taking the record back gives the live shape: its recorded state (Whole), only
        // its name ShapeName (a name a block insertion replaced), or its recorded geometry
        // with the bindings it has now (Path: a connector re-routed because a shape it is
        // bound to changed; taken back after that shape).
        enum class TScope : std::uint8_t { Whole, Name, Path };
        TScope Scope = TScope::Whole;
    };
    // Records one step for shapes[0 .. highIndex] (see the action names below): the oldest
    // step is evicted when the newest step number equals UndoRedoSize - 1.
    void PushtoUndoRedoShapeList(std::span<TMyShape *const> shapes, std::int32_t highIndex,
                                 const QString &action);
    // Takes back the newest step; answers its number less one, or -1 when nothing was
    // taken back. Deleted shapes come back after the present ones with their identities
    // and names; restored connectors are unbound. A relative of a restored shape that was
    // restored in the same step is renumbered to its new place; one that still exists takes
    // the shape back (a live group lists it again, a live top-level member rejoins it); one
    // that is gone is dropped (ParentNo -1, left out of the child list). A restored shape
    // whose layer is gone joins the current layer, and a changed shape whose recorded layer
    // is gone keeps its own; while there is no layer at all, deleted shapes stay gone. An
    // ungrouping is taken back by grouping the former members that still exist under a new
    // group with the old name and user data.
    std::int32_t PopFromUndoRedoShapeList();
    void ClearAllUndoStuff();
    const std::vector<TUndoRecord> &UndoRedoShapeList() const { return m_UndoList; }
    // Between these, every recording joins the step the first one began, so that a command
    // an application applies shape by shape is taken back at once, and its shapes do not
    // push each other out of the history. Pairs nest; the outermost pair makes the step.
    void BeginUndoStep() { ++m_JoinDepth; }
    void EndUndoStep();

    // ---- Commands ----
    // Groups the roots of the given shapes (nullptrs and duplicates ignored) under a new
    // TMyGroup on their layer and answers its identity; -1, changing nothing, for no shape,
    // shapes on two layers or an invisible shape. The group becomes the only working shape
    // and the current shape.
    std::int32_t GroupShapes(std::span<TMyShape *const> shapes, bool record);
    std::int32_t GroupWorkingShape();
    // The same under a new TMyCombine: the shapes become one block, as a placed library
    // entry is. Recorded as a grouping ("ACT_GROUP"), and ungrouped like any group.
    std::int32_t CombineShapes(std::span<TMyShape *const> shapes, bool record);
    std::int32_t CombineWorkingShape();
    // Dissolves a top-level, unlocked group; members keep their places. IsUngrouping() is
    // true meanwhile, and OnShapeDeleted does not fire for the dissolved group.
    void UnGroupShape(TMyShape *group, bool record);
    bool IsUngrouping() const { return m_Ungrouping; }
    // Align the working shapes' boxes (two or more shapes), recorded as "ACT_CHANGE".
    void AlignLeft();
    void AlignRight();
    void AlignTop();
    void AlignBottom();
    void AlignHorizontalCenter();
    void AlignVerticalCenter();
    // Stacking order among top-level shapes, by swapping with the next (previous) root.
    void BringToFront(TMyShape *shape, bool record);
    void SendToBack(TMyShape *shape, bool record);
    void BringToFrontByStep(TMyShape *shape, bool record);
    void SendToBackByStep(TMyShape *shape, bool record);
    // Exchanges two list places. Every number naming either place (ParentNo, child lists,
    // connector lists, connector ends) is changed to the other, so relations, connectors
    // included, stay with the same shapes.
    void SwapShape(TMyShape *a, TMyShape *b);
    // Mirrors the shape and its members (members first) about their root group's centre;
    // locked shapes stay as they are. Connectors are never flipped directly.
    void FlipHoriz(TMyShape *shape);
    void FlipVert(TMyShape *shape);
    void LockUnLockforShapes(TMyShape *shape, bool locked);
    // Turns the shape (with its group) to angle radians; not recorded.
    void Rotate(TMyShape *shape, float angle);
    // The turn of a drag from -> to about centre (document units), applied to the shape and
    // its members; answers the angle. Not recorded.
    float Tilt(TMyShape *shape, TMyPoint centre, TMyPoint from, TMyPoint to, bool constrained);
    void RotateChangeValueforShapes(TMyShape *shape, TMyPoint centre, double angle);

    // ---- Line and size edits (edits.cpp) ----
    // These commands refuse (nullptr or false, changing and recording nothing) a missing
    // shape, a locked shape, a hidden shape or one on a hidden layer, and unsuitable classes.
    //
    // The plain line or polyline whose first (atStart) or last point handle holds point
    // (screen pixels), looked up in list order and stored in the line's start or end merge
    // fields (-1 and -1 when none). Answers that shape, nullptr when none.
    TMyShape *GetMergeShape(class TMyLine *line, bool atStart, TMyPoint point);
    // Joins the two lines or polylines on whose ends line's ends were dropped (its merge
    // fields) into one new TMyPolyLine: the start shape's chain running into its merged end,
    // the line's inner points, then the end shape's chain running out of its merged end. The
    // meeting points are the two shapes' own end points (line's ends, dropped within a handle
    // of them, are left out), and the arrow heads at the two outer ends are kept. The new
    // shape takes the start shape's appearance and layer, is appended with a new identity
    // and becomes the only working shape; the two shapes go. line itself is only read unless
    // it is in the document, in which case it goes too. One step: the removed shapes are
    // recorded "ACT_DELETE" to come back at their own list places, the new one "ACT_ADD".
    // Nullptr when the two ends are not both on ends of two different, editable, top-level
    // lines or polylines of one layer that have no connectors bound.
    TMyShape *CreateAndDelete(class TMyLine *line);
    // The working shapes (at least two that are editable and have a width, resp. height)
    // take the average width (height) of their bounding boxes, each stretched about the
    // middle of its box together with its members; connectors follow. A shape whose tree
    // holds a box-framed shape (rectangle, ellipse, text, image, arc, group) turned by other
    // than a multiple of 90 degrees is scaled evenly instead, which keeps its frame and
    // still gives the box the average size. One "ACT_CHANGE" step. Locked and hidden working
    // shapes are left out (locked members stay as they are).
    bool AverageWidth();
    bool AverageHeight();
    // Breaks a TMyLine, TMyPolyLine or TMyFreeLine at inner point pointIndex (1 .. count - 2):
    // the shape keeps the points up to and including it, a new shape of its class, inserted
    // just above it in the drawing order (and in its group), takes the rest. The new piece
    // has the shape's appearance, layer and user data, name and caption "Shape" followed by
    // its identity, and the head at the far end. Both become working shapes (the new one
    // current) and OnShapeAdded fires. One step: "ACT_CHANGE" of the shape, then "ACT_ADD"
    // of the new piece. Answers the new piece.
    TMyShape *BreakLine(TMyShape *shape, std::int32_t pointIndex);
    // Breaks at the point of the segment under screenPoint nearest to it, which ends the
    // first piece and starts the second; at an inner point this is BreakLine. Nullptr when
    // no segment is hit or the point would be an end of the chain.
    TMyShape *BreakLineByAPoint(TMyShape *shape, TPoint screenPoint);
    // The topmost shape (group members included) that BreakLineByAPoint would break at
    // screenPoint; nullptr when none.
    TMyShape *IsBreakLineByAPoint(TPoint screenPoint) const;
    // Replaces a TMyPolyLine of at least three different points by a TMyPolygon with the same
    // list place, identity, name, appearance, layer, group and connectors, and point 0
    // repeated at the end unless it is already there. The polyline object is destroyed (its
    // pointer must not be used again); the working and current shape follow the new one.
    // Recorded "ACT_CHANGE": taking it back turns the polygon into the polyline again.
    TMyShape *ClosePolygon(TMyShape *shape);

private:
    // Records shapes for action as PushtoUndoRedoShapeList does, in a new step or (join)
    // into the newest one, so that a command making several kinds of change is taken back at
    // once. Deleted shapes recorded atPlace come back at their list places.
    void RecordEdit(std::span<TMyShape *const> shapes, const QString &action, bool join,
                    bool atPlace);
    void AppendRecords(std::span<TMyShape *const> shapes, std::int32_t last, std::int32_t step,
                       const QString &action);
    // Takes ownership of shape and puts it at list place no (clamped to the end); the
    // shapes from no on, and every number naming them, move one place up. The shape's own
    // relations name places as they were before. False (caller keeps it) without a layer.
    bool InsertShape(TMyShape *shape, std::int32_t no, bool noIdCount);
    // Puts shape in place of list entry no, which is destroyed; working shapes and the
    // current shape follow. Answers the new entry.
    TMyShape *ReplaceShapeObject(std::int32_t no, std::unique_ptr<TMyShape> shape);
    bool IsEditableShape(const TMyShape *shape) const;
    bool AverageSize(bool width);
    TMyShape *SplitChain(TMyShape *shape, std::int32_t pointIndex);

public:
    // ---- Connectors (routing.cpp) ----
    // The route of a connector from start to end (screen points): an lldsFree connector
    // is the straight line; an lldsHV route alternates horizontal and vertical segments,
    // leaves and enters its bound shapes through the sides their magic points lie on and
    // never crosses their boxes. With LinklineAroundShape it also goes round the boxes of
    // the other visible top-level shapes (connectors and link marks excepted) where it can.
    std::vector<TMyPoint> GetPath(const TMyLinkLine &line, TMyPoint start,
                                  TMyPoint end) const override;
    // The shapes of the trees of the top-level shapes the index finds in box.
    std::vector<std::int32_t> ShapesIn(const TMyRect &box) const override;
    // Lets the connectors bound to the shape (and to its group members) follow it: their
    // routes are recomputed and stored at once. A connector given itself is re-routed too.
    void ChangeLinkShapes(TMyShape *shape);
    // The topmost visible shape whose link point lies under point (screen), highlighted
    // with the red square; shapeNo and linkId receive its number and the link point's
    // index, or -1 and -1 (and the highlight is switched off) when there is none.
    bool InWhichShapeWhichHotLinkId(TPoint point, std::int32_t &shapeNo, std::int32_t &linkId);
    // Where a connector drawn from point starts: the shape of the link point under it, else
    // the topmost visible shape hit at point that has link points, with the link point
    // nearest to point. Nullptr and -1 when there is neither.
    TMyShape *GetMainShape(TPoint point, std::int32_t &linkId);
    // Erases the remembered link-point (or end-point) highlight and forgets it.
    void ClearAllLinkHot();

    // ---- Page and zoom ----
    // Selects a paper size; for named styles PageWidth and PageHeight come from the style's
    // table (swapped in landscape) and the control takes the page's screen size.
    void SetPageStyle(TPageStyle style);
    // The named style whose size is (w, h) in the current orientation, else CustomerPage.
    TPageStyle GetPageStyleByWH(std::uint32_t w, std::uint32_t h) const;
    void SetPageWidth(std::uint32_t mm);
    void SetPageHeight(std::uint32_t mm);
    // Changing the orientation swaps the page's width and height.
    void SetPageOrientation(TPrinterOrientation orientation);
    // A zoom equal to the current one changes nothing, not even the previous zoom.
    void SetZoom(double zoom);
    double PreZoom() const { return m_PreZoom; }
    void SetPreZoom(double zoom) { m_PreZoom = zoom; }
    void SetRatio(double ratio);
    // The control's size in screen pixels for a page size in millimetres at the current
    // zoom and screen resolution: round(mm x Zoom x dpi / 25.4), halves to even.
    std::int32_t PageMmToPixels(std::uint32_t mm) const;
    // True while a repaint, a zoom change or a page-style change is under way.
    bool IsBusy() const { return m_Busy; }

    // ---- Tools and mouse (mouse*.cpp, gestures.cpp, keyboard.cpp) ----
    // The mouse machine. Qt's press, move and release events arrive here as control pixels,
    // after the control's own OnMouseDown / OnMouseMove / OnMouseUp have fired; applications
    // and tests may call them directly with the same arguments. Only the left button takes
    // part in gestures; a press with another button is ignored, a release with another
    // button leaves a shape under construction as it is.
    void MouseDown(TMouseButton button, TShiftState shift, std::int32_t x, std::int32_t y);
    void MouseMove(TShiftState shift, std::int32_t x, std::int32_t y);
    void MouseUp(TMouseButton button, TShiftState shift, std::int32_t x, std::int32_t y);
    // Abandons the shape under construction or the gesture under way, erasing its
    // feedback: shapes stay where they were and nothing is recorded (Escape does this).
    void CancelGesture();
    // The shape being drawn with the mouse (not yet in the document), or nullptr.
    TMyShape *ShapeUnderConstruction() const;
    // Moves the unlocked working shapes by (dx, dy) control pixels as one "ACT_CHANGE"
    // step, their connectors following: what an arrow key does.
    void NudgeWorkingShapes(double dx, double dy);
    bool IsMouseDown() const;

    // Working shapes under their interaction names. AddWorkingShapes stores the root of a
    // grouped shape, once; RemoveWorkingShape also clears the current shape when it is the
    // one removed; IsInWorkingShape answers the index or -1.
    void AddWorkingShapes(TMyShape *shape) { AddWorkingShape(shape); }
    void RemoveWorkingShape(TMyShape *shape);
    void RemoveAllWorkingShapes() { ClearWorkingShapes(); }
    std::int32_t IsInWorkingShape(const TMyShape *shape) const;
    std::int32_t GetWorkingShapesCount() const { return std::int32_t(m_WorkingShapes.size()); }
    // Draws the handles of the visible working shapes on the screen image (when HotShow).
    void SelectAllWorkingShapes();

    // Hit test of a shape at a control pixel: never for an invisible shape; a group is also
    // hit through its members.
    bool IsClickedMeforShape(TCanvas &canvas, TMyShape *shape, TPoint point);
    // Whether the zoomed box of the shape (of its root when grouped) lies inside the
    // rectangle spanned by p1 and p2, edges included.
    bool IsInRegion(TPoint p1, TPoint p2, TMyShape *shape) const;
    // Holds the current point to the start point's row (dgHorz) or column (dgVert).
    void GetMousePointbyDragMode(TPoint start, TPoint &current) const;
    // Confines the mouse to rect less the insets on its right and bottom (control pixels):
    // positions outside are pulled back onto it and the system cursor is moved there.
    // hideCursor makes the cursor invisible until the confinement is lifted.
    void SetCursorClipArea(const TRect &rect, std::int32_t rightInset, bool hideCursor,
                           std::int32_t bottomInset);
    void ReleaseCursorClipArea();
    // Hover: fires OnMouseLeaveShape for the last hovered shape and OnMouseEnterShape for
    // shape when they differ, and shows the shape's Info (or name) as a tool tip when
    // ShowHint is on.
    void ShowHintEnterLeaveShape(TMyShape *shape, bool entering, TPoint point);

    // The gesture operations. Points are control pixels.
    // Shift while drawing: a box becomes a square, a segment horizontal, vertical or at 45
    // degrees from anchor.
    void DrawMakeSquareorHV(TPoint anchor, TPoint &point, TShiftState shift) const;
    // Shift while resizing by a handle: the same rules from the handle's opposite point.
    void ResizeMakeSquareorHV(TMyShape *shape, TPoint start, TPoint &point,
                              TShiftState shift) const;
    // Outline previews of the working shapes moved from -> to, and of shape (with its
    // group) turned by angle about centre, drawn with the canvas's current set-up.
    void DraggingforShapes(TCanvas &canvas, TPoint from, TPoint to);
    void DragOutline(TCanvas &canvas, TMyShape *shape, TPoint from, TPoint to);
    void RotatingforShapes(TCanvas &canvas, TMyShape *shape, TMyPoint centre, double angle);
    // Applies a move in zoomed pixels to shape and its members (OnShapeCodeDragging fires
    // first), and a handle move from -> to (control pixels) to shape. Bound connectors do
    // not follow by themselves: call ChangeLinkShapes afterwards, as the mouse gestures do
    // (until then drawing and DXF export route them afresh, but a saved file holds the old
    // route).
    void DragChangeValueDxDyforShapes(TMyShape *shape, double dx, double dy);
    void SizeChangeValueforShapes(TMyShape *shape, TMyPoint from, TMyPoint to);
    // A control pixel as gesture events report it: mirrored by XYMode, then converted from
    // screen pixels to TheUNIT at the current Zoom and Ratio.
    TMyPoint GetPointByMode(TPoint point) const;
    // The control pixel nearest to a reported point: the inverse of GetPointByMode.
    TPoint PointFromMode(TMyPoint point) const;
    // The topmost line or polyline whose first or last point lies under point (control
    // pixels, within HotSize), highlighted; false with -1s when none.
    bool InWhichShapeWhichPointNo(TPoint point, std::int32_t &shapeNo, std::int32_t &pointNo);

    // ---- Snapping (snap.cpp) ----
    // Pulls a control pixel onto the grid (Snap) or, failing that, onto the box edges of
    // other shapes (SnapShape); true when anything pulled. Halves round to even.
    bool SnapXY(std::int32_t &x, std::int32_t &y);
    // Corrects (x, y) by the pull that the best-snapping corner of rect would get.
    void SnapRect(const TRect &rect, std::int32_t &x, std::int32_t &y);

    // ---- Interaction state ----
    TActionTools ActionTool() const override { return m_ActionTool; }
    void SetLoading(bool loading) { m_IsLoading = loading; }
    bool IsLoading() const override { return m_IsLoading; }
    // A control point (x, y) as events report it under XYMode: mirrored in Y (Mode1), in
    // both axes (Mode2) or in X (Mode3) against the control's width and height.
    TPoint ReportPoint(std::int32_t x, std::int32_t y) const;
    // The newest drawing-file version, the one drawings are written in.
    const QString &FileVersion() const { return m_FileVersion; }

    // ---- Drawing files (defined in the persistence layer) ----
    // The whole drawing (settings, user data, layers, shapes) as one binary stream, always
    // written in the newest layout. Width and height are stored unzoomed. False when writing
    // failed; the stream position is where the writer stopped.
    bool SaveToStream(QIODevice *stream) const;
    // Through a temporary file that replaces fileName only when complete (a device such as
    // /dev/full is written in place); clears Modified. On failure (full disk, no permission,
    // file-size limit) the old file stays as it was, and LastError() gives the system's reason.
    bool SaveToFile(const QString &fileName);
    // What a load that meets a damaged file leaves.
    enum class TLoadFault {
        KeepWhatWasRead, // the drawing holds what was read up to the fault
        KeepTheDrawing   // the drawing stays exactly as it was, as after a cancel
    };
    // Replaces the drawing with the stream's contents, read from position 0. On failure
    // LastError() says why, and with KeepWhatWasRead the drawing holds what was read up to
    // the fault, the undo history stays and the next free identities do not change. When
    // OnProgress cancels, the drawing stays exactly as it was.
    bool LoadFromStream(QIODevice *stream, TLoadFault fault = TLoadFault::KeepWhatWasRead);
    // False, with the drawing untouched, unless IsZEDAFile accepts the file.
    bool LoadFromFile(const QString &fileName, TLoadFault fault = TLoadFault::KeepWhatWasRead);
    // Whether the file starts with the drawing format's 64-byte identification text.
    static bool IsZEDAFile(const QString &fileName);
    // The version text by which shape records are read; a load sets it from the header.
    void SetDiskFileVersion(const QString &version) { m_DiskFileVersion = version; }
    QString DiskFileVersion() const override { return m_DiskFileVersion; }
    // Puts a freshly read shape at list position index and takes ownership. preallocated
    // says the list already has that place. Without any layer the no-layer handler runs
    // and the caller keeps the shape (false).
    bool AddShapeforLoadfromStream(std::int32_t index, TMyShape *shape, bool preallocated);
    // Why the last load or save failed; empty after a success.
    const QString &LastError() const { return m_LastError; }
    // Set by the application when the drawing changes; a successful SaveToFile clears it.
    bool Modified() const { return m_Modified; }
    void SetModified(bool modified) { m_Modified = modified; }

    // ---- DXF (defined in the dxf layer) ----
    // The shapes as DXF entities in millimetres (ENTITIES section only, every entity on layer
    // "0", Y growing upwards from the control's bottom edge). Text shapes become TEXT
    // entities; SaveToDxf1 writes the outlines of their glyphs instead. Written through a
    // temporary file that replaces fileName only when complete; false with LastError().
    bool SaveToDxf(const QString &fileName);
    bool SaveToDxf1(const QString &fileName);
    // The file SaveToDxf (glyphs false) or SaveToDxf1 (glyphs true) writes.
    QByteArray DxfText(bool glyphs) const;
    // What the DXF import (a separate library) reports as LastError(); empty after success.
    void SetLastDxfError(const QString &error) { m_LastError = error; }

    // ---- Blocks (defined in the persistence layer) ----
    // Inserts a drawing file into this drawing as a block: marks the drawing modified and,
    // when IsZEDAFile accepts the file, reads it into the memory list and pastes that
    // (PasteforBlock). The memory list is empty afterwards. True when the block was read; a
    // refused file is ignored silently, a damaged one leaves LastError().
    bool AddBlockfromZEDAFile(const QString &fileName, TBlockLayerMode mode);
    // Reads a drawing stream (from position 0) into the memory list, not into the drawing.
    // Existing named shapes are first renamed "A" followed by their identity in decimal (an
    // identity is unique, so the names stay unique and do not grow with each insertion).
    // The stream's version becomes the disk file version; the background colour, picture,
    // its mode, the ratio, the unit and (from "XP.h" on) the Tag are taken over and the user
    // data appended; the control grows to the block's size in each direction but never
    // shrinks. Merge puts every shape on the current layer. Import first appends layers
    // "Block1", "Block2", ... (skipping names in use, visible) until the drawing has as many
    // layers as the block, then gives each shape the layer at the place that its layer has
    // in the block's table, comparing the low 8 bits of layer IDs, the last match winning;
    // a shape whose layer is not in the table gets layer ID -1. The shapes are reported to
    // OnProgress as they are read. False, with LastError(), an empty memory list and the
    // drawing as it was, on a damaged stream or when OnProgress cancels.
    bool LoadFromStreamforBlock(QIODevice *stream, TBlockLayerMode mode);
    // Adds the memory shapes to the drawing where they are, as PlaceShapes does, keeping
    // the layers LoadFromStreamforBlock gave them. False only without any layer. Taking the
    // step back also gives the drawing's shapes the names that reading the block replaced;
    // the settings the block brought stay.
    bool PasteforBlock();
    // The shapes read by LoadFromStreamforBlock, created for this surface; their relations
    // name places in this list.
    const std::vector<std::unique_ptr<TMyShape>> &MemoryShapes() const { return m_MemoryShapes; }

    // ---- Clipboard ----
    // The working shapes go to the system clipboard as records under ShapesMimeType(), with
    // their texts in full under ShapeTextsMimeType() (the records cut them as the files do),
    // together with their group members and every top-level connector bound at both ends
    // to copied shapes; relations name places within the copied set, and a binding to a
    // shape left behind is dropped. A PNG ("image/png") and an SVG ("image/svg+xml", vector
    // figures) of the copied shapes, drawn as the surface draws them at the current zoom on
    // the background colour, serve other applications. False when nothing is selected.
    bool CopyToClipboard();
    // Copies what deleting the working shapes removes (locked shapes, and members locked
    // inside a group, stay and are not copied), then deletes the copied top-level shapes as
    // one "ACT_DELETE" step. False, changing nothing, when nothing unlocked is selected.
    bool CutToClipboard();
    // Adds the clipboard's shapes PasteOffset units right of and below where they were
    // copied, on the current layer (see PlaceShapes). False, with LastError(), when the
    // clipboard holds no shapes of ours or their data is damaged; nothing is added then.
    bool PasteFromClipboard();
    static QString ShapesMimeType() { return QStringLiteral("application/x-tessal-shapes"); }
    static QString ShapeTextsMimeType()
    {
        return QStringLiteral("application/x-tessal-shape-texts");
    }
    static constexpr float PasteOffset = 10;
    // The clipboard data of the working shapes (empty when none): a 16-byte text
    // "Tessal shapes", the 16-byte version of the records (FileVersion()), the shape count
    // (int32), then per shape its 16-byte class name and its record.
    QByteArray CopiedShapesData();
    // Every text of the same shapes, in full and in the same order (empty when none is
    // selected): what the records cut short is taken from here when pasting.
    QByteArray CopiedShapeTexts();
    // Reads such data and places its shapes as PasteFromClipboard does; texts, when given,
    // must be the texts part written with the data, and replaces the records' texts.
    bool PasteShapesData(const QByteArray &data, const QByteArray &texts = {});
    // The copied shapes' picture (control pixels of their painted extent); null when
    // nothing is selected or the extent is empty or larger than 8192 pixels a side.
    QImage SelectionImage();
    // The same picture as an SVG document of vector figures, one unit per pixel; empty
    // where SelectionImage() is null.
    QByteArray SelectionSvg();
    // A copy of source (of any surface) created for this surface: every field an undo step
    // restores (all that the record stores, texts in full) and the centre point equal; not
    // in the document.
    std::unique_ptr<TMyShape> CloneShape(const TMyShape &source);
    // Appends shapes in their order, moved by offset (document units), with fresh
    // identities, ShapeNo their places and names "Shape" followed by the identity. Their
    // relations (ParentNo, ChildShapes, LinkShapes, connector ends) name places within
    // shapes and become the new list places; a number outside the list is dropped. Unless
    // keepLayer they join the current layer. The addition is one "ACT_ADD" step, the
    // shapes without parent become the working shapes (the last one current), and
    // OnShapeAdded fires for each. Answers the added shapes; none without any layer.
    std::vector<TMyShape *> PlaceShapes(std::vector<std::unique_ptr<TMyShape>> shapes,
                                        TMyPoint offset, bool keepLayer);

    // ---- Repaint ----
    // Marks the whole control (or rect, in control pixels) for recomposition. Neither says
    // that shapes changed: a plain repaint keeps the spatial index.
    void Invalidate();
    void InvalidateRect(const TRect &rect);
    // Shapes were added, removed, moved, reshaped, reordered or regrouped: the spatial index
    // is rebuilt before its next query, and the whole control is invalidated.
    void DocumentChanged();
    // The image shown on screen, holding the control pixels from ScreenOrigin() on (device
    // pixel ratio of the widget). It covers the widget's visible part, or the part asked to
    // paint; a widget that is not shown gets the control's top-left part, no larger than the
    // screen. Empty before the first paint or resize.
    const QImage &ScreenImage() const { return m_ScreenImage; }
    QPoint ScreenOrigin() const { return m_ScreenOrigin; }
    // The control pixels the screen image holds.
    QRect ScreenImageRect() const
    {
        return {m_ScreenOrigin, m_ScreenImage.deviceIndependentSize().toSize()};
    }
    QSize sizeHint() const override;

    // ---- Rendering ----
    // Show the mouse position and the length readout in the attached labels, when set.
    void UpdateLabelXY(std::int32_t x, std::int32_t y);
    void UpdateLabelValue(const QString &text);
    // One repaint of clip (control pixels): composes it off-screen, copies it onto the
    // screen image, draws the working shapes' handles there and fires OnPaint. Does nothing
    // while the surface is busy.
    void Paint(const TRect &clip);
    // Composes rect (control pixels) in OffscreenImage(): background, background picture,
    // grid, shapes. The off-screen image covers rect (clipped to the control) exactly; its
    // top-left pixel is the control point OffscreenOrigin().
    void DrawAll(const TRect &rect);
    const QImage &OffscreenImage() const { return m_Offscreen; }
    QPoint OffscreenOrigin() const { return m_OffscreenOrigin; }
    // Fills rect (pixels of image) with ColorOfBackGround.
    void FillBackground(QImage &image, const TRect &rect);
    // The background picture placed on a page whose top-left corner is (dx, dy) of image;
    // the page is the control, or the whole image when printing.
    void DrawBkBitmap(QImage &image, std::int32_t dx, std::int32_t dy, bool printing);
    // The grid of rect (control pixels) into image, whose top-left pixel is the control
    // point origin.
    void DrawGrid(QImage &image, const TRect &rect, QPoint origin = {});
    // Printing aids, drawn on an image of the whole page (any resolution): the border
    // frame and the head and foot texts. The screen shows neither.
    void DrawBorder(QImage &image);
    void DrawHeadFoot(QImage &image);
    // The shapes reaching into rect, drawn on canvas in control coordinates (the caller
    // clips to rect). Painting never changes the document.
    void DrawAllShape(TCanvas &canvas, const TRect &rect);
    // True while the grid is drawn; setters that fire meanwhile do not repaint.
    bool IsGridDrawing() const { return m_GridDrawing; }
    // The shape numbers drawn by the last DrawAllShape, in list order.
    const std::vector<std::int32_t> &DrawList() const { return m_DrawList; }
    // The top-level shapes of visible layers whose drawing reaches into rect (control
    // pixels), in list order: through the spatial index, and by a plain scan of the list.
    // Both answer the same. The scan of several rectangles measures each shape once.
    std::vector<std::int32_t> ShapesInRect(const TRect &rect);
    std::vector<std::int32_t> ShapesInRectLinear(const TRect &rect) const;
    std::vector<std::vector<std::int32_t>> ShapesInRectsLinear(std::span<const TRect> rects) const;
    // Every top-level shape whose extent may meet rect (control pixels), on any layer,
    // hidden ones included, in list order; the caller applies its own exact test.
    std::vector<std::int32_t> IndexedShapesNear(const TRect &rect);
    // Every shape of the trees of the top-level shapes numbered roots, each once, ascending.
    std::vector<std::int32_t> TreesOf(const std::vector<std::int32_t> &roots) const;
    // The control pixels that the shape (with its group) can paint.
    TRect ShapeScreenRect(TMyShape *shape) const;
    // Keeping the spatial index current. A full Invalidate() rebuilds it before the next
    // query; code that changes shapes and repaints only part of the control reports the
    // change here: ShapeGeometryChanged after points, pen, texts or a new last shape,
    // ShapesRenumbered after the list's order or length or the group relations changed.
    void ShapeGeometryChanged(TMyShape *shape);
    void ShapesRenumbered();
    void ShapeJoinedGroup(TMyShape *member);

    // ---- Export ----
    // Draws the part page (control pixels) of the document on canvas, page's top-left corner
    // at the canvas's (0, 0): the background colour, the background picture, the grid when
    // grid is true, and the shapes of visible layers in list order as a repaint draws them,
    // without handles. The canvas may be over any paint device; on a vector device the
    // shapes become vector figures (see TCanvas for the pen modes there).
    void DrawDocument(TCanvas &canvas, const TRect &page, bool grid = false);
    // DrawDocument through a canvas over device, one device unit per control pixel. False
    // when the device cannot be painted on.
    bool RenderTo(QPaintDevice *device, const TRect &page, bool grid = false);

    // ---- Printing (print.cpp) ----
    // The drawing page in document pixels (control pixels at zoom 1).
    QSize PagePixelSize() const;
    // The sheets Print fills on printer: columns and rows (at least 1 x 1).
    QSize PrintSheetGrid(QPrinter *printer, TPrintScale scale) const;
    // Prints the page: the background when PrintBackground, the shapes of visible layers,
    // the border (PrintABorder) and the page head and foot, as the page's millimetres map to
    // the printer's printable area (see TPrintScale). On a grey-scale printer the shapes
    // print in grey. The zoom and selection on screen are not changed. False, with
    // LastError(), when the printer cannot be opened or a sheet cannot be started.
    bool Print(QPrinter *printer, TPrintScale scale = TPrintScale::FitToPage);

    // ---- Picture files (exportfiles.cpp, wmfwriter.cpp) ----
    // Pictures at zoom 1 without handles, grid or the printing aids (border, head, foot):
    // the page with background and shapes, or the working shapes on the background colour. Every
    // writer goes through a temporary file that replaces fileName only when complete; false, with
    // LastError(), when there is nothing to write (no selection) or writing failed.
    QImage ExportImage(TExportArea area = TExportArea::Page);
    bool SaveToBmp(const QString &fileName, TExportArea area = TExportArea::Page);
    // quality 0..100, as QImageWriter takes it.
    bool SaveToJpeg(const QString &fileName, TExportArea area = TExportArea::Page,
                    int quality = 90);
    bool SaveToPng(const QString &fileName, TExportArea area = TExportArea::Page);
    // Vector figures, one unit per document pixel.
    bool SaveToSvg(const QString &fileName, TExportArea area = TExportArea::Page);
    // One PDF page of the picture's physical size (document pixels at the screen's dpi).
    bool SaveToPdf(const QString &fileName, TExportArea area = TExportArea::Page);
    // A Windows metafile holding the picture as one device-independent bitmap.
    bool SaveToWmf(const QString &fileName, TExportArea area = TExportArea::Page);
    // Chooses the writer by the file name's suffix (bmp, jpg, jpeg, png, svg, pdf, wmf);
    // another suffix is an error.
    bool ExportToFile(const QString &fileName, TExportArea area = TExportArea::Page);
    // The suffixes ExportToFile accepts, lower case.
    static QStringList ExportSuffixes();

    // ---- TShapeHost ----
    std::int32_t ControlWidth() const override { return width(); }
    std::int32_t ControlHeight() const override { return height(); }
    std::int32_t ScreenPixelsPerInch() const override { return logicalDpiX(); }
    // A shape asking to be repainted may have changed any of its geometry.
    void RequestRepaint() override { DocumentChanged(); }
    void ShapeChanged(TMyShape &shape) override;
    void ShapeIdChanged(TMyShape &shape) override;
    void RotateShapeTo(TMyShape *shape, double angle) override;
    void LockShape(TMyShape *shape, bool locked) override;
    THotHighlight &HotHighlight() override { return m_HotHighlight; }
    TCanvas *ScreenCanvas() override;
    void ScreenChanged(const TRect &rect) override;

    // ---- Published properties ----
    TArcMode ArcMode() const override { return m_ArcMode; }
    void SetArcMode(TArcMode value);
    std::int32_t ArrowAngle() const override { return m_ArrowAngle; }
    void SetArrowAngle(std::int32_t value);
    std::uint8_t ArrowLength() const override { return m_ArrowLength; }
    void SetArrowLength(std::uint8_t value);
    std::uint8_t ArrowOffset() const override { return m_ArrowOffset; }
    void SetArrowOffset(std::uint8_t value);
    TArrowStyle ArrowStyle() const override { return m_ArrowStyle; }
    void SetArrowStyle(TArrowStyle value);
    const TBitmap &BkBitmap() const { return m_BkBitmap; }
    void SetBkBitmap(const TBitmap &value);
    TBkBitmapMode BkBitmapMode() const { return m_BkBitmapMode; }
    void SetBkBitmapMode(TBkBitmapMode value);
    const TBrush &Brush() const override { return m_Brush; }
    void SetBrush(const TBrush &value);
    TColor ColorOfBackGround() const { return m_ColorOfBackGround; }
    void SetColorOfBackGround(TColor value);
    TColor ColorOfHot() const { return m_ColorOfHot; }
    // Also makes value the process-wide handle colour.
    void SetColorOfHot(TColor value);
    bool CrossLine() const { return m_CrossLine; }
    void SetCrossLine(bool value);
    bool DragEnable() const override { return m_DragEnable; }
    void SetDragEnable(bool value);
    TDragMode DragMode() const { return m_DragMode; }
    void SetDragShapeMode(TDragMode value) { m_DragMode = value; }
    bool DragTrace() const { return m_DragTrace; }
    void SetDragTrace(bool value);
    bool DisableTextInput() const { return m_DisableTextInput; }
    void SetDisableTextInput(bool value);
    bool Enabled() const { return isEnabled(); }
    void SetEnabled(bool value);
    const TFont &Font() const override { return m_Font; }
    void SetFont(const TFont &value);
    // The owned grid settings; the setter copies from value.
    TGridObject *GridOperation() const { return m_Grid; }
    void SetGridOperation(TGridObject *value);
    bool HotShow() const override { return m_HotShow; }
    void SetHotShow(bool value);
    std::uint8_t HotSize() const override { return m_HotSize; }
    void SetHotSize(std::uint8_t value);
    // Labels that show the mouse position and length readouts; not owned.
    QLabel *LabelValue() const { return m_LabelValue; }
    void SetLabelValue(QLabel *value) { m_LabelValue = value; }
    QLabel *LabelXY() const { return m_LabelXY; }
    void SetLabelXY(QLabel *value) { m_LabelXY = value; }
    bool LinklineAroundShape() const { return m_LinklineAroundShape; }
    void SetLinklineAroundShape(bool value);
    TLinkLineDrawStyle LinkLineDrawStyle() const override { return m_LinkLineDrawStyle; }
    void SetLinkLineDrawStyle(TLinkLineDrawStyle value);
    bool LockBound() const { return m_LockBound; }
    void SetLockBound(bool value);
    bool MouseEffect() const { return m_MouseEffect; }
    void SetMouseEffect(bool value);

    const TActionToolToSelecting &OnActionToolToSelecting() const
    {
        return m_OnActionToolToSelecting;
    }
    void SetOnActionToolToSelecting(const TActionToolToSelecting &h)
    {
        m_OnActionToolToSelecting = h;
    }
    const TChildShapeSelected &OnChildShapeSelected() const { return m_OnChildShapeSelected; }
    void SetOnChildShapeSelected(const TChildShapeSelected &h) { m_OnChildShapeSelected = h; }
    const TNotifyEvent &OnClick() const { return m_OnClick; }
    void SetOnClick(const TNotifyEvent &h) { m_OnClick = h; }
    const TNotifyEvent &OnDblClick() const { return m_OnDblClick; }
    void SetOnDblClick(const TNotifyEvent &h) { m_OnDblClick = h; }
    const TDeleteLayer &OnDeleteLayer() const { return m_OnDeleteLayer; }
    void SetOnDeleteLayer(const TDeleteLayer &h) { m_OnDeleteLayer = h; }
    const TDragDropEvent &OnDragDrop() const { return m_OnDragDrop; }
    void SetOnDragDrop(const TDragDropEvent &h) { m_OnDragDrop = h; }
    const TDragOverEvent &OnDragOver() const { return m_OnDragOver; }
    void SetOnDragOver(const TDragOverEvent &h) { m_OnDragOver = h; }
    const TMouseEvent &OnMouseDown() const { return m_OnMouseDown; }
    void SetOnMouseDown(const TMouseEvent &h) { m_OnMouseDown = h; }
    const TNotifyEvent &OnMouseEnter() const { return m_OnMouseEnter; }
    void SetOnMouseEnter(const TNotifyEvent &h) { m_OnMouseEnter = h; }
    const TEnterLeaveShape &OnMouseEnterShape() const { return m_OnMouseEnterShape; }
    void SetOnMouseEnterShape(const TEnterLeaveShape &h) { m_OnMouseEnterShape = h; }
    const TNotifyEvent &OnMouseLeave() const { return m_OnMouseLeave; }
    void SetOnMouseLeave(const TNotifyEvent &h) { m_OnMouseLeave = h; }
    const TEnterLeaveShape &OnMouseLeaveShape() const { return m_OnMouseLeaveShape; }
    void SetOnMouseLeaveShape(const TEnterLeaveShape &h) { m_OnMouseLeaveShape = h; }
    const TMouseMoveEvent &OnMouseMove() const { return m_OnMouseMove; }
    void SetOnMouseMove(const TMouseMoveEvent &h) { m_OnMouseMove = h; }
    const TMouseEvent &OnMouseUp() const { return m_OnMouseUp; }
    void SetOnMouseUp(const TMouseEvent &h) { m_OnMouseUp = h; }
    const TNewLayer &OnNewLayer() const { return m_OnNewLayer; }
    void SetOnNewLayer(const TNewLayer &h) { m_OnNewLayer = h; }
    const TNodeAdded &OnNodeAdded() const { return m_OnNodeAdded; }
    void SetOnNodeAdded(const TNodeAdded &h) { m_OnNodeAdded = h; }
    const TNodeDeleted &OnNodeDeleted() const { return m_OnNodeDeleted; }
    void SetOnNodeDeleted(const TNodeDeleted &h) { m_OnNodeDeleted = h; }
    const TNotifyEvent &OnPaint() const { return m_OnPaint; }
    void SetOnPaint(const TNotifyEvent &h) { m_OnPaint = h; }
    // Not published with the events above: it is this library's own addition, reported by
    // LoadFromFile, LoadFromStream, SaveToFile and SaveToStream.
    const TProgressEvent &OnProgress() const { return m_OnProgress; }
    void SetOnProgress(const TProgressEvent &h) { m_OnProgress = h; }
    const TShapeAdded &OnShapeAdded() const { return m_OnShapeAdded; }
    void SetOnShapeAdded(const TShapeAdded &h) { m_OnShapeAdded = h; }
    const TShapeCodeDragging &OnShapeCodeDragging() const { return m_OnShapeCodeDragging; }
    void SetOnShapeCodeDragging(const TShapeCodeDragging &h) { m_OnShapeCodeDragging = h; }
    const TShapeCodeRotating &OnShapeCodeRotating() const { return m_OnShapeCodeRotating; }
    void SetOnShapeCodeRotating(const TShapeCodeRotating &h) { m_OnShapeCodeRotating = h; }
    const TShapeDeleted &OnShapeDeleted() const { return m_OnShapeDeleted; }
    void SetOnShapeDeleted(const TShapeDeleted &h) { m_OnShapeDeleted = h; }
    using TGesture = TShapeMouseDraggingSizingRotating;
    const TGesture &OnShapeMouseDragged() const { return m_OnShapeMouseDragged; }
    void SetOnShapeMouseDragged(const TGesture &h) { m_OnShapeMouseDragged = h; }
    const TGesture &OnShapeMouseDragging() const { return m_OnShapeMouseDragging; }
    void SetOnShapeMouseDragging(const TGesture &h) { m_OnShapeMouseDragging = h; }
    const TGesture &OnShapeMouseResized() const { return m_OnShapeMouseResized; }
    void SetOnShapeMouseResized(const TGesture &h) { m_OnShapeMouseResized = h; }
    const TGesture &OnShapeMouseResizeFinished() const { return m_OnShapeMouseResizeFinished; }
    void SetOnShapeMouseResizeFinished(const TGesture &h) { m_OnShapeMouseResizeFinished = h; }
    const TGesture &OnShapeMouseResizing() const { return m_OnShapeMouseResizing; }
    void SetOnShapeMouseResizing(const TGesture &h) { m_OnShapeMouseResizing = h; }
    const TGesture &OnShapeMouseRotated() const { return m_OnShapeMouseRotated; }
    void SetOnShapeMouseRotated(const TGesture &h) { m_OnShapeMouseRotated = h; }
    const TGesture &OnShapeMouseRotating() const { return m_OnShapeMouseRotating; }
    void SetOnShapeMouseRotating(const TGesture &h) { m_OnShapeMouseRotating = h; }
    const TShapeSelected &OnShapeSelected() const { return m_OnShapeSelected; }
    void SetOnShapeSelected(const TShapeSelected &h) { m_OnShapeSelected = h; }
    const TWholeDragOperation &OnWholeDragged() const { return m_OnWholeDragged; }
    void SetOnWholeDragged(const TWholeDragOperation &h) { m_OnWholeDragged = h; }

    bool OperateAllLayer() const { return m_OperateAllLayer; }
    void SetOperateAllLayer(bool value);
    const QString &PageFoot() const { return m_PageFoot; }
    void SetPageFoot(const QString &value);
    TAlignment PageFootAlignment() const { return m_PageFootAlignment; }
    void SetPageFootAlignment(TAlignment value);
    const TFont &PageFootFont() const { return m_PageFootFont; }
    void SetPageFootFont(const TFont &value);
    std::uint8_t PageFootToBottom() const { return m_PageFootToBottom; }
    void SetPageFootToBottom(std::uint8_t value);
    const QString &PageHead() const { return m_PageHead; }
    void SetPageHead(const QString &value);
    TAlignment PageHeadAlignment() const { return m_PageHeadAlignment; }
    void SetPageHeadAlignment(TAlignment value);
    const TFont &PageHeadFont() const { return m_PageHeadFont; }
    void SetPageHeadFont(const TFont &value);
    std::uint8_t PageHeadToTop() const { return m_PageHeadToTop; }
    void SetPageHeadToTop(std::uint8_t value);
    std::uint32_t PageHeight() const { return m_PageHeight; }
    TPrinterOrientation PageOrientation() const { return m_PageOrientation; }
    TPageStyle PageStyle() const { return m_PageStyle; }
    std::uint32_t PageWidth() const { return m_PageWidth; }
    const TPen &Pen() const override { return m_Pen; }
    void SetPen(const TPen &value);
    TPenStyleJoinType PenStyleJoinType() const override { return m_PenStyleJoinType; }
    void SetPenStyleJoinType(TPenStyleJoinType value);
    TPenStyleEndCapType PenStyleEndCapType() const override { return m_PenStyleEndCapType; }
    void SetPenStyleEndCapType(TPenStyleEndCapType value);
    bool PrintABorder() const { return m_PrintABorder; }
    void SetPrintABorder(bool value);
    std::uint8_t PrintABordertoBottom() const { return m_PrintABordertoBottom; }
    void SetPrintABordertoBottom(std::uint8_t value);
    std::uint8_t PrintABordertoLeft() const { return m_PrintABordertoLeft; }
    void SetPrintABordertoLeft(std::uint8_t value);
    std::uint8_t PrintABordertoRight() const { return m_PrintABordertoRight; }
    void SetPrintABordertoRight(std::uint8_t value);
    std::uint8_t PrintABordertoTop() const { return m_PrintABordertoTop; }
    void SetPrintABordertoTop(std::uint8_t value);
    bool PrintBackground() const { return m_PrintBackground; }
    void SetPrintBackground(bool value);
    double Ratio() const override { return m_Ratio; }
    bool ResizeEnable() const override { return m_ResizeEnable; }
    void SetResizeEnable(bool value);
    bool ReturnToSelecting() const { return m_ReturnToSelecting; }
    void SetReturnToSelecting(bool value);
    std::int32_t RotateConstraintDegree() const override { return m_RotateConstraintDegree; }
    void SetRotateConstraintDegree(std::int32_t value);
    bool RotateEnable() const override { return m_RotateEnable; }
    void SetRotateEnable(bool value);
    TDrawTool ShapeTool() const override { return m_ShapeTool; }
    void SetShapeTool(TDrawTool value);
    bool ShowHint() const { return m_ShowHint; }
    void SetShowHint(bool value);
    bool ShowHotLink() const override { return m_ShowHotLink; }
    void SetShowHotLink(bool value);
    bool Snap() const { return m_Snap; }
    void SetSnap(bool value);
    std::uint8_t SnapPixels() const { return m_SnapPixels; }
    void SetSnapPixels(std::uint8_t value);
    bool SnapShape() const { return m_SnapShape; }
    void SetSnapShape(bool value);
    std::int32_t Tag() const { return m_Tag; }
    void SetTag(std::int32_t value);
    TUnits TheUNIT() const override { return m_TheUNIT; }
    void SetTheUNIT(TUnits value);
    std::uint8_t UndoRedoSize() const { return m_UndoRedoSize; }
    void SetUndoRedoSize(std::uint8_t value);
    // The drawing's own key/value data, edited in place by applications.
    const TUserData &UserData() const { return m_UserData; }
    TUserData &UserData() { return m_UserData; }
    void SetUserData(const TUserData &value) { m_UserData.Assign(value); }
    // The same records as "key=value" texts (see TUserData::Texts).
    QStringList UserDataTexts() const { return m_UserData.Texts(); }
    void SetUserDataTexts(const QStringList &texts) { m_UserData.SetTexts(texts); }
    QString Version() const { return QStringLiteral("2013"); }
    // Visible is true unless the control was hidden explicitly (QWidget's visible also
    // needs every parent shown).
    bool Visible() const;
    void SetVisible(bool value);
    TXYMode XYMode() const override { return m_XYMode; }
    void SetXYMode(TXYMode value);
    double Zoom() const override { return m_Zoom; }
    // Delete, the arrow keys, Escape and Ctrl+A act on the working shapes while the control
    // has the focus (keyboard.cpp). On by default.
    bool KeyboardEditing() const { return m_KeyboardEditing; }
    void SetKeyboardEditing(bool value) { m_KeyboardEditing = value; }
    // Connectors bound to dragged, resized or turned shapes are routed again in the feedback
    // while the gesture runs, not only when it ends. Off by default.
    bool LiveConnectors() const { return m_LiveConnectors; }
    void SetLiveConnectors(bool value) { m_LiveConnectors = value; }
    // Asked for the picture of a shape drawn with the image tool instead of the file
    // dialog; leaving the picture empty cancels the shape.
    const TRequestPicture &OnRequestPicture() const { return m_OnRequestPicture; }
    void SetOnRequestPicture(const TRequestPicture &h) { m_OnRequestPicture = h; }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    // Stores value and invalidates the control.
    template <typename T>
    void Store(T &field, const T &value)
    {
        field = value;
        Invalidate();
    }
    // The page's screen size, applied to the control.
    void ResizeToPage();
    // Keeps the screen image over the part of the control that can be seen (or at least
    // over need), moving what it shows when that part moves.
    void EnsureScreenImage(const QRect &need = {});
    bool KeepsScreenImage(const QRect &current, const QRect &area) const;
    QRect ScreenArea(const QRect &need) const;
    void ForgetCoveredHighlight(const QRect &recomposed);
    void RotateTree(TMyShape *shape, TMyPoint centre, double delta, std::int32_t depth);
    void LockTree(TMyShape *shape, bool locked, std::int32_t depth);

    // Document.
    std::vector<std::unique_ptr<TMyShape>> m_Shapes;
    std::int32_t m_ShapeIdCounter = 0;
    std::vector<TLayer> m_Layers;
    std::int32_t m_LayerIdCounter = 0;
    std::int32_t m_CurrentLayerId = -1;
    QString m_FileVersion = QStringLiteral("XP.j");

    // Document (document.cpp, layers.cpp).
    // Shapes to remove together, members before their groups, each once.
    struct TDeletion
    {
        std::vector<TMyShape *> Shapes;
        std::unordered_set<const TMyShape *> Taken;
    };
    void CollectDeletion(TMyShape *shape, bool honourLocks, TDeletion &deletion,
                         std::int32_t depth);
    void DetachLinks(TMyShape *shape);
    void RemoveShapes(const std::vector<TMyShape *> &shapes);
    std::vector<TMyShape *> RegroupedByRemoval(const std::vector<TMyShape *> &shapes,
                                               const std::vector<bool> &goneByPlace) const;
    void ShapesRemoved();
    // Deletes the shapes (not recorded), locked ones excepted, together: a deletion handler
    // hears of each first.
    void DeleteShapesTogether(const std::vector<TMyShape *> &shapes);
    // Tells the deletion handler of each of the shapes still there, and collects those that
    // are still there after all were told.
    void AnnounceDeletion(const std::vector<TMyShape *> &shapes, TDeletion &deletion);
    // The list changed other than by an append: look-ups by identity and name look again.
    void ForgetPlaces() const;
    void RemoveShapeTree(TMyShape *shape, bool honourLocks);
    // Moves shapes (with their members) by dx, dy zoomed pixels and lets their connectors
    // follow; not recorded.
    void MoveShapesBy(const std::vector<TMyShape *> &shapes, double dx, double dy);
    void DeleteAdded(std::vector<std::int32_t> &ids);
    TShapesById ShapesById() const;
    // Gives every shape number n in the relations of all shapes the number map(n); a
    // negative answer removes the reference. Each shape also stores its place in the list,
    // in the same pass: on a big drawing every touch of a shape is a cache miss. A map that
    // changes the order of numbers (reordered) has the child lists sorted again.
    void RenumberRelations(const std::function<std::int32_t(std::int32_t)> &map,
                           bool reordered = false);
    void RotateToEnd(TMyShape *shape, bool toFront);
    void RestackChanged(TMyShape *shape);
    void CommandChangedGeometry(std::span<TMyShape *const> shapes);
    void ForgetShape(const TMyShape *shape);
    // Everything that remembers shapes forgets those for which gone answers true, asking once
    // for each shape remembered, so that removing many shapes at once stays linear.
    void ForgetShapes(const std::function<bool(const TMyShape *)> &gone);
    void RemoveLayerAt(std::int32_t no);
    std::int32_t FinishShapeByCode(std::unique_ptr<TMyShape> shape, const QString &caption,
                                   double angle);
    TWorkingShapes m_WorkingShapes;
    TMyShape *m_CurrentShape = nullptr;

    // Undo (undo.cpp).
    void RecordTree(TMyShape *shape, std::int32_t step, const QString &action,
                    bool childrenOnlyFromTop, std::int32_t depth);
    void RecordShape(TMyShape *shape, std::int32_t step, const QString &action);
    void TakeBackChange(const TUndoRecord &record);
    void TakeBackPath(const TUndoRecord &record);
    void RecordBoundConnectors(std::span<TMyShape *const> shapes, std::int32_t step);
    void TakeBackReorder(const TUndoRecord &record);
    std::int32_t GroupShapesAs(std::span<TMyShape *const> shapes, bool record,
                               const QString &className);
    void Regroup(std::vector<TMyShape *> &members, const TUndoRecord *formerGroup);
    void RestoreShapes(const std::vector<const TUndoRecord *> &records);
    void RelateRestored(const std::vector<const TUndoRecord *> &records,
                        const std::vector<TMyShape *> &restored, const TShapesById &present);
    // Adds the shapes named in formerNames (identity, name before) to the newest step, which
    // must be the one that added firstAdded, as records that give the names back.
    void RecordFormerNames(const std::vector<std::pair<std::int32_t, QString>> &formerNames,
                           const TMyShape *firstAdded);
    std::vector<TUndoRecord> m_UndoList;
    // Open BeginUndoStep pairs, and the step they record into (-1 before the first record).
    std::int32_t m_JoinDepth = 0;
    std::int32_t m_JoinedStep = -1;
    // Where the records of the newest recording call begin in the list.
    std::size_t m_LastRecorded = 0;

    // Commands (commands.cpp).
    void MoveTree(TMyShape *shape, double dx, double dy, std::int32_t depth);
    void FlipTree(TMyShape *shape, bool horizontal, std::int32_t depth);
    void Align(std::int32_t edge);
    void FlipShape(TMyShape *shape, bool horizontal);
    bool m_Ungrouping = false;

    // Owned objects.
    TGridObject *m_Grid = nullptr; // QObject child of the surface
    TBitmap m_BkBitmap;
    TPen m_Pen;
    TBrush m_Brush;
    TFont m_Font;
    TFont m_PageHeadFont;
    TFont m_PageFootFont;
    TUserData m_UserData;

    // Published values, with their construction values.
    TArcMode m_ArcMode = TArcMode::amCircle;
    std::int32_t m_ArrowAngle = 10;
    std::uint8_t m_ArrowLength = 30;
    std::uint8_t m_ArrowOffset = 0;
    TArrowStyle m_ArrowStyle = TArrowStyle::ANone;
    TBkBitmapMode m_BkBitmapMode = TBkBitmapMode::Center;
    TColor m_ColorOfBackGround = clWhite;
    // Stored without SetColorOfHot at construction: the process-wide handle colour keeps
    // its own initial value until an application sets this property.
    TColor m_ColorOfHot = clGray;
    bool m_CrossLine = true;
    bool m_DragEnable = true;
    TDragMode m_DragMode = TDragMode::dgBoth;
    bool m_DragTrace = true;
    bool m_DisableTextInput = false;
    bool m_HotShow = true;
    std::uint8_t m_HotSize = 4;
    QLabel *m_LabelValue = nullptr;
    QLabel *m_LabelXY = nullptr;
    bool m_LinklineAroundShape = true;
    TLinkLineDrawStyle m_LinkLineDrawStyle = TLinkLineDrawStyle::lldsHV;
    bool m_LockBound = false;
    bool m_MouseEffect = true;
    bool m_OperateAllLayer = true;
    QString m_PageFoot;
    TAlignment m_PageFootAlignment = TAlignment::taRightJustify;
    std::uint8_t m_PageFootToBottom = 15;
    QString m_PageHead;
    TAlignment m_PageHeadAlignment = TAlignment::taCenter;
    std::uint8_t m_PageHeadToTop = 15;
    std::uint32_t m_PageHeight = 0;
    TPrinterOrientation m_PageOrientation = TPrinterOrientation::poPortrait;
    TPageStyle m_PageStyle = TPageStyle::CustomerPage;
    std::uint32_t m_PageWidth = 0;
    TPenStyleJoinType m_PenStyleJoinType = TPenStyleJoinType::psjtROUND;
    TPenStyleEndCapType m_PenStyleEndCapType = TPenStyleEndCapType::psectROUND;
    bool m_PrintABorder = true;
    std::uint8_t m_PrintABordertoBottom = 20;
    std::uint8_t m_PrintABordertoLeft = 20;
    std::uint8_t m_PrintABordertoRight = 20;
    std::uint8_t m_PrintABordertoTop = 20;
    bool m_PrintBackground = false;
    double m_Ratio = 1.0;
    bool m_ResizeEnable = true;
    bool m_ReturnToSelecting = true;
    std::int32_t m_RotateConstraintDegree = 0;
    bool m_RotateEnable = true;
    TDrawTool m_ShapeTool = TDrawTool::SpSelecting;
    bool m_ShowHint = false;
    bool m_ShowHotLink = true;
    bool m_Snap = true;
    std::uint8_t m_SnapPixels = 4;
    bool m_SnapShape = false;
    std::int32_t m_Tag = 0;
    TUnits m_TheUNIT = TUnits::mm;
    std::uint8_t m_UndoRedoSize = 10;
    TXYMode m_XYMode = TXYMode::Mode0;
    double m_Zoom = 1.0;
    double m_PreZoom = 1.0;
    bool m_KeyboardEditing = true;
    bool m_LiveConnectors = false;

    // Events.
    TActionToolToSelecting m_OnActionToolToSelecting;
    TChildShapeSelected m_OnChildShapeSelected;
    TNotifyEvent m_OnClick;
    TNotifyEvent m_OnDblClick;
    TDeleteLayer m_OnDeleteLayer;
    TDragDropEvent m_OnDragDrop;
    TDragOverEvent m_OnDragOver;
    TMouseEvent m_OnMouseDown;
    TNotifyEvent m_OnMouseEnter;
    TEnterLeaveShape m_OnMouseEnterShape;
    TNotifyEvent m_OnMouseLeave;
    TEnterLeaveShape m_OnMouseLeaveShape;
    TMouseMoveEvent m_OnMouseMove;
    TMouseEvent m_OnMouseUp;
    TNewLayer m_OnNewLayer;
    TNodeAdded m_OnNodeAdded;
    TNodeDeleted m_OnNodeDeleted;
    TNotifyEvent m_OnPaint;
    TProgressEvent m_OnProgress;
    TShapeAdded m_OnShapeAdded;
    TShapeCodeDragging m_OnShapeCodeDragging;
    TShapeCodeRotating m_OnShapeCodeRotating;
    TShapeDeleted m_OnShapeDeleted;
    TGesture m_OnShapeMouseDragged;
    TGesture m_OnShapeMouseDragging;
    TGesture m_OnShapeMouseResized;
    TGesture m_OnShapeMouseResizeFinished;
    TGesture m_OnShapeMouseResizing;
    TGesture m_OnShapeMouseRotated;
    TGesture m_OnShapeMouseRotating;
    TShapeSelected m_OnShapeSelected;
    TWholeDragOperation m_OnWholeDragged;
    TRequestPicture m_OnRequestPicture;

    // Drawing files (persistence layer).
    void ResetForLoad();
    bool LoadFromMemory(const char *data, std::int64_t size, TLoadFault fault);
    void ReadDrawingSettings(BinaryStream &stream, bool growOnly = false);
    void ApplyDrawingSettings(const TDrawingSettings &settings, bool growOnly);
    void CommitLoadedDrawing(TLoadedDrawing &drawing);
    void ReadShapeList(BinaryStream &stream, std::vector<std::unique_ptr<TMyShape>> &shapes,
                       std::int32_t &largestId);
    void WriteDrawing(BinaryStream &stream, const std::function<void()> &flush) const;
    // Calls OnProgress; throws TLoadCancelled when the handler cancels.
    void ReportProgress(std::int64_t done, std::int64_t total) const;
    QString m_DiskFileVersion = QStringLiteral("XP.j");
    mutable QString m_LastError;
    bool m_Modified = false;

    // Blocks (persistence layer) and clipboard.
    std::vector<TLayer> ReadBlockLayers(BinaryStream &stream);
    void TakeOverBlock(const TDrawingSettings &settings, const std::vector<TLayer> &layers,
                       std::vector<std::unique_ptr<TMyShape>> shapes, TBlockLayerMode mode);
    void AssignBlockLayers(const std::vector<TLayer> &blockLayers, TBlockLayerMode mode);
    std::vector<std::unique_ptr<TMyShape>> m_MemoryShapes;
    // The clipboard forms of the shapes a copy takes, given by their list places: working
    // them out walks the whole list, so a copy does it once for all three.
    bool PutOnClipboard(const std::vector<std::int32_t> &numbers);
    QByteArray ShapesDataOf(const std::vector<std::int32_t> &numbers);
    QImage PictureOf(const std::vector<TMyShape *> &roots);
    QByteArray SvgOf(const std::vector<TMyShape *> &roots);
    // The names that reading the last block replaced, for the step that pastes it.
    std::vector<std::pair<std::int32_t, QString>> m_BlockFormerNames;

    // Interaction and repaint state.
    TActionTools m_ActionTool = TActionTools::dtSelecting;
    bool m_IsLoading = false;
    bool m_Busy = false;
    THotHighlight m_HotHighlight;
    // Control pixels whose composition is out of date. Areas outside it are shown from the
    // screen image as they are, so that xor feedback drawn there survives a plain expose.
    QRegion m_Dirty;
    QImage m_Offscreen;
    QPoint m_OffscreenOrigin;
    QImage m_Tile;
    QImage m_ScreenImage;
    QPoint m_ScreenOrigin;
    std::unique_ptr<TCanvas> m_ScreenCanvas;

    // Rendering (render.cpp).
    void CollectDrawList(const TRect &rect);
    void DrawListedShapes(TCanvas &canvas, const std::vector<std::int32_t> &list);
    void ComposeTile(const QRect &tile, const QRect &part, const std::vector<std::int32_t> &list);
    std::int32_t CompositionMargin() const;
    void DrawShapeTree(TCanvas &canvas, TMyShape *shape, std::int32_t depth);
    void DrawLinkHotTree(TCanvas &canvas, TMyShape *shape, std::int32_t depth);
    void DrawWorkingHandles(const TRect &clip);
    // The control pixels a working shape's handles can cover.
    TRect HandlesReach(TMyShape *shape) const;
    void DrawBkBitmapPart(QImage &image, QRect page, QRect clip);
    void DrawGridDots(TCanvas &canvas, QSize size, double sx, double sy);
    // The grid of page drawn on an export canvas (export.cpp).
    void DrawGridOn(TCanvas &canvas, const TRect &page);
    // The border and the head and foot on a canvas showing a whole page of size units.
    void DrawBorderOn(TCanvas &canvas, QSizeF size);
    void DrawHeadFootOn(TCanvas &canvas, QSizeF size);
    // The page at zoom 1 (print.cpp) on canvas in document pixels: the background when
    // wanted, the shapes, and with aids the border, head and foot.
    void DrawPrintPage(TCanvas &canvas, bool background, bool aids);
    // Runs draw with the zoom at 1 and any gesture cancelled; the screen is left as it was.
    void AtZoomOne(const std::function<void()> &draw);
    bool ExportVector(const QString &fileName, TExportArea area, bool pdf);
    bool ExportRaster(const QString &fileName, TExportArea area, const char *format, int quality);
    void DrawGridLines(TCanvas &canvas, QSize size, double sx, double sy, const TRect &rect);
    void EnsureIndex();
    // The shapes a press at the control pixel at may take, from the top of the drawing
    // down, as the index knows them: not yet filtered by layer or by the exact hit test.
    void BeginPressCandidates(TPoint at, TPressCursor &cursor);
    // Not a group member, and on a visible layer: what a repaint or a press can meet.
    bool IsShownTopLevel(const TMyShape *shape) const;
    bool m_GridDrawing = false;
    std::vector<std::int32_t> m_DrawList;
    std::unique_ptr<TShapeIndex> m_Index;
    // Filled by look-ups, which are const.
    mutable std::unique_ptr<TIdPlaces> m_IdPlaces;
    mutable std::unique_ptr<TNamePlaces> m_NamePlaces;

    // The mouse machine (mouse_p.h): gesture state, feedback on the screen image.
    friend class TMouseMachine;
    std::unique_ptr<TMouseMachine> m_Mouse;
    // Where the mouse is confined to while a button is down; empty when it is free.
    TRect m_CursorClip;
};

} // namespace tessal
