// SPDX-License-Identifier: MIT
// The property tree, its values across several items, and checked writes.
#include <tessal/inspector/propertymodel.h>
#include <tessal/platform/color.h>

#include <QColor>
#include <QFont>
#include <QPixmap>

#include <algorithm>
#include <cmath>
#include <map>

namespace tessal {

struct TPropertyModel::TNode
{
    TPropertyType Type;
    QStringList Path;
    QString Group; // non-empty for group rows
    bool Writable = false;
    TNode *Parent = nullptr;
    int Row = 0;
    std::vector<std::unique_ptr<TNode>> Children;
    // The value as last read from every item, until the next Refresh: a view asks for a
    // cell several times a paint, and each answer reads all items.
    mutable bool Known = false;
    mutable bool Mixed = false;
    mutable QVariant Value;

    TNode *Add(std::unique_ptr<TNode> child)
    {
        child->Parent = this;
        child->Row = int(Children.size());
        Children.push_back(std::move(child));
        return Children.back().get();
    }
};

namespace {

// The class that declares property index i of mo, without its namespace.
QString DeclaringClass(const QMetaObject *mo, int i)
{
    while (mo->superClass() && i < mo->propertyOffset())
        mo = mo->superClass();
    QString name = QString::fromLatin1(mo->className());
    return name.mid(name.lastIndexOf(QLatin1Char(':')) + 1);
}

// The meta-object whose properties are the members of a value: a gadget's, or a QObject's
// own class for a pointer to one.
const QMetaObject *MembersOf(const QVariant &value, const QMetaType &type)
{
    if (type.flags() & QMetaType::PointerToQObject) {
        const QObject *object = value.value<QObject *>();
        return object ? object->metaObject() : nullptr;
    }
    if (type.flags() & QMetaType::IsGadget)
        return type.metaObject();
    return nullptr;
}

// Whether a value read back after a write is the value asked for. Reals may come back
// rounded by the owner's own type or arithmetic, so they compare to a few units of the
// precision of theirs.
bool SameValue(const TPropertyType &type, const QVariant &asked, const QVariant &read)
{
    if (type.Kind != TPropertyKind::Real)
        return asked == read;
    const double a = asked.toDouble();
    const double b = read.toDouble();
    const double precision = type.Type.id() == QMetaType::Float ? 1e-6 : 1e-12;
    return a == b || std::abs(a - b) <= precision * std::max(std::abs(a), std::abs(b));
}

} // namespace

TPropertyModel::TPropertyModel(QObject *parent)
    : QAbstractItemModel(parent)
    , m_Root(std::make_unique<TNode>())
{}

TPropertyModel::~TPropertyModel() = default;

void TPropertyModel::SetTarget(std::unique_ptr<TPropertyTarget> target)
{
    m_Target = std::move(target);
    m_LastError.clear();
    Rebuild();
}

void TPropertyModel::SetGrouped(bool value)
{
    if (value == m_Grouped)
        return;
    m_Grouped = value;
    Rebuild();
}

void TPropertyModel::SetShowInherited(bool value)
{
    if (value == m_ShowInherited)
        return;
    m_ShowInherited = value;
    Rebuild();
}

bool TPropertyModel::IsLive() const
{
    return m_Target && m_Target->Count() > 0 && m_Target->IsValid();
}

void TPropertyModel::Rebuild()
{
    beginResetModel();
    m_Root = std::make_unique<TNode>();
    if (IsLive()) {
        std::map<QString, TNode *> groups;
        const QMetaObject *mo = m_Target->MetaObject();
        for (const QMetaProperty &p : m_Target->Properties(m_ShowInherited)) {
            auto node = std::make_unique<TNode>();
            const QString name = QString::fromLatin1(p.name());
            node->Type = {p.metaType(), name,
                          KindOf(p.metaType(), name, mo->className(), p.isEnumType()),
                          p.isEnumType() ? p.enumerator() : QMetaEnum(), mo->className()};
            node->Path = {name};
            node->Writable = p.isWritable();
            TNode *parent = m_Root.get();
            if (m_Grouped) {
                const QString group = node->Type.Kind == TPropertyKind::Event
                                          ? tr("Events")
                                          : DeclaringClass(mo, p.propertyIndex());
                TNode *&g = groups[group];
                if (!g) {
                    auto header = std::make_unique<TNode>();
                    header->Group = group;
                    g = m_Root->Add(std::move(header));
                }
                parent = g;
            }
            TNode *added = parent->Add(std::move(node));
            if (added->Type.Kind == TPropertyKind::Menu)
                continue;
            if (const QMetaObject *members = MembersOf(ReadPath(0, added->Path), added->Type.Type))
                AddChildren(added, members, 0);
        }
    }
    endResetModel();
}

void TPropertyModel::AddChildren(TNode *node, const QMetaObject *mo, int first)
{
    const bool object = node->Type.Type.flags() & QMetaType::PointerToQObject;
    if (object)
        first = OwnPropertyOffset(mo);
    for (int i = first; i < mo->propertyCount(); ++i) {
        const QMetaProperty p = mo->property(i);
        auto child = std::make_unique<TNode>();
        const QString name = QString::fromLatin1(p.name());
        child->Type = {p.metaType(), name,
                       KindOf(p.metaType(), name, mo->className(), p.isEnumType()),
                       p.isEnumType() ? p.enumerator() : QMetaEnum(), mo->className()};
        child->Path = node->Path + QStringList{name};
        // A gadget member is written by writing the whole value back; an object's
        // property directly.
        child->Writable = p.isWritable() && (object || node->Writable);
        node->Add(std::move(child));
    }
}

QVariant TPropertyModel::ReadPath(int item, const QStringList &path) const
{
    QVariant v = m_Target->Read(item, path.front().toLatin1().constData());
    for (qsizetype k = 1; k < path.size(); ++k) {
        const QByteArray name = path[k].toLatin1();
        if (v.metaType().flags() & QMetaType::PointerToQObject) {
            const QObject *object = v.value<QObject *>();
            v = object ? object->property(name.constData()) : QVariant();
        } else if (const QMetaObject *mo = v.metaType().metaObject()) {
            const int i = mo->indexOfProperty(name.constData());
            v = i < 0 ? QVariant() : mo->property(i).readOnGadget(v.constData());
        } else {
            return {};
        }
    }
    return v;
}

bool TPropertyModel::WritePath(int item, const QStringList &path, const QVariant &value)
{
    const QByteArray top = path.front().toLatin1();
    if (path.size() == 1)
        return m_Target->Write(item, top.constData(), value);
    QVariant whole = m_Target->Read(item, top.constData());
    const QByteArray member = path[1].toLatin1();
    if (whole.metaType().flags() & QMetaType::PointerToQObject) {
        QObject *object = whole.value<QObject *>();
        return object && object->setProperty(member.constData(), value);
    }
    const QMetaObject *mo = whole.metaType().metaObject();
    const int i = mo ? mo->indexOfProperty(member.constData()) : -1;
    if (i < 0 || !mo->property(i).writeOnGadget(whole.data(), value))
        return false;
    return m_Target->Write(item, top.constData(), whole);
}

TPropertyModel::TNode *TPropertyModel::NodeOf(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<TNode *>(index.internalPointer()) : m_Root.get();
}

const TPropertyType *TPropertyModel::TypeAt(const QModelIndex &index) const
{
    const TNode *node = NodeOf(index);
    return !index.isValid() || !node->Group.isEmpty() ? nullptr : &node->Type;
}

QVariant TPropertyModel::ValueAt(const QModelIndex &index, bool *mixed) const
{
    if (mixed)
        *mixed = false;
    const TNode *node = NodeOf(index);
    if (!index.isValid() || !node->Group.isEmpty())
        return {};
    if (!node->Known) {
        node->Known = true;
        node->Mixed = false;
        node->Value = QVariant();
        if (!IsLive())
            return {};
        node->Value = ReadPath(0, node->Path);
        // Handlers cannot be compared; they are never edited here anyway.
        for (int i = 1; i < m_Target->Count() && node->Type.Kind != TPropertyKind::Event; ++i) {
            if (ReadPath(i, node->Path) != node->Value) {
                node->Mixed = true;
                node->Value = QVariant();
                break;
            }
        }
    }
    if (mixed)
        *mixed = node->Mixed;
    return node->Value;
}

bool TPropertyModel::IsWritable(const QModelIndex &index) const
{
    const TNode *node = NodeOf(index);
    if (!index.isValid() || !node->Group.isEmpty())
        return false;
    // A menu is edited in place, whether or not the property can be assigned.
    if (node->Type.Kind == TPropertyKind::Menu)
        return true;
    if (!node->Writable)
        return false;
    switch (node->Type.Kind) {
    case TPropertyKind::Event:
    case TPropertyKind::Object:
    case TPropertyKind::Other:
        return false;
    default:
        return true;
    }
}

QModelIndex TPropertyModel::IndexOf(const QStringList &path, int column) const
{
    // Depth-first over the (small) tree.
    std::vector<std::pair<const TNode *, QModelIndex>> stack{{m_Root.get(), QModelIndex()}};
    while (!stack.empty()) {
        const auto [node, at] = stack.back();
        stack.pop_back();
        for (const auto &child : node->Children) {
            const QModelIndex i = index(child->Row, 0, at);
            if (child->Group.isEmpty() && child->Path == path)
                return index(child->Row, column, at);
            stack.push_back({child.get(), i});
        }
    }
    return {};
}

QModelIndex TPropertyModel::index(int row, int column, const QModelIndex &parent) const
{
    const TNode *node = NodeOf(parent);
    if (row < 0 || column < 0 || column > 1 || row >= int(node->Children.size()))
        return {};
    return createIndex(row, column, node->Children[std::size_t(row)].get());
}

QModelIndex TPropertyModel::parent(const QModelIndex &child) const
{
    const TNode *node = NodeOf(child);
    if (!child.isValid() || node->Parent == m_Root.get())
        return {};
    return createIndex(node->Parent->Row, 0, node->Parent);
}

int TPropertyModel::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    return int(NodeOf(parent)->Children.size());
}

