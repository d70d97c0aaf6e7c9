// SPDX-License-Identifier: MIT
// The editor dialogs, on their own and opened from the grid's "..." button.
#include "common/files.h"
#include "inspectorhelpers.h"

#include <tessal/inspector/listdialogs.h>
#include <tessal/inspector/propertydelegate.h>
#include <tessal/inspector/valuedialogs.h>
#include <tessal/shapes/texteditdialog.h>
#include <tessal/shapes/userdatadialogs.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFontDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>

#include <memory>
#include <optional>

using namespace tessal;
using namespace tessal::test;

// An application object with a menu it publishes read-only.
class TMenuOwner : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QMenu *Popup READ Popup)
public:
    QMenu *Popup() const { return m_Menu.get(); }
    std::unique_ptr<QMenu> m_Menu = std::make_unique<QMenu>();
};

namespace {

// Presses the "..." button of a cell's dialog editor.
void PressDots(TInspectorGrid *grid, const QString &path)
{
    auto *cell = qobject_cast<TDialogCellEditor *>(OpenEditor(grid, path));
    ASSERT_TRUE(cell);
    QTest::mouseClick(cell->Button(), Qt::LeftButton);
    QApplication::processEvents();
}

} // namespace

TEST(InspectorDialogs, PenStringsSetsAndUserDataFromTheGrid)
{
    TDoc doc;
    doc.ClickShape(doc.A());
    TInspectorGrid *grid = doc.Grid();

    WhenModal<TPenDialog>([](TPenDialog *d) {
        d->WidthBox()->setValue(3);
        d->StyleBox()->setCurrentIndex(d->StyleBox()->findText("psDash"));
        d->accept();
    });
    PressDots(grid, "Pen");
    EXPECT_EQ(doc.A()->Pen().Width, 3);
    EXPECT_EQ(doc.A()->Pen().Style, TPenStyle::psDash);
    EXPECT_EQ(doc.UndoSteps(), 1u);

    // Cancel changes nothing and records nothing.
    WhenModal<TBrushDialog>([](TBrushDialog *d) {
        d->StyleBox()->setCurrentIndex(1);
        d->reject();
    });
    PressDots(grid, "Brush");
    EXPECT_EQ(doc.A()->Brush().Style, TBrushStyle::bsSolid);
    EXPECT_EQ(doc.UndoSteps(), 1u);

    WhenModal<TStringListDialog>([](TStringListDialog *d) {
        d->Editor()->setPlainText("first\nsecond");
        d->accept();
    });
    PressDots(grid, "MultiInfo");
    EXPECT_EQ(doc.A()->MultiInfo(), (QStringList{"first", "second"}));

    WhenModal<TSetDialog>([](TSetDialog *d) {
        d->Box(0)->setChecked(true); // fsBold
        d->Box(2)->setChecked(true); // fsUnderline
        d->accept();
    });
    PressDots(grid, "Font/Style");
    EXPECT_EQ(doc.A()->Font().Style, fsBold | fsUnderline);
    EXPECT_EQ(Shown(grid, "Font/Style"), "[fsBold, fsUnderline]");

    WhenModal<TUserKeyFrm>([](TUserKeyFrm *d) {
        d->AppendRow("owner", "tessal");
        d->accept();
    });
    PressDots(grid, "UserData");
    EXPECT_EQ(doc.A()->UserData().GetValueByKey("owner"), "tessal");
    EXPECT_EQ(doc.UndoSteps(), 4u);

    // Each dialog edit is one step: the user data goes first, then the font style.
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(doc.A()->UserData().GetCount(), 0);
    EXPECT_EQ(doc.A()->Font().Style, fsBold | fsUnderline);
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(doc.A()->Font().Style, 0);
}

