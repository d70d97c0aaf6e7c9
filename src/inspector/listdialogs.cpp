// SPDX-License-Identifier: MIT
// The collection and menu item editors.
#include <tessal/inspector/dialogbuttons_p.h>
#include <tessal/inspector/listdialogs.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QKeySequence>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace tessal {

namespace {

// Moves the current row of list by `by` places, keeping it current.
void MoveRow(QListWidget *list, int by)
{
    const int row = list->currentRow();
    const int to = row + by;
    if (row < 0 || to < 0 || to >= list->count())
        return;
    QListWidgetItem *item = list->takeItem(row);
    list->insertItem(to, item);
    list->setCurrentRow(to);
}

// The list on the left, its buttons stacked on the right, OK and Cancel below.
void LayOut(QDialog *dialog, QListWidget *list, QVBoxLayout *buttons)
{
    buttons->addStretch();
    auto *row = new QHBoxLayout;
    row->addWidget(list, 1);
    row->addLayout(buttons);
    auto *layout = new QVBoxLayout(dialog);
    layout->addLayout(row);
    layout->addWidget(OkCancel(dialog));
}

constexpr int ActionRole = Qt::UserRole + 1;
constexpr int TextRole = Qt::UserRole + 2;
constexpr int ShortcutRole = Qt::UserRole + 3;
constexpr int SeparatorRole = Qt::UserRole + 4;

} // namespace

TCollectionDialog::TCollectionDialog(const QString &title, const std::vector<TItem> &items,
                                     QWidget *parent)
    : QDialog(parent)
    , m_List(new QListWidget(this))
    , m_Remove(new QPushButton(tr("&Remove"), this))
    , m_Up(new QPushButton(tr("Move &Up"), this))
    , m_Down(new QPushButton(tr("Move &Down"), this))
{
    setWindowTitle(title);
    for (const TItem &item : items) {
        auto *row = new QListWidgetItem(item.Name, m_List);
        row->setData(Qt::UserRole, item.Data);
        row->setFlags(row->flags() | Qt::ItemIsEditable);
    }
    auto *add = new QPushButton(tr("&Add"), this);
    connect(add, &QPushButton::clicked, this, [this] { AddItem(NewName()); });
    connect(m_Remove, &QPushButton::clicked, this, &TCollectionDialog::RemoveCurrent);
    connect(m_Up, &QPushButton::clicked, this, [this] { MoveCurrent(-1); });
    connect(m_Down, &QPushButton::clicked, this, [this] { MoveCurrent(1); });
    connect(m_List, &QListWidget::currentRowChanged, this, &TCollectionDialog::UpdateButtons);
    auto *side = new QVBoxLayout;
    for (QPushButton *b : {add, m_Remove, m_Up, m_Down})
        side->addWidget(b);
    LayOut(this, m_List, side);
    UpdateButtons();
}

std::vector<TCollectionDialog::TItem> TCollectionDialog::Items() const
{
    std::vector<TItem> items;
    for (int i = 0; i < m_List->count(); ++i)
        items.push_back({m_List->item(i)->text(), m_List->item(i)->data(Qt::UserRole)});
    return items;
}

QString TCollectionDialog::NewName() const
{
    for (int n = 1;; ++n) {
        const QString name = QStringLiteral("Item%1").arg(n);
        if (m_List->findItems(name, Qt::MatchExactly).isEmpty())
            return name;
    }
}

void TCollectionDialog::AddItem(const QString &name)
{
    auto *row = new QListWidgetItem(name, m_List);
    row->setFlags(row->flags() | Qt::ItemIsEditable);
    m_List->setCurrentItem(row);
}

void TCollectionDialog::RemoveCurrent()
{
    delete m_List->currentItem();
    UpdateButtons();
}

void TCollectionDialog::MoveCurrent(int by)
{
    if (m_Reorderable)
        MoveRow(m_List, by);
    UpdateButtons();
}

void TCollectionDialog::SetReorderable(bool reorderable)
{
    m_Reorderable = reorderable;
    m_Up->setVisible(reorderable);
    m_Down->setVisible(reorderable);
    UpdateButtons();
}

void TCollectionDialog::UpdateButtons()
{
    const int row = m_List->currentRow();
    m_Remove->setEnabled(row >= 0);
    m_Up->setEnabled(row > 0);
    m_Down->setEnabled(row >= 0 && row < m_List->count() - 1);
}

