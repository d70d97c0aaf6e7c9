// SPDX-License-Identifier: MIT
// Designer's task-menu entry that edits a surface's user data.
#pragma once

#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QExtensionFactory>

#include <QPointer>

class QAction;

namespace tessal {

class TMyCAD;

// "Edit User Data..." in the context menu of a surface on a form. The key/value editor
// changes the surface's user data through its UserDataTexts property, which form files
// store (a TUserData cannot be written into one).
class TUserDataTaskMenu : public QObject, public QDesignerTaskMenuExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)
public:
    TUserDataTaskMenu(TMyCAD *surface, QObject *parent);
    QAction *preferredEditAction() const override { return m_Edit; }
    QList<QAction *> taskActions() const override { return {m_Edit}; }
    // What the action does.
    void EditUserData();

private:
    QPointer<TMyCAD> m_Surface;
    QAction *m_Edit;
};

class TUserDataTaskMenuFactory : public QExtensionFactory
{
    Q_OBJECT
public:
    explicit TUserDataTaskMenuFactory(QExtensionManager *parent = nullptr);

protected:
    QObject *createExtension(QObject *object, const QString &iid, QObject *parent) const override;
};

} // namespace tessal