TEST(InspectorDialogs, DialogsOnMixedValuesChangeOnlyWhatTheUserChanged)
{
    TDoc doc;
    TPen pen = doc.A()->Pen();
    pen.Color = clRed;
    pen.Style = TPenStyle::psDash;
    doc.A()->SetPen(pen);
    pen = doc.B()->Pen();
    pen.Color = clBlue;
    doc.B()->SetPen(pen);
    TBrush brush = doc.A()->Brush();
    brush.Style = TBrushStyle::bsCross;
    brush.Color = clYellow;
    doc.A()->SetBrush(brush);
    TFont font = doc.A()->Font();
    font.Name = "DejaVu Sans";
    font.Style = fsBold;
    font.SetSize(10);
    doc.A()->SetFont(font);
    font.Name = "Some Font Nobody Has";
    font.Style = fsItalic;
    font.SetSize(14);
    doc.B()->SetFont(font);
    doc.ClickShape(doc.A());
    doc.ClickShape(doc.B(), Qt::ControlModifier);
    TInspectorGrid *grid = doc.Grid();
    ASSERT_TRUE(Row(grid, "Pen").data(TPropertyModel::MixedRole).toBool());
    const auto pens = [&] {
        const TPen a = doc.A()->Pen(), b = doc.B()->Pen();
        return std::tuple(a.Color, a.Style, a.Width, b.Color, b.Style, b.Width);
    };
    using enum TPenStyle;

    // The dialog opens on the first shape's pen; only the width changes, on both.
    WhenModal<TPenDialog>([](TPenDialog *d) {
        EXPECT_EQ(std::pair(d->ColorButton()->Color(), d->StyleBox()->currentText()),
                  std::pair(clRed, QString("psDash")));
        d->WidthBox()->setValue(3);
        d->accept();
    });
    PressDots(grid, "Pen");
    EXPECT_EQ(pens(), std::tuple(clRed, psDash, 3, clBlue, psSolid, 3));
    EXPECT_EQ(doc.UndoSteps(), 1u);
    // Now only the colours differ; OK on the pen as it opened writes nothing.
    WhenModal<TPenDialog>([](TPenDialog *d) { d->accept(); });
    PressDots(grid, "Pen");
    EXPECT_EQ(doc.UndoSteps(), 1u);

    WhenModal<TBrushDialog>([](TBrushDialog *d) {
        EXPECT_EQ(d->ColorButton()->Color(), clYellow);
        d->ColorButton()->SetColor(clLime);
        d->accept();
    });
    PressDots(grid, "Brush");
    EXPECT_EQ(std::tuple(doc.A()->Brush().Style, doc.A()->Brush().Color, doc.B()->Brush().Style,
                         doc.B()->Brush().Color),
              std::tuple(TBrushStyle::bsCross, clLime, TBrushStyle::bsSolid, clLime));
    EXPECT_EQ(doc.UndoSteps(), 2u);

    // Each shape keeps its font name, even one that is not installed, and its styles.
    WhenModal<QFontDialog>([](QFontDialog *d) {
        EXPECT_EQ(d->currentFont().pointSize(), 10);
        QFont f = d->currentFont();
        f.setPointSize(20);
        d->setCurrentFont(f);
        d->accept();
    });
    PressDots(grid, "Font");
    const auto fonts = [&] {
        const TFont a = doc.A()->Font(), b = doc.B()->Font();
        return std::tuple(a.Name, a.Style, a.Size(), b.Name, b.Style, b.Size());
    };
    EXPECT_EQ(fonts(), std::tuple(QString("DejaVu Sans"), fsBold, 20,
                                  QString("Some Font Nobody Has"), fsItalic, 20));
    EXPECT_EQ(doc.UndoSteps(), 3u);

    // One step back each, for both shapes at once.
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(fonts(), std::tuple(QString("DejaVu Sans"), fsBold, 10,
                                  QString("Some Font Nobody Has"), fsItalic, 14));
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(doc.B()->Brush().Color, clWhite);
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(pens(), std::tuple(clRed, psDash, 1, clBlue, psSolid, 1));
}

TEST(InspectorDialogs, TextLeftAsOpenedGivesBackTheLinesItWasOpenedWith)
{
    // {lines opened with, text typed (none: left as opened), lines answered}. An empty box
    // shows both no lines and one empty line; only an edit decides between them.
    const std::tuple<QStringList, std::optional<QString>, QStringList> cases[] = {
        {{""}, {}, {""}},
        {{}, {}, {}},
        {{"", ""}, {}, {"", ""}},
        {{"a", ""}, {}, {"a", ""}},
        {{"a"}, QString(), {}},
        {{""}, QString("x\n"), {"x", ""}},
        {{}, QString("\n"), {"", ""}},
    };
    for (const auto &[opened, typed, expected] : cases) {
        SCOPED_TRACE(opened.join('|').toStdString());
        TStringListDialog list(opened);
        TTextEditDialog text;
        text.SetLines(opened);
        if (typed) {
            list.Editor()->setPlainText(*typed);
            text.Editor()->setPlainText(*typed);
        }
        EXPECT_EQ(list.Lines(), expected);
        EXPECT_EQ(text.Lines(), expected);
    }

    // Through the grid: OK on one blank line left alone changes nothing and records nothing.
    TDoc doc;
    doc.A()->SetMultiInfo({QString()});
    doc.ClickShape(doc.A());
    WhenModal<TStringListDialog>([](TStringListDialog *d) { d->accept(); });
    PressDots(doc.Grid(), "MultiInfo");
    EXPECT_EQ(doc.A()->MultiInfo(), QStringList{QString()});
    EXPECT_EQ(doc.UndoSteps(), 0u);
}

