// SPDX-License-Identifier: MIT
// TTextEditDialog: a plain-text editor with OK and Cancel.
#include <tessal/shapes/texteditdialog.h>

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace tessal {

TTextEditDialog::TTextEditDialog(QWidget *parent)
    : QDialog(parent)
    , m_Editor(new QPlainTextEdit(this))
{
    setWindowTitle(tr("Text"));
    // Long lines stay whole: the shape decides where text wraps, not the editor.
    m_Editor->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_Editor);
    layout->addWidget(buttons);
    resize(360, 240);
    m_Editor->setFocus();
}

void TTextEditDialog::SetLines(const QStringList &lines)
{
    m_Lines = lines;
    m_Editor->setPlainText(lines.join(QLatin1Char('\n')));
}

QStringList TTextEditDialog::Lines() const
{
    const QString text = m_Editor->toPlainText();
    if (text == m_Lines.join(QLatin1Char('\n')))
        return m_Lines;
    if (text.isEmpty())
        return {};
    return text.split(QLatin1Char('\n'));
}

bool EditTextLines(QWidget *parent, QStringList &lines)
{
    TTextEditDialog dialog(parent);
    dialog.SetLines(lines);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    lines = dialog.Lines();
    return true;
}

} // namespace tessal