int TPropertyModel::columnCount(const QModelIndex &) const
{
    return 2;
}

QVariant TPropertyModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == NameColumn ? tr("Property") : tr("Value");
}

Qt::ItemFlags TPropertyModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == ValueColumn && IsWritable(index))
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant TPropertyModel::data(const QModelIndex &index, int role) const
{
    const TNode *node = NodeOf(index);
    if (!index.isValid())
        return {};
    if (!node->Group.isEmpty()) {
        if (role == Qt::DisplayRole && index.column() == NameColumn)
            return node->Group;
        if (role == Qt::FontRole) {
            QFont f;
            f.setBold(true);
            return f;
        }
        return {};
    }
    if (index.column() == NameColumn) {
        if (role == Qt::DisplayRole || role == Qt::EditRole)
            return node->Type.Name;
        if (role == Qt::ToolTipRole)
            return QString::fromLatin1(node->Type.Type.name());
        return {};
    }
    bool mixed = false;
    switch (role) {
    case Qt::DisplayRole: {
        const QVariant v = ValueAt(index, &mixed);
        return mixed || !v.isValid() ? QString() : DisplayText(node->Type, v);
    }
    case Qt::EditRole:
        return ValueAt(index);
    case Qt::DecorationRole: {
        const QVariant v = ValueAt(index, &mixed);
        if (node->Type.Kind != TPropertyKind::Color || mixed || !v.isValid())
            return {};
        QPixmap swatch(12, 12);
        swatch.fill(v.metaType().id() == QMetaType::QColor ? v.value<QColor>()
                                                           : ToQColor(v.toUInt()));
        return swatch;
    }
    case Qt::ForegroundRole:
        return IsWritable(index) ? QVariant() : QVariant(QColor(Qt::gray));
    case KindRole:
        return int(node->Type.Kind);
    case MixedRole:
        ValueAt(index, &mixed);
        return mixed;
    case PathRole:
        return node->Path;
    case FirstValueRole:
        return IsLive() ? ReadPath(0, node->Path) : QVariant();
    default:
        return {};
    }
}

