// SPDX-License-Identifier: MIT
// A shape library browser: opens a library file, shows a preview of each entry, and inserts
// the clicked entry into the drawing at the middle of the visible area, or a dragged entry
// where it is dropped on the surface.
#pragma once

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QLabel;
class QListWidget;
class QListWidgetItem;

namespace tessal {

class TLibManager;
class TMyCAD;

class TLibraryPanel : public QWidget
{
    Q_OBJECT

public:
    // where answers the document point at which inserted entries are centred; changed runs
    // after an insertion.
    TLibraryPanel(TMyCAD *surface, std::function<QPointF()> where, std::function<void()> changed,
                  QWidget *parent = nullptr);
    ~TLibraryPanel() override;

    // Opens a library; a damaged or foreign file leaves the shown library and says why in a
    // message box. Answers whether it was opened.
    bool OpenLibrary(const QString &fileName);
    // Inserts the named entry as one undo step, centred on centre (document units), or on
    // the middle of the view; false when it cannot be read or holds no shapes.
    bool InsertEntry(const QString &name, std::optional<QPointF> centre = std::nullopt);
    // The drag data of an entry: its name under this type.
    static QString EntryMimeType() { return QStringLiteral("application/x-tessal-library-entry"); }
    QListWidget *List() const { return m_List; }

protected:
    // Drops of entries on the surface.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void AskOpen();
    void ItemActivated(QListWidgetItem *item);

    TMyCAD *m_Surface;
    std::function<QPointF()> m_Where;
    std::function<void()> m_Changed;
    std::unique_ptr<TLibManager> m_Library;
    QLabel *m_Title;
    QListWidget *m_List;
};

} // namespace tessal
