// SPDX-License-Identifier: MIT
// TPropertyModel: the properties of a TPropertyTarget as a two-column item model.
#pragma once

#include <tessal/inspector/propertykind.h>
#include <tessal/inspector/propertytarget.h>

#include <QAbstractItemModel>
#include <QStringList>

#include <memory>
#include <vector>

namespace tessal {

// Rows are properties (column 0 the name, column 1 the value), optionally under group rows
// named after the class that declares them ("Events" for handlers). Pens, brushes, fonts
// and the grid settings have their members as child rows. With several items a value
// that differs between them shows blank and has no edit value; writing sets it on all.
//
// Writes go through setData: the input is converted to the property's type first, and
// input that does not convert (unparsable text, out of range) is refused with a message
// (EditRefused) and changes nothing. A value equal on every item is not written at all.
// After a write the value is read back from every item; an owner that kept another value
// (a setter that ignores what it cannot use) is reported with EditRefused too.
class TPropertyModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum TColumn { NameColumn, ValueColumn };
    enum TRole {
        KindRole = Qt::UserRole + 1, // TPropertyKind as int
        MixedRole,                   // bool: the items differ
        PathRole,                    // QStringList: property names from the item down
        FirstValueRole               // the first item's value, mixed or not
    };

    explicit TPropertyModel(QObject *parent = nullptr);
    ~TPropertyModel() override;

    void SetTarget(std::unique_ptr<TPropertyTarget> target);
    TPropertyTarget *Target() const { return m_Target.get(); }
    bool Grouped() const { return m_Grouped; }
    void SetGrouped(bool value);
    bool ShowInherited() const { return m_ShowInherited; }
    void SetShowInherited(bool value);
    // Values may have changed elsewhere: every value cell is announced as changed.
    void Refresh();

    // The property type of a row (nullptr for group rows), its value and whether it is
    // mixed. Leading rows of index are resolved to the value column.
    const TPropertyType *TypeAt(const QModelIndex &index) const;
    QVariant ValueAt(const QModelIndex &index, bool *mixed = nullptr) const;
    bool IsWritable(const QModelIndex &index) const;
    // The value row of a property path such as {"Pen", "Width"}; invalid when not shown.
    QModelIndex IndexOf(const QStringList &path, int column = ValueColumn) const;
    QString LastError() const { return m_LastError; }
    // Writes to every item only the members of a pen, brush or font value that differ
    // between before and after, each item keeping its other members: a dialog opened on a
    // mixed value starts from the first item's and changes just what the user touched. One
    // edit (one undo step) for all items; nothing is written when no member differs. Values
    // without members are written whole, as setData does.
    bool SetChangedMembers(const QModelIndex &index, const QVariant &before, const QVariant &after);

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

signals:
    void EditRefused(const QString &message);
    void EditApplied(const QStringList &path);

private:
    struct TNode;
    void Rebuild();
    void AddChildren(TNode *node, const QMetaObject *mo, int first);
    TNode *NodeOf(const QModelIndex &index) const;
    QVariant ReadPath(int item, const QStringList &path) const;
    bool WritePath(int item, const QStringList &path, const QVariant &value);
    // The message for the first item whose value at path (of type) is not asked, or empty.
    QString NotTaken(const QStringList &path, const TPropertyType &type,
                     const QVariant &asked) const;
    // Ends a write of node: reports a failed write or a value not taken, refreshes.
    bool FinishWrite(const TNode *node, bool written, const QString &notTaken);
    bool IsLive() const;

    std::unique_ptr<TPropertyTarget> m_Target;
    std::unique_ptr<TNode> m_Root;
    bool m_Grouped = true;
    bool m_ShowInherited = false;
    QString m_LastError;
};

} // namespace tessal