TEST(InspectorDialogs, PictureLoadsPreviewsAndRefusesBadFiles)
{
    QTemporaryDir dir;
    const QString good = dir.filePath("p.png");
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::blue);
    ASSERT_TRUE(image.save(good));
    const QString bad = dir.filePath("bad.png");
    ASSERT_TRUE(WriteFile(bad, "not a picture"));

    TPictureDialog dialog{TBitmap()};
    EXPECT_EQ(dialog.Preview()->text(), "(none)");
    ASSERT_TRUE(dialog.LoadFile(good));
    EXPECT_EQ(dialog.Picture().Image().size(), QSize(40, 20));
    EXPECT_EQ(dialog.Picture().Image().pixelColor(3, 3), QColor(Qt::blue));
    EXPECT_FALSE(dialog.Preview()->pixmap().isNull());
    EXPECT_FALSE(dialog.LoadFile(bad));
    EXPECT_TRUE(dialog.Message()->text().contains("bad.png"));
    EXPECT_EQ(dialog.Picture().Image().size(), QSize(40, 20));
    dialog.Clear();
    EXPECT_TRUE(dialog.Picture().IsEmpty());

    // Through the grid onto the surface's background picture.
    TDoc doc;
    WhenModal<TPictureDialog>([good](TPictureDialog *d) {
        d->LoadFile(good);
        d->accept();
    });
    PressDots(doc.Grid(), "BkBitmap");
    EXPECT_EQ(doc.Cad->BkBitmap().Image().size(), QSize(40, 20));
    EXPECT_EQ(Shown(doc.Grid(), "BkBitmap"), "40 × 20");
}

TEST(InspectorDialogs, CollectionAddsRemovesAndReorders)
{
    TCollectionDialog dialog("Layers", {{"Base", 1}, {"Top", 2}});
    dialog.AddItem("Notes");
    dialog.List()->setCurrentRow(0);
    dialog.MoveCurrent(1);
    EXPECT_EQ(dialog.List()->currentRow(), 1);
    dialog.MoveCurrent(5); // beyond the end: stays
    dialog.List()->setCurrentRow(0);
    dialog.MoveCurrent(-1); // before the start: stays
    dialog.List()->setCurrentRow(2);
    dialog.RemoveCurrent();
    using TItem = TCollectionDialog::TItem;
    EXPECT_EQ(dialog.Items(), (std::vector<TItem>{{"Top", 2}, {"Base", 1}}));
    dialog.AddItem("Notes");
    EXPECT_FALSE(dialog.Items().back().Data.isValid());
}

TEST(InspectorDialogs, MenuEditorKeepsActionsAndTheirConnections)
{
    QMenu menu;
    QAction *open = menu.addAction("&Open");
    QAction *quit = menu.addAction("&Quit");
    int opened = 0;
    QObject::connect(open, &QAction::triggered, [&opened] { ++opened; });

    TMenuEditorDialog dialog(&menu);
    ASSERT_EQ(dialog.List()->count(), 2);
    dialog.List()->setCurrentRow(1);
    dialog.RemoveCurrent(); // Quit
    dialog.AddSeparator();
    dialog.AddItem("&Save", "Ctrl+S");
    dialog.MoveCurrent(-2); // Save first
    dialog.List()->setCurrentRow(1);
    dialog.SetCurrentText("&Open...");
    dialog.Apply();

    const QList<QAction *> actions = menu.actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), "&Save");
    EXPECT_EQ(actions[0]->shortcut(), QKeySequence("Ctrl+S"));
    EXPECT_EQ(actions[1], open);
    EXPECT_EQ(actions[1]->text(), "&Open...");
    EXPECT_TRUE(actions[2]->isSeparator());
    EXPECT_FALSE(menu.findChildren<QAction *>().contains(quit));
    open->trigger();
    EXPECT_EQ(opened, 1);
}