bool TPropertyModel::setData(const QModelIndex &index, const QVariant &input, int role)
{
    if (role != Qt::EditRole || index.column() != ValueColumn || !IsWritable(index) || !IsLive())
        return false;
    const TNode *node = NodeOf(index);
    QVariant value;
    QString error;
    if (!ConvertInput(node->Type, input, value, error)) {
        m_LastError = error;
        emit EditRefused(error);
        return false;
    }
    bool same = true;
    for (int i = 0; i < m_Target->Count() && same; ++i)
        same = ReadPath(i, node->Path) == value;
    m_LastError.clear();
    if (same)
        return true;
    m_Target->BeginEdit();
    bool written = true;
    for (int i = 0; i < m_Target->Count(); ++i)
        written = WritePath(i, node->Path, value) && written;
    m_Target->EndEdit();
    return FinishWrite(node, written, NotTaken(node->Path, node->Type, value));
}

bool TPropertyModel::SetChangedMembers(const QModelIndex &index, const QVariant &before,
                                       const QVariant &after)
{
    if (index.column() != ValueColumn || !IsWritable(index) || !IsLive())
        return false;
    const TNode *node = NodeOf(index);
    const QMetaType type = node->Type.Type;
    if (!(type.flags() & QMetaType::IsGadget) || before.metaType() != type ||
        after.metaType() != type)
        return setData(index, after);
    // The member rows are the gadget's properties, in its order.
    const QMetaObject *mo = type.metaObject();
    std::vector<std::pair<const TNode *, QMetaProperty>> changed;
    for (const auto &member : node->Children) {
        const QMetaProperty p =
            mo->property(mo->indexOfProperty(member->Type.Name.toLatin1().constData()));
        if (p.readOnGadget(before.constData()) != p.readOnGadget(after.constData()))
            changed.emplace_back(member.get(), p);
    }
    m_LastError.clear();
    if (changed.empty())
        return true;
    m_Target->BeginEdit();
    bool written = true;
    for (int i = 0; i < m_Target->Count(); ++i) {
        QVariant whole = ReadPath(i, node->Path);
        for (const auto &[member, p] : changed)
            written = p.writeOnGadget(whole.data(), p.readOnGadget(after.constData())) && written;
        written = WritePath(i, node->Path, whole) && written;
    }
    m_Target->EndEdit();
    QString notTaken;
    for (auto it = changed.begin(); it != changed.end() && notTaken.isEmpty(); ++it)
        notTaken =
            NotTaken(it->first->Path, it->first->Type, it->second.readOnGadget(after.constData()));
    return FinishWrite(node, written, notTaken);
}

