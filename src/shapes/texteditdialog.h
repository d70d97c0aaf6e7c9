// SPDX-License-Identifier: MIT
// The multi-line text editor with which the surface asks for a new text shape's lines.
#pragma once

#include <QDialog>
#include <QStringList>

class QPlainTextEdit;

namespace tessal {

// A plain-text editor with OK and Cancel. The lines are the editor's text split at line
// breaks; an empty editor gives no lines, except that text left as SetLines put it gives
// back those lines (an empty editor also shows one empty line).
class TTextEditDialog : public QDialog
{
    Q_OBJECT

public:
    explicit TTextEditDialog(QWidget *parent = nullptr);

    void SetLines(const QStringList &lines);
    QStringList Lines() const;
    QPlainTextEdit *Editor() const { return m_Editor; }

private:
    QStringList m_Lines;
    QPlainTextEdit *m_Editor;
};

// Shows the editor modally with lines; on OK lines receives the edited text and the answer
// is true, on Cancel lines is left as it was.
bool EditTextLines(QWidget *parent, QStringList &lines);

} // namespace tessal
