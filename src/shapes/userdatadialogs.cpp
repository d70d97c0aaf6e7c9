// SPDX-License-Identifier: MIT
// The key/value list editor of user data and its add dialog.
#include <tessal/platform/message.h>
#include <tessal/shapes/userdatadialogs.h>

#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace tessal {

namespace {

bool RunAddDialog(QWidget *parent, QString &key, QString &value)
{
    TUserKeyAddFrm dialog(parent);
    dialog.KeyEdit()->setText(key);
    dialog.ValueEdit()->setText(value);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    key = dialog.KeyEdit()->text();
    value = dialog.ValueEdit()->text();
    return true;
}

} // namespace

TUserKeyAddFrm::TUserKeyAddFrm(QWidget *parent)
    : QDialog(parent)
    , m_KeyEdit(new QLineEdit(this))
    , m_ValueEdit(new QLineEdit(this))
{
    setObjectName(QStringLiteral("TUserKeyAddFrm"));
    setWindowTitle(QStringLiteral("Add key and value"));
    m_KeyEdit->setObjectName(QStringLiteral("KeyEdit"));
    m_ValueEdit->setObjectName(QStringLiteral("ValueEdit"));

    auto *form = new QFormLayout;
    form->addRow(new QLabel(QStringLiteral("Key"), this), m_KeyEdit);
    form->addRow(new QLabel(QStringLiteral("Value"), this), m_ValueEdit);

    auto *ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("OKButton"));
    ok->setDefault(true);
    auto *cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("CancelButton"));
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
}

TUserKeyFrm::TUserKeyFrm(QWidget *parent)
    : QDialog(parent)
    , m_List(new QTableWidget(0, 2, this))
    , m_RunAddDialog(RunAddDialog)
{
    setObjectName(QStringLiteral("TUserKeyFrm"));
    setWindowTitle(QStringLiteral("Key and Value Editor"));

    m_List->setObjectName(QStringLiteral("lvKeyValue"));
    m_List->setHorizontalHeaderLabels({QStringLiteral("Key"), QStringLiteral("Value")});
    m_List->verticalHeader()->hide();
    m_List->horizontalHeader()->setStretchLastSection(true);
    m_List->setShowGrid(true);
    m_List->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_List->setSelectionMode(QAbstractItemView::SingleSelection);
    m_List->setEditTriggers(QAbstractItemView::NoEditTriggers);

    QPushButton *ok = MakeButton(QStringLiteral("OK"), "OKButton");
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(MakeButton(QStringLiteral("Cancel"), "CancelButton"), &QPushButton::clicked, this,
            &QDialog::reject);
    connect(MakeButton(QStringLiteral("Add"), "AddButton"), &QPushButton::clicked, this,
            &TUserKeyFrm::AddClicked);
    connect(MakeButton(QStringLiteral("Delete"), "DeleteButton"), &QPushButton::clicked, this,
            &TUserKeyFrm::DeleteClicked);
    connect(MakeButton(QStringLiteral("Insert"), "InsertButton"), &QPushButton::clicked, this,
            &TUserKeyFrm::InsertClicked);
    connect(MakeButton(QStringLiteral("Edit"), "EditButton"), &QPushButton::clicked, this,
            &TUserKeyFrm::EditClicked);

    auto *panel = new QVBoxLayout;
    for (const char *name :
         {"OKButton", "CancelButton", "AddButton", "DeleteButton", "InsertButton", "EditButton"})
        panel->addWidget(findChild<QPushButton *>(QLatin1String(name)));
    panel->addStretch();
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(m_List, 1);
    layout->addLayout(panel);
}

QPushButton *TUserKeyFrm::MakeButton(const QString &text, const char *name)
{
    auto *button = new QPushButton(text, this);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    return button;
}

void TUserKeyFrm::AppendRow(const QString &key, const QString &value)
{
    const int row = m_List->rowCount();
    m_List->insertRow(row);
    SetRow(row, key, value);
}

int TUserKeyFrm::RowCount() const
{
    return m_List->rowCount();
}

QString TUserKeyFrm::KeyAt(int row) const
{
    const QTableWidgetItem *item = m_List->item(row, 0);
    return item ? item->text() : QString();
}

QString TUserKeyFrm::ValueAt(int row) const
{
    const QTableWidgetItem *item = m_List->item(row, 1);
    return item ? item->text() : QString();
}

void TUserKeyFrm::SetRow(int row, const QString &key, const QString &value)
{
    m_List->setItem(row, 0, new QTableWidgetItem(key));
    m_List->setItem(row, 1, new QTableWidgetItem(value));
}

int TUserKeyFrm::SelectedRowOrComplain() const
{
    const QModelIndexList rows = m_List->selectionModel()->selectedRows();
    if (rows.isEmpty()) {
        ShowMessage(QStringLiteral("Please select the Key/Value first."));
        return -1;
    }
    return rows.first().row();
}

void TUserKeyFrm::AddClicked()
{
    QString key, value;
    if (m_RunAddDialog(this, key, value))
        AppendRow(key, value);
}

void TUserKeyFrm::DeleteClicked()
{
    const int row = SelectedRowOrComplain();
    if (row >= 0)
        m_List->removeRow(row);
}

void TUserKeyFrm::InsertClicked()
{
    const int row = SelectedRowOrComplain();
    if (row < 0)
        return;
    QString key, value;
    if (!m_RunAddDialog(this, key, value))
        return;
    m_List->insertRow(row);
    SetRow(row, key, value);
}

void TUserKeyFrm::EditClicked()
{
    const int row = SelectedRowOrComplain();
    if (row < 0)
        return;
    QString key = KeyAt(row);
    QString value = ValueAt(row);
    if (m_RunAddDialog(this, key, value))
        SetRow(row, key, value);
}

bool EditUserData(QWidget *parent, TUserData &data)
{
    TUserKeyFrm form(parent);
    for (std::int32_t i = 0; i < data.GetCount(); ++i) {
        const QString key = data.GetKeyByNo(i);
        form.AppendRow(key, data.GetValueByKey(key));
    }
    if (form.exec() != QDialog::Accepted)
        return false;
    data.ClearAll();
    for (int row = 0; row < form.RowCount(); ++row)
        data.AddKeyandValue(form.KeyAt(row), form.ValueAt(row));
    return true;
}

} // namespace tessal