QString TPropertyModel::NotTaken(const QStringList &path, const TPropertyType &type,
                                 const QVariant &asked) const
{
    for (int i = 0; i < m_Target->Count(); ++i) {
        const QVariant now = ReadPath(i, path);
        if (!SameValue(type, asked, now))
            return tr("%1 did not take the value %2; it is %3.")
                .arg(type.Name, DisplayText(type, asked), DisplayText(type, now));
    }
    return {};
}

bool TPropertyModel::FinishWrite(const TNode *node, bool written, const QString &notTaken)
{
    m_LastError = !written ? tr("%1 did not take the value.").arg(node->Type.Name) : notTaken;
    if (!m_LastError.isEmpty())
        emit EditRefused(m_LastError);
    Refresh();
    emit EditApplied(node->Path);
    return m_LastError.isEmpty();
}

void TPropertyModel::Refresh()
{
    // Values can depend on each other (a page style sets the page size), so every value
    // cell is announced.
    std::vector<QModelIndex> stack{QModelIndex()};
    while (!stack.empty()) {
        const QModelIndex at = stack.back();
        stack.pop_back();
        for (const auto &child : NodeOf(at)->Children)
            child->Known = false;
        const int rows = rowCount(at);
        if (rows == 0)
            continue;
        emit dataChanged(index(0, ValueColumn, at), index(rows - 1, ValueColumn, at));
        for (int r = 0; r < rows; ++r)
            stack.push_back(index(r, 0, at));
    }
}

} // namespace tessal
