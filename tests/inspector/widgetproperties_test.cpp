// SPDX-License-Identifier: MIT
// Every published property of every widget: read, write a different value, read it back,
// and see the change signal fire once where the property has one.
#include <tessal/inspector/componentinspector.h>
#include <tessal/inspector/inspectorgrid.h>
#include <tessal/ruler/ruler.h>
#include <tessal/ruler/rulercorner.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QLabel>
#include <QMetaProperty>
#include <QSignalSpy>

#include <memory>

using namespace tessal;

namespace {

// A value of type different from value, or invalid when the walk has no rule for the
// type. Objects made here are parented to owner.
QVariant Changed(const QMetaProperty &p, const QVariant &value, QObject *owner);

QVariant ChangedGadget(const QVariant &value, QObject *owner)
{
    const QMetaObject *mo = value.metaType().metaObject();
    QVariant copy = value;
    for (int i = 0; i < mo->propertyCount(); ++i) {
        const QMetaProperty member = mo->property(i);
        const QVariant changed = Changed(member, member.readOnGadget(value.constData()), owner);
        if (changed.isValid() && member.writeOnGadget(copy.data(), changed))
            return copy;
    }
    return {};
}

QVariant Changed(const QMetaProperty &p, const QVariant &value, QObject *owner)
{
    const QMetaType type = p.metaType();
    if (p.isEnumType()) {
        const QMetaEnum e = p.enumerator();
        const int now = value.toInt();
        for (int i = 0; i < e.keyCount(); ++i)
            if (e.value(i) != now) {
                QVariant v(e.value(i));
                return v.convert(type) ? v : QVariant();
            }
        return {};
    }
    switch (type.id()) {
    case QMetaType::Bool:
        return !value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::UChar:
    case QMetaType::Short: {
        QVariant v(value.toLongLong() + 1);
        return v.convert(type) ? v : QVariant();
    }
    case QMetaType::Double:
        return value.toDouble() + 0.5;
    case QMetaType::Float:
        return QVariant::fromValue(value.toFloat() + 0.5f);
    case QMetaType::QString:
        return value.toString() + QStringLiteral("x");
    case QMetaType::QStringList:
        return value.toStringList() << QStringLiteral("x");
    case QMetaType::QColor:
        return QColor(value.value<QColor>().rgb() ^ 0x00FFFFFF);
    default:
        break;
    }
    if (type == QMetaType::fromType<TBitmap>())
        return QVariant::fromValue(TBitmap(2, 2));
    if (type == QMetaType::fromType<TUserData>()) {
        TUserData data = value.value<TUserData>();
        data.AddKeyandValue(QStringLiteral("k"), QStringLiteral("v"));
        return QVariant::fromValue(data);
    }
    if (type.flags() & QMetaType::IsGadget)
        return ChangedGadget(value, owner);
    if (type == QMetaType::fromType<QLabel *>())
        return QVariant::fromValue(new QLabel(static_cast<QWidget *>(nullptr)));
    if (type == QMetaType::fromType<TMyCAD *>())
        return QVariant::fromValue(new TMyCAD);
    if (type == QMetaType::fromType<TGridObject *>()) {
        auto *grid = new TGridObject(owner);
        grid->SetGridWidth(value.value<TGridObject *>()->GridWidth() + 1);
        return QVariant::fromValue(grid);
    }
    return {};
}

// Whether read back matches written: objects that a setter copies compare by their
// properties.
bool Same(const QVariant &written, const QVariant &read)
{
    if (written.metaType() == QMetaType::fromType<TGridObject *>()) {
        const auto *a = written.value<TGridObject *>();
        const auto *b = read.value<TGridObject *>();
        return a && b && a->GridWidth() == b->GridWidth();
    }
    return written == read;
}

// Handlers are walked with calls in the surface's own property test; here they are only
// read.
bool IsHandler(const QMetaProperty &p)
{
    return QByteArray(p.name()).startsWith("On") && p.metaType().id() >= QMetaType::User &&
           !(p.metaType().flags() & (QMetaType::IsGadget | QMetaType::PointerToQObject));
}

void Walk(QObject *object)
{
    const QMetaObject *mo = object->metaObject();
    int own = mo->propertyOffset();
    for (const QMetaObject *m = mo; m; m = m->superClass())
        if (QByteArray(m->className()).startsWith("tessal::"))
            own = m->propertyOffset();
    ASSERT_LT(own, mo->propertyCount()) << mo->className();
    QObject owner;
    std::vector<std::unique_ptr<QObject>> made;
    for (int i = own; i < mo->propertyCount(); ++i) {
        const QMetaProperty p = mo->property(i);
        SCOPED_TRACE(std::string(mo->className()) + "::" + p.name());
        const QVariant before = p.read(object);
        ASSERT_TRUE(before.isValid());
        if (!p.isWritable() || IsHandler(p))
            continue;
        const QVariant value = Changed(p, before, &owner);
        ASSERT_TRUE(value.isValid()) << "no rule for " << p.metaType().name();
        EXPECT_FALSE(Same(value, before));
        if (value.metaType().flags() & QMetaType::PointerToQObject) {
            QObject *o = value.value<QObject *>();
            if (!o->parent())
                made.emplace_back(o);
        }
        std::unique_ptr<QSignalSpy> spy;
        if (p.hasNotifySignal())
            spy = std::make_unique<QSignalSpy>(object, p.notifySignal());
        ASSERT_TRUE(p.write(object, value));
        EXPECT_TRUE(Same(value, p.read(object)));
        if (spy) {
            EXPECT_EQ(spy->count(), 1);
            // Writing the same value again is silent.
            p.write(object, value);
            EXPECT_EQ(spy->count(), 1);
        }
    }
    // Labels and surfaces given to the object must outlive it; drop the links first.
    for (int i = own; i < mo->propertyCount(); ++i) {
        const QMetaProperty p = mo->property(i);
        if (p.isWritable() && (p.metaType() == QMetaType::fromType<QLabel *>() ||
                               p.metaType() == QMetaType::fromType<TMyCAD *>()))
            p.write(object, QVariant(p.metaType()));
    }
}

} // namespace

TEST(WidgetProperties, EveryPublishedPropertyReadsBackWhatWasWritten)
{
    TMyCAD cad;
    TMyRuler horizontal(Qt::Horizontal), vertical(Qt::Vertical);
    TMyRulerCorner corner;
    TInspectorGrid grid;
    TComponentInspector inspector;
    for (QObject *object :
         std::initializer_list<QObject *>{&cad, &horizontal, &vertical, &corner, &grid, &inspector})
        Walk(object);
}

TEST(WidgetProperties, RulersRefuseValuesTheyCannotShow)
{
    TMyRuler ruler;
    QSignalSpy zoom(&ruler, &TMyRuler::ZoomChanged);
    QSignalSpy ratio(&ruler, &TMyRuler::RatioChanged);
    for (double bad : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
        ruler.SetZoom(bad);
        ruler.SetRatio(bad);
    }
    EXPECT_EQ(std::pair(ruler.Zoom(), ruler.Ratio()), std::pair(1.0, 1.0));
    EXPECT_EQ(ratio.count(), 0);
    ruler.SetPixelsPerInch(0);
    EXPECT_EQ(ruler.PixelsPerInch(), 96);
    EXPECT_EQ(zoom.count(), 0);
}