TEST(InspectorDialogs, FontsConvertBothWays)
{
    TFont font;
    font.Name = "DejaVu Sans";
    font.SetSize(14);
    font.Style = fsItalic | fsStrikeOut;
    font.Color = clRed;
    const QFont q = ToQFont(font);
    EXPECT_EQ(q.family(), "DejaVu Sans");
    // {size, italic, struck out, bold}
    EXPECT_EQ(std::tuple(q.pointSize(), q.italic(), q.strikeOut(), q.bold()),
              std::tuple(14, true, true, false));
    EXPECT_EQ(FromQFont(q, font), font);
    QFont bold = q;
    bold.setBold(true);
    bold.setPointSize(20);
    TFont back = font;
    back.SetSize(20);
    back.Style = fsBold | fsItalic | fsStrikeOut;
    EXPECT_EQ(FromQFont(bold, font), back);
}

TEST(InspectorDialogs, MenusAreEditedInPlaceFromTheGrid)
{
    TMenuOwner owner;
    owner.setObjectName("owner");
    owner.Popup()->addAction("Cut");
    TInspectorGrid grid;
    grid.SetShowInherited(true);
    grid.SetObject(&owner);
    grid.resize(300, 400);
    grid.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&grid));
    EXPECT_EQ(Shown(&grid, "Popup"), "(1 item(s))");
    WhenModal<TMenuEditorDialog>([](TMenuEditorDialog *d) {
        d->AddItem("Paste");
        d->accept();
    });
    PressDots(&grid, "Popup");
    ASSERT_EQ(owner.Popup()->actions().size(), 2);
    EXPECT_EQ(owner.Popup()->actions()[1]->text(), "Paste");
}

TEST(InspectorDialogs, LayersAreEditedWithoutLosingShapes)
{
    TDoc doc;
    TComponentInspector *inspector = doc.Inspector;
    const std::int32_t current = doc.Cad->CurrentLayerId();
    std::vector<TCollectionDialog::TItem> items;
    for (const TLayer &layer : doc.Cad->Layers())
        if (layer.Id != current)
            items.push_back({layer.Name, layer.Id});
    ASSERT_FALSE(items.empty()); // the surface starts with a layer of its own
    const std::int32_t survivor = items.front().Data.toInt();
    items.front().Name = "Renamed";
    items.push_back({"Added", {}});
    items.push_back({"Renamed", {}}); // a taken name
    const QStringList problems = inspector->ApplyLayers(items);
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.front().contains("Renamed"));
    // Layer1 went; its three shapes moved onto the layer that stayed.
    EXPECT_EQ(doc.Cad->GetLayerNoById(current), -1);
    EXPECT_EQ(doc.Cad->GetShapesCount(), 3);
    EXPECT_EQ(doc.Cad->GetShapesCountInALayer(survivor), 3);
    EXPECT_EQ(doc.Cad->GetLayerNameByID(survivor), "Renamed");
    EXPECT_GE(doc.Cad->GetLayerIdByName("Added"), 0);
    // Removing every layer keeps the last one, with shapes or without: a drawing without
    // layers ends the application at the next shape added.
    const std::int32_t added = doc.Cad->GetLayerIdByName("Added");
    const QStringList last = inspector->ApplyLayers({});
    ASSERT_EQ(last.size(), 1);
    EXPECT_EQ(last.front(), "Layer Added is the drawing's last layer: kept.");
    EXPECT_EQ(doc.Cad->GetLayerNoById(survivor), -1); // its shapes were merged away
    EXPECT_EQ(doc.Cad->GetShapesCountInALayer(added), 3);
    EXPECT_EQ(doc.Cad->GetLayersCount(), 1);
    doc.Cad->DeleteShapeById(doc.Cad->GetShapeByNo(0)->ShapeId(), false);
    EXPECT_EQ(inspector->ApplyLayers({}).size(), 1);
    EXPECT_EQ(doc.Cad->GetLayersCount(), 1);
    // Replacing every layer by a new one: the shapes move onto it.
    EXPECT_TRUE(inspector->ApplyLayers({{"Fresh", {}}}).isEmpty());
    ASSERT_EQ(doc.Cad->GetLayersCount(), 1);
    EXPECT_EQ(doc.Cad->GetShapesCountInALayer(doc.Cad->GetLayerIdByName("Fresh")), 2);
    // Through the button and the dialog: the tree shows the new layer.
    WhenModal<TCollectionDialog>([](TCollectionDialog *d) {
        d->AddItem("Notes");
        d->accept();
    });
    QSignalSpy edited(inspector, &TComponentInspector::LayersEdited);
    QTest::mouseClick(inspector->LayersButton(), Qt::LeftButton);
    EXPECT_GE(doc.Cad->GetLayerIdByName("Notes"), 0);
    EXPECT_EQ(edited.count(), 1);
    EXPECT_EQ(inspector->Tree()->model()->rowCount(), 2);
}

#include "dialogs_test.moc"
