// SPDX-License-Identifier: MIT
// What an inspector edits: one QObject (a widget) or the shapes of a surface.
#pragma once

#include <tessal/surface/cad.h>

#include <QMetaProperty>
#include <QPointer>
#include <QVariant>

#include <vector>

namespace tessal {

class TMyShape;

// The first property index of mo declared by a class of this library: QObject's and
// QWidget's properties come before it.
int OwnPropertyOffset(const QMetaObject *mo);

// The items whose properties the inspector shows together. Values are read and written by
// property name on each item; an edit of all items is bracketed by BeginEdit and EndEdit.
class TPropertyTarget
{
public:
    virtual ~TPropertyTarget() = default;

    // The properties shown: those of the first item that every item has (same name and
    // type), in declaration order. Without inherited, only those declared by the
    // component's own classes (not QObject's or QWidget's).
    virtual std::vector<QMetaProperty> Properties(bool inherited) const;
    virtual const QMetaObject *MetaObject() const = 0;
    virtual int Count() const = 0;
    // False once an item is gone; the inspector then shows nothing.
    virtual bool IsValid() const = 0;
    virtual QVariant Read(int item, const char *name) const = 0;
    virtual bool Write(int item, const char *name, const QVariant &value) = 0;
    virtual void BeginEdit() {}
    virtual void EndEdit() {}
    // The class of item as a user knows it, for titles.
    virtual QString ItemClassName(int item) const = 0;
};

// A QObject's own properties.
class TObjectTarget : public TPropertyTarget
{
public:
    explicit TObjectTarget(QObject *object);

    const QMetaObject *MetaObject() const override;
    int Count() const override { return 1; }
    bool IsValid() const override { return !m_Object.isNull(); }
    QVariant Read(int item, const char *name) const override;
    bool Write(int item, const char *name, const QVariant &value) override;
    QString ItemClassName(int item) const override;
    QObject *Object() const { return m_Object; }

private:
    QPointer<QObject> m_Object;
};

// Shapes of one surface (top-level or group members). Every edit is one "ACT_CHANGE" undo
// step for all of them, and the surface repaints after it.
class TShapesTarget : public TPropertyTarget
{
public:
    TShapesTarget(TMyCAD *surface, std::vector<TMyShape *> shapes);

    std::vector<QMetaProperty> Properties(bool inherited) const override;
    const QMetaObject *MetaObject() const override;
    int Count() const override { return int(m_Shapes.size()); }
    bool IsValid() const override;
    QVariant Read(int item, const char *name) const override;
    bool Write(int item, const char *name, const QVariant &value) override;
    void BeginEdit() override;
    void EndEdit() override;
    QString ItemClassName(int item) const override;

    TMyCAD *Surface() const { return m_Surface; }
    const std::vector<TMyShape *> &Shapes() const { return m_Shapes; }

private:
    QPointer<TMyCAD> m_Surface;
    std::vector<TMyShape *> m_Shapes;
    mutable std::vector<std::int32_t> m_Places; // where each shape was last seen
    mutable const QMetaObject *m_ReadClass = nullptr;
    mutable QByteArray m_ReadName;
    mutable int m_ReadIndex = -1;
};

} // namespace tessal
