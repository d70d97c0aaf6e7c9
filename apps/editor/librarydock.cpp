// SPDX-License-Identifier: MIT
// The library browser.
#include "librarydock.h"

#include <tessal/persistence/library.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace tessal {

namespace {
constexpr int PreviewSide = 64;

// Drags carry the entry's name, so that the surface needs nothing of the list.
class TEntryList : public QListWidget
{
public:
    using QListWidget::QListWidget;

protected:
    QStringList mimeTypes() const override { return {TLibraryPanel::EntryMimeType()}; }
    QMimeData *mimeData(const QList<QListWidgetItem *> &items) const override
    {
        if (items.isEmpty())
            return nullptr;
        auto *data = new QMimeData;
        data->setData(TLibraryPanel::EntryMimeType(), items.front()->text().toUtf8());
        return data;
    }
};
} // namespace

TLibraryPanel::TLibraryPanel(TMyCAD *surface, std::function<QPointF()> where,
                             std::function<void()> changed, QWidget *parent)
    : QWidget(parent)
    , m_Surface(surface)
    , m_Where(std::move(where))
    , m_Changed(std::move(changed))
    , m_Title(new QLabel(tr("No library open")))
    , m_List(new TEntryList)
{
    m_List->setDragEnabled(true);
    m_List->setDragDropMode(QAbstractItemView::DragOnly);
    m_Surface->setAcceptDrops(true);
    m_Surface->installEventFilter(this);
    m_List->setObjectName(QStringLiteral("libraryList"));
    m_List->setViewMode(QListView::IconMode);
    m_List->setIconSize(QSize(PreviewSide, PreviewSide));
    m_List->setResizeMode(QListView::Adjust);
    m_List->setMovement(QListView::Static);
    m_List->setToolTip(tr("Click an entry to insert it, or drag it onto the drawing"));
    auto *open = new QPushButton(tr("Open Library..."));
    connect(open, &QPushButton::clicked, this, &TLibraryPanel::AskOpen);
    connect(m_List, &QListWidget::itemClicked, this, &TLibraryPanel::ItemActivated);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(m_Title);
    layout->addWidget(m_List);
    layout->addWidget(open);
}

TLibraryPanel::~TLibraryPanel() = default;

bool TLibraryPanel::OpenLibrary(const QString &fileName)
{
    auto library = std::make_unique<TLibManager>();
    if (!library->LoadFromFile(fileName)) {
        QMessageBox::warning(this, tr("Open library"),
                             tr("%1 cannot be read: %2").arg(fileName, library->LastError()));
        return false;
    }
    m_Library = std::move(library);
    m_List->clear();
    const std::int32_t count = m_Library->GetcmbShapesCount();
    for (std::int32_t i = 0; i < count; ++i) {
        const QString name = m_Library->GetCmbShapesNameByID(i);
        const QImage preview = m_Library->GetCmbShapeImage(name, QSize(PreviewSide, PreviewSide));
        auto *item = new QListWidgetItem(QIcon(QPixmap::fromImage(preview)), name, m_List);
        item->setToolTip(name);
    }
    m_Title->setText(tr("%1: %n entries", nullptr, count).arg(QFileInfo(fileName).fileName()));
    return true;
}

bool TLibraryPanel::InsertEntry(const QString &name, std::optional<QPointF> centre)
{
    if (!m_Library)
        return false;
    TMyPointArray linkPoints;
    TUserData userData;
    TLibManager::TShapeList shapes;
    std::int32_t width = 0;
    std::int32_t height = 0;
    if (!m_Library->GetCmbShape(name, false, linkPoints, userData, shapes, width, height)) {
        QMessageBox::warning(this, tr("Insert"),
                             tr("%1 cannot be read: %2").arg(name, m_Library->LastError()));
        return false;
    }
    // The entry's shapes belong to the library's hidden drawing: clone them for ours.
    std::vector<std::unique_ptr<TMyShape>> copies;
    for (const auto &shape : shapes)
        if (auto copy = m_Surface->CloneShape(*shape))
            copies.push_back(std::move(copy));
    if (copies.empty()) {
        QMessageBox::information(this, tr("Insert"), tr("%1 holds no shapes.").arg(name));
        return false;
    }
    const QPointF middle = centre.value_or(m_Where());
    const TMyPoint offset{float(middle.x() - width / 2.0), float(middle.y() - height / 2.0)};
    const bool placed = !m_Surface->PlaceShapes(std::move(copies), offset, false).empty();
    m_Surface->DocumentChanged();
    m_Changed();
    return placed;
}

bool TLibraryPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_Surface)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove) {
        auto *drag = static_cast<QDragMoveEvent *>(event);
        if (!drag->mimeData()->hasFormat(EntryMimeType()))
            return false;
        drag->acceptProposedAction();
        return true;
    }
    if (event->type() == QEvent::Drop) {
        auto *drop = static_cast<QDropEvent *>(event);
        if (!drop->mimeData()->hasFormat(EntryMimeType()))
            return false;
        drop->acceptProposedAction();
        const QString name = QString::fromUtf8(drop->mimeData()->data(EntryMimeType()));
        InsertEntry(name, drop->position() / m_Surface->Zoom());
        return true;
    }
    return false;
}

void TLibraryPanel::AskOpen()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Open library"), {},
                                                      tr("Shape libraries (*.tsl);;All files (*)"));
    if (!path.isEmpty())
        OpenLibrary(path);
}

void TLibraryPanel::ItemActivated(QListWidgetItem *item)
{
    InsertEntry(item->text());
}

} // namespace tessal
