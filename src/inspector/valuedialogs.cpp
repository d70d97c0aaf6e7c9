// SPDX-License-Identifier: MIT
// The value editor dialogs of the inspector.
#include <tessal/inspector/dialogbuttons_p.h>
#include <tessal/inspector/listdialogs.h>
#include <tessal/inspector/valuedialogs.h>
#include <tessal/platform/color.h>
#include <tessal/shapes/userdatadialogs.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFontDialog>
#include <QFontInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QMenu>
#include <QMetaEnum>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

namespace tessal {

namespace {

template <typename E>
QComboBox *EnumBox(E current, QWidget *parent)
{
    auto *box = new QComboBox(parent);
    const QMetaEnum e = QMetaEnum::fromType<E>();
    for (int i = 0; i < e.keyCount(); ++i)
        box->addItem(QString::fromLatin1(e.key(i)), e.value(i));
    box->setCurrentIndex(box->findData(int(current)));
    return box;
}

} // namespace

QFont ToQFont(const TFont &font)
{
    QFont f(font.Name);
    f.setPointSize(std::max(1, font.Size()));
    f.setBold(font.Bold());
    f.setItalic(font.Italic());
    f.setUnderline(font.Underline());
    f.setStrikeOut(font.StrikeOut());
    return f;
}

TFont FromQFont(const QFont &font, const TFont &base)
{
    TFont f = base;
    f.Name = font.family();
    // Setting the size again would round the height to whole points.
    if (font.pointSize() > 0 && font.pointSize() != base.Size())
        f.SetSize(font.pointSize());
    f.Style =
        TFontStyles((font.bold() ? fsBold : 0) | (font.italic() ? fsItalic : 0) |
                    (font.underline() ? fsUnderline : 0) | (font.strikeOut() ? fsStrikeOut : 0));
    return f;
}

TStringListDialog::TStringListDialog(const QStringList &lines, QWidget *parent)
    : QDialog(parent)
    , m_Opened(lines)
    , m_Edit(new QPlainTextEdit(this))
{
    setWindowTitle(tr("String List Editor"));
    m_Edit->setPlainText(lines.join(QLatin1Char('\n')));
    auto *count = new QLabel(this);
    auto recount = [this, count] {
        count->setText(tr("%n line(s)", nullptr, int(Lines().size())));
    };
    connect(m_Edit, &QPlainTextEdit::textChanged, this, recount);
    recount();
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(count);
    layout->addWidget(m_Edit);
    layout->addWidget(OkCancel(this));
}

QStringList TStringListDialog::Lines() const
{
    const QString text = m_Edit->toPlainText();
    if (text == m_Opened.join(QLatin1Char('\n')))
        return m_Opened;
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
}

TPictureDialog::TPictureDialog(const TBitmap &picture, QWidget *parent)
    : QDialog(parent)
    , m_Picture(picture)
    , m_Preview(new QLabel(this))
    , m_Message(new QLabel(this))
{
    setWindowTitle(tr("Picture Editor"));
    m_Preview->setMinimumSize(200, 150);
    m_Preview->setAlignment(Qt::AlignCenter);
    m_Preview->setFrameShape(QFrame::StyledPanel);
    auto *load = new QPushButton(tr("&Load..."), this);
    auto *clear = new QPushButton(tr("&Clear"), this);
    connect(load, &QPushButton::clicked, this, [this] {
        const QString file = QFileDialog::getOpenFileName(this, tr("Load Picture"));
        if (!file.isEmpty())
            LoadFile(file);
    });
    connect(clear, &QPushButton::clicked, this, &TPictureDialog::Clear);
    auto *side = new QVBoxLayout;
    side->addWidget(load);
    side->addWidget(clear);
    side->addStretch();
    auto *row = new QHBoxLayout;
    row->addWidget(m_Preview, 1);
    row->addLayout(side);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(m_Message);
    layout->addWidget(OkCancel(this));
    ShowPicture();
}

bool TPictureDialog::LoadFile(const QString &fileName)
{
    QImageReader reader(fileName);
    const QImage image = reader.read();
    if (image.isNull()) {
        m_Message->setText(tr("Cannot load %1: %2").arg(fileName, reader.errorString()));
        return false;
    }
    m_Picture = TBitmap(image);
    m_Message->clear();
    ShowPicture();
    return true;
}

void TPictureDialog::Clear()
{
    m_Picture.Clear();
    m_Message->clear();
    ShowPicture();
}

void TPictureDialog::ShowPicture()
{
    if (m_Picture.IsEmpty()) {
        m_Preview->setPixmap({});
        m_Preview->setText(tr("(none)"));
        return;
    }
    const QImage &image = m_Picture.Image();
    const QPixmap pixmap = QPixmap::fromImage(image);
    m_Preview->setPixmap(
        pixmap.width() > 200 || pixmap.height() > 150
            ? pixmap.scaled(200, 150, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : pixmap);
    m_Preview->setToolTip(tr("%1 × %2 pixels").arg(image.width()).arg(image.height()));
}

TSetDialog::TSetDialog(const std::vector<TSetBit> &bits, int value, QWidget *parent)
    : QDialog(parent)
    , m_Bits(bits)
{
    setWindowTitle(tr("Set Editor"));
    auto *layout = new QVBoxLayout(this);
    for (const TSetBit &bit : m_Bits) {
        auto *box = new QCheckBox(bit.Name, this);
        box->setChecked(value & bit.Bit);
        layout->addWidget(box);
        m_Boxes.push_back(box);
    }
    layout->addWidget(OkCancel(this));
}

int TSetDialog::Value() const
{
    int value = 0;
    for (std::size_t i = 0; i < m_Bits.size(); ++i)
        if (m_Boxes[i]->isChecked())
            value |= m_Bits[i].Bit;
    return value;
}

TColorButton::TColorButton(TColor color, QWidget *parent)
    : QWidget(parent)
    , m_Color(color)
    , m_Button(new QToolButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_Button);
    connect(m_Button, &QToolButton::clicked, this, [this] {
        const QColor chosen = QColorDialog::getColor(ToQColor(m_Color), this);
        if (chosen.isValid())
            SetColor(FromQColor(chosen));
    });
    SetColor(color);
}

void TColorButton::SetColor(TColor color)
{
    m_Color = color;
    QPixmap swatch(16, 16);
    swatch.fill(ToQColor(color));
    m_Button->setIcon(swatch);
    m_Button->setText(ToQColor(color).name());
    m_Button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

TPenDialog::TPenDialog(const TPen &pen, QWidget *parent)
    : QDialog(parent)
    , m_Pen(pen)
    , m_Color(new TColorButton(pen.Color, this))
    , m_Style(EnumBox(pen.Style, this))
    , m_Width(new QSpinBox(this))
    , m_Mode(EnumBox(pen.Mode, this))
{
    setWindowTitle(tr("Pen"));
    m_Width->setRange(0, 1000);
    m_Width->setValue(pen.Width);
    auto *form = new QFormLayout(this);
    form->addRow(tr("&Colour:"), m_Color);
    form->addRow(tr("&Style:"), m_Style);
    form->addRow(tr("&Width:"), m_Width);
    form->addRow(tr("&Mode:"), m_Mode);
    form->addRow(OkCancel(this));
}

TPen TPenDialog::Pen() const
{
    TPen pen = m_Pen;
    pen.Color = m_Color->Color();
    pen.Style = TPenStyle(m_Style->currentData().toInt());
    pen.Width = m_Width->value();
    pen.Mode = TPenMode(m_Mode->currentData().toInt());
    return pen;
}

TBrushDialog::TBrushDialog(const TBrush &brush, QWidget *parent)
    : QDialog(parent)
    , m_Brush(brush)
    , m_Color(new TColorButton(brush.Color, this))
    , m_Style(EnumBox(brush.Style, this))
{
    setWindowTitle(tr("Brush"));
    auto *form = new QFormLayout(this);
    form->addRow(tr("&Colour:"), m_Color);
    form->addRow(tr("&Style:"), m_Style);
    form->addRow(OkCancel(this));
}

TBrush TBrushDialog::Brush() const
{
    TBrush brush = m_Brush;
    brush.Color = m_Color->Color();
    brush.Style = TBrushStyle(m_Style->currentData().toInt());
    return brush;
}

bool HasValueDialog(TPropertyKind kind)
{
    switch (kind) {
    case TPropertyKind::Set:
    case TPropertyKind::Color:
    case TPropertyKind::Font:
    case TPropertyKind::Pen:
    case TPropertyKind::Brush:
    case TPropertyKind::StringList:
    case TPropertyKind::Picture:
    case TPropertyKind::UserData:
    case TPropertyKind::Menu:
        return true;
    default:
        return false;
    }
}

namespace {

template <typename Dialog, typename Result>
bool RunDialog(Dialog &dialog, QVariant &value, Result result)
{
    if (dialog.exec() != QDialog::Accepted)
        return false;
    value = result(dialog);
    return true;
}

bool RunColorDialog(QWidget *parent, const TPropertyType &type, QVariant &value)
{
    const bool qt = type.Type.id() == QMetaType::QColor;
    const QColor start = qt ? value.value<QColor>() : ToQColor(value.toUInt());
    const QColor chosen = QColorDialog::getColor(start, parent, type.Name);
    if (!chosen.isValid())
        return false;
    value = qt ? QVariant(chosen) : QVariant::fromValue(TColor(FromQColor(chosen)));
    return true;
}

bool RunFontDialog(QWidget *parent, const TPropertyType &type, QVariant &value)
{
    const bool qt = type.Type.id() == QMetaType::QFont;
    const TFont base = qt ? TFont() : value.value<TFont>();
    const QFont start = qt ? value.value<QFont>() : ToQFont(base);
    bool ok = false;
    const QFont chosen = QFontDialog::getFont(&ok, start, parent, type.Name);
    if (!ok)
        return false;
    if (qt) {
        value = chosen;
        return true;
    }
    TFont font = FromQFont(chosen, base);
    // A font that is not installed opens on its nearest family; leaving that as it is keeps
    // the name the drawing asked for.
    if (chosen.family() == QFontInfo(start).family())
        font.Name = base.Name;
    value = QVariant::fromValue(font);
    return true;
}

} // namespace

bool RunValueDialog(QWidget *parent, const TPropertyType &type, QVariant &value)
{
    switch (type.Kind) {
    case TPropertyKind::Color:
        return RunColorDialog(parent, type, value);
    case TPropertyKind::Font:
        return RunFontDialog(parent, type, value);
    case TPropertyKind::Set: {
        TSetDialog d(SetBitsOf(type), value.toInt(), parent);
        return RunDialog(d, value, [](TSetDialog &x) { return QVariant(x.Value()); });
    }
    case TPropertyKind::Pen: {
        TPenDialog d(value.value<TPen>(), parent);
        return RunDialog(d, value, [](TPenDialog &x) { return QVariant::fromValue(x.Pen()); });
    }
    case TPropertyKind::Brush: {
        TBrushDialog d(value.value<TBrush>(), parent);
        return RunDialog(d, value, [](TBrushDialog &x) { return QVariant::fromValue(x.Brush()); });
    }
    case TPropertyKind::StringList: {
        TStringListDialog d(value.toStringList(), parent);
        return RunDialog(d, value, [](TStringListDialog &x) { return QVariant(x.Lines()); });
    }
    case TPropertyKind::Picture: {
        TPictureDialog d(value.value<TBitmap>(), parent);
        return RunDialog(d, value,
                         [](TPictureDialog &x) { return QVariant::fromValue(x.Picture()); });
    }
    case TPropertyKind::Menu: {
        // The menu is edited in place; the property keeps pointing at it.
        if (auto *menu = qobject_cast<QMenu *>(value.value<QObject *>())) {
            TMenuEditorDialog d(menu, parent);
            d.exec();
        }
        return false;
    }
    case TPropertyKind::UserData: {
        TUserData data = value.value<TUserData>();
        if (!EditUserData(parent, data))
            return false;
        value = QVariant::fromValue(data);
        return true;
    }
    default:
        return false;
    }
}

} // namespace tessal
