// SPDX-License-Identifier: MIT
// Reading and writing the properties of widgets and shapes by name.
#include <tessal/inspector/propertytarget.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace tessal {

int OwnPropertyOffset(const QMetaObject *mo)
{
    int offset = mo->propertyOffset();
    for (const QMetaObject *m = mo; m; m = m->superClass())
        if (QByteArray(m->className()).startsWith("tessal::"))
            offset = m->propertyOffset();
    return offset;
}

std::vector<QMetaProperty> TPropertyTarget::Properties(bool inherited) const
{
    std::vector<QMetaProperty> list;
    const QMetaObject *mo = MetaObject();
    if (!mo)
        return list;
    for (int i = inherited ? 0 : OwnPropertyOffset(mo); i < mo->propertyCount(); ++i)
        list.push_back(mo->property(i));
    return list;
}

TObjectTarget::TObjectTarget(QObject *object)
    : m_Object(object)
{}

const QMetaObject *TObjectTarget::MetaObject() const
{
    return m_Object ? m_Object->metaObject() : nullptr;
}

QVariant TObjectTarget::Read(int, const char *name) const
{
    return m_Object ? m_Object->property(name) : QVariant();
}

bool TObjectTarget::Write(int, const char *name, const QVariant &value)
{
    return m_Object && m_Object->setProperty(name, value);
}

QString TObjectTarget::ItemClassName(int) const
{
    return m_Object ? QString::fromLatin1(m_Object->metaObject()->className()) : QString();
}

TShapesTarget::TShapesTarget(TMyCAD *surface, std::vector<TMyShape *> shapes)
    : m_Surface(surface)
    , m_Shapes(std::move(shapes))
{
    // Taken while the shapes surely exist; later checks compare addresses at these places.
    m_Places.reserve(m_Shapes.size());
    for (const TMyShape *shape : m_Shapes)
        m_Places.push_back(surface ? surface->GetShapeNoInMyShapes(shape) : -1);
}

const QMetaObject *TShapesTarget::MetaObject() const
{
    return m_Shapes.empty() || !IsValid() ? nullptr : m_Shapes.front()->MetaObject();
}

// Shapes of one class share a meta-object, so each property is looked up once a class.
std::vector<QMetaProperty> TShapesTarget::Properties(bool inherited) const
{
    std::vector<const QMetaObject *> classes;
    for (const TMyShape *shape : m_Shapes)
        if (std::find(classes.begin(), classes.end(), shape->MetaObject()) == classes.end())
            classes.push_back(shape->MetaObject());
    std::vector<QMetaProperty> list;
    for (const QMetaProperty &p : TPropertyTarget::Properties(inherited)) {
        bool shared = true;
        for (const QMetaObject *mo : classes) {
            const int i = mo->indexOfProperty(p.name());
            shared = shared && i >= 0 && mo->property(i).metaType() == p.metaType();
        }
        if (shared)
            list.push_back(p);
    }
    return list;
}

bool TShapesTarget::IsValid() const
{
    if (!m_Surface)
        return false;
    // A shape may be gone and its memory freed, so only addresses are compared: at the
    // place each shape had, and where shapes moved, through one pass over the list.
    std::unordered_map<const TMyShape *, std::int32_t> listed;
    for (std::size_t i = 0; i < m_Shapes.size(); ++i) {
        if (m_Surface->GetShapeByNo(m_Places[i]) == m_Shapes[i])
            continue;
        if (listed.empty())
            for (std::int32_t no = 0; no < m_Surface->GetShapesCount(); ++no)
                listed.emplace(m_Surface->GetShapeByNo(no), no);
        const auto at = listed.find(m_Shapes[i]);
        if (at == listed.end())
            return false;
        m_Places[i] = at->second;
    }
    return true;
}

// A value is read from every item in turn, mostly of one class: the property's place is
// looked up again only when the class or the name changes.
QVariant TShapesTarget::Read(int item, const char *name) const
{
    const TMyShape *shape = m_Shapes[std::size_t(item)];
    const QMetaObject *mo = shape->MetaObject();
    if (mo != m_ReadClass || std::strcmp(name, m_ReadName.constData()) != 0) {
        m_ReadClass = mo;
        m_ReadName = name;
        m_ReadIndex = mo->indexOfProperty(name);
    }
    return m_ReadIndex < 0 ? QVariant() : mo->property(m_ReadIndex).readOnGadget(shape);
}

bool TShapesTarget::Write(int item, const char *name, const QVariant &value)
{
    TMyShape *shape = m_Shapes[std::size_t(item)];
    const QMetaObject *mo = shape->MetaObject();
    const int i = mo->indexOfProperty(name);
    return i >= 0 && mo->property(i).writeOnGadget(shape, value);
}

void TShapesTarget::BeginEdit()
{
    m_Surface->PushtoUndoRedoShapeList(m_Shapes, std::int32_t(m_Shapes.size()) - 1, ACT_CHANGE);
}

void TShapesTarget::EndEdit()
{
    m_Surface->DocumentChanged();
}

QString TShapesTarget::ItemClassName(int item) const
{
    return m_Shapes[std::size_t(item)]->ClassName();
}

} // namespace tessal