TMenuEditorDialog::TMenuEditorDialog(QMenu *menu, QWidget *parent)
    : QDialog(parent)
    , m_Menu(menu)
    , m_List(new QListWidget(this))
{
    setWindowTitle(tr("Menu Editor"));
    for (QAction *action : menu->actions())
        m_List->addItem(MakeItem(action, action->text(),
                                 action->shortcut().toString(QKeySequence::PortableText),
                                 action->isSeparator()));
    auto button = [this](const QString &text, auto slot) {
        auto *b = new QPushButton(text, this);
        connect(b, &QPushButton::clicked, this, slot);
        return b;
    };
    auto *side = new QVBoxLayout;
    side->addWidget(button(tr("&Add Item"), [this] { AddItem(tr("New Item")); }));
    side->addWidget(button(tr("Add &Separator"), [this] { AddSeparator(); }));
    side->addWidget(button(tr("&Text..."), [this] {
        AskForCurrent(TextRole, tr("Item Text"), tr("Text:"),
                      [this](const QString &text) { SetCurrentText(text); });
    }));
    side->addWidget(button(tr("S&hortcut..."), [this] {
        AskForCurrent(ShortcutRole, tr("Shortcut"), tr("Keys:"),
                      [this](const QString &keys) { SetCurrentShortcut(keys); });
    }));
    side->addWidget(button(tr("&Remove"), [this] { RemoveCurrent(); }));
    side->addWidget(button(tr("Move &Up"), [this] { MoveCurrent(-1); }));
    side->addWidget(button(tr("Move &Down"), [this] { MoveCurrent(1); }));
    LayOut(this, m_List, side);
    connect(this, &QDialog::accepted, this, &TMenuEditorDialog::Apply);
}

void TMenuEditorDialog::AskForCurrent(int role, const QString &title, const QString &label,
                                      const std::function<void(const QString &)> &apply)
{
    QListWidgetItem *item = m_List->currentItem();
    if (!item)
        return;
    bool ok = false;
    const QString text = QInputDialog::getText(this, title, label, QLineEdit::Normal,
                                               item->data(role).toString(), &ok);
    if (ok)
        apply(text);
}

QListWidgetItem *TMenuEditorDialog::MakeItem(QAction *action, const QString &text,
                                             const QString &shortcut, bool separator)
{
    auto *item = new QListWidgetItem;
    item->setData(ActionRole, QVariant::fromValue(QPointer<QAction>(action)));
    item->setData(TextRole, text);
    item->setData(ShortcutRole, shortcut);
    item->setData(SeparatorRole, separator);
    Relabel(item);
    return item;
}

void TMenuEditorDialog::Relabel(QListWidgetItem *item)
{
    if (item->data(SeparatorRole).toBool()) {
        item->setText(QStringLiteral("────────"));
        return;
    }
    const QString shortcut = item->data(ShortcutRole).toString();
    item->setText(item->data(TextRole).toString() +
                  (shortcut.isEmpty() ? QString() : QLatin1Char('\t') + shortcut));
}

void TMenuEditorDialog::AddItem(const QString &text, const QString &shortcut)
{
    m_List->addItem(MakeItem(nullptr, text, shortcut, false));
    m_List->setCurrentRow(m_List->count() - 1);
}

void TMenuEditorDialog::AddSeparator()
{
    m_List->addItem(MakeItem(nullptr, {}, {}, true));
    m_List->setCurrentRow(m_List->count() - 1);
}

void TMenuEditorDialog::RemoveCurrent()
{
    delete m_List->currentItem();
}

void TMenuEditorDialog::MoveCurrent(int by)
{
    MoveRow(m_List, by);
}

void TMenuEditorDialog::SetCurrentText(const QString &text)
{
    if (QListWidgetItem *item = m_List->currentItem();
        item && !item->data(SeparatorRole).toBool()) {
        item->setData(TextRole, text);
        Relabel(item);
    }
}

void TMenuEditorDialog::SetCurrentShortcut(const QString &shortcut)
{
    if (QListWidgetItem *item = m_List->currentItem();
        item && !item->data(SeparatorRole).toBool()) {
        item->setData(ShortcutRole, shortcut);
        Relabel(item);
    }
}

void TMenuEditorDialog::Apply()
{
    QList<QAction *> kept;
    QList<QAction *> order;
    for (int i = 0; i < m_List->count(); ++i) {
        const QListWidgetItem *item = m_List->item(i);
        QAction *action = item->data(ActionRole).value<QPointer<QAction>>();
        if (!action) {
            action = new QAction(m_Menu);
            action->setSeparator(item->data(SeparatorRole).toBool());
        }
        if (!action->isSeparator()) {
            action->setText(item->data(TextRole).toString());
            action->setShortcut(
                QKeySequence(item->data(ShortcutRole).toString(), QKeySequence::PortableText));
        }
        order << action;
    }
    const QList<QAction *> before = m_Menu->actions();
    for (QAction *action : before)
        m_Menu->removeAction(action);
    for (QAction *action : before)
        if (!order.contains(action) && action->parent() == m_Menu)
            delete action;
    m_Menu->addActions(order);
}

} // namespace tessal
