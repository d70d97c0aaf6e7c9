// SPDX-License-Identifier: MIT
// Dialogs that edit one property value: string lists, pictures, sets, pens and brushes.
#pragma once

#include <tessal/inspector/propertykind.h>
#include <tessal/platform/bitmap.h>
#include <tessal/platform/graphics.h>

#include <QDialog>
#include <QFont>

class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QSpinBox;
class QToolButton;

namespace tessal {

// A TFont as Qt's font (family, point size, styles) and back; the colour, pitch, charset
// and resolution of base are kept.
QFont ToQFont(const TFont &font);
TFont FromQFont(const QFont &font, const TFont &base);

// Lines of text, one per line of a plain text box. Text left as it was opened gives back
// the lines it was opened with: an empty box stands for both no lines and one empty line.
class TStringListDialog : public QDialog
{
    Q_OBJECT
public:
    explicit TStringListDialog(const QStringList &lines, QWidget *parent = nullptr);
    QStringList Lines() const;
    QPlainTextEdit *Editor() const { return m_Edit; }

private:
    QStringList m_Opened;
    QPlainTextEdit *m_Edit;
};

// A picture with a preview: Load reads any image file Qt can read, Clear empties it.
class TPictureDialog : public QDialog
{
    Q_OBJECT
public:
    explicit TPictureDialog(const TBitmap &picture, QWidget *parent = nullptr);
    const TBitmap &Picture() const { return m_Picture; }
    // False, and the picture stays, when the file cannot be read; the dialog says why.
    bool LoadFile(const QString &fileName);
    void Clear();
    QLabel *Preview() const { return m_Preview; }
    QLabel *Message() const { return m_Message; }

private:
    void ShowPicture();
    TBitmap m_Picture;
    QLabel *m_Preview;
    QLabel *m_Message;
};

// One check box per named bit.
class TSetDialog : public QDialog
{
    Q_OBJECT
public:
    TSetDialog(const std::vector<TSetBit> &bits, int value, QWidget *parent = nullptr);
    int Value() const;
    QCheckBox *Box(int i) const { return m_Boxes[std::size_t(i)]; }

private:
    std::vector<TSetBit> m_Bits;
    std::vector<QCheckBox *> m_Boxes;
};

// A colour button that opens the colour dialog and shows the chosen colour.
class TColorButton : public QWidget
{
    Q_OBJECT
public:
    explicit TColorButton(TColor color, QWidget *parent = nullptr);
    TColor Color() const { return m_Color; }
    void SetColor(TColor color);

private:
    TColor m_Color;
    QToolButton *m_Button;
};

// Colour, style, width and mode of a pen.
class TPenDialog : public QDialog
{
    Q_OBJECT
public:
    explicit TPenDialog(const TPen &pen, QWidget *parent = nullptr);
    TPen Pen() const;
    TColorButton *ColorButton() const { return m_Color; }
    QComboBox *StyleBox() const { return m_Style; }
    QSpinBox *WidthBox() const { return m_Width; }
    QComboBox *ModeBox() const { return m_Mode; }

private:
    TPen m_Pen;
    TColorButton *m_Color;
    QComboBox *m_Style;
    QSpinBox *m_Width;
    QComboBox *m_Mode;
};

// Colour and style of a brush; a pattern picture is kept as it is.
class TBrushDialog : public QDialog
{
    Q_OBJECT
public:
    explicit TBrushDialog(const TBrush &brush, QWidget *parent = nullptr);
    TBrush Brush() const;
    TColorButton *ColorButton() const { return m_Color; }
    QComboBox *StyleBox() const { return m_Style; }

private:
    TBrush m_Brush;
    TColorButton *m_Color;
    QComboBox *m_Style;
};

// Whether a kind is edited through a dialog rather than in the cell.
bool HasValueDialog(TPropertyKind kind);
// Opens the dialog of type's kind on value (colours and fonts through Qt's standard
// dialogs, user data through its key/value editor) and answers whether the user accepted;
// value then holds the result.
bool RunValueDialog(QWidget *parent, const TPropertyType &type, QVariant &value);

} // namespace tessal
