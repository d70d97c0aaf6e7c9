// SPDX-License-Identifier: MIT
// The user-data task menu of the surface in Designer.
#include "userdatataskmenu.h"

#include <tessal/shapes/userdatadialogs.h>
#include <tessal/surface/cad.h>

#include <QtDesigner/QDesignerFormWindowCursorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>

#include <QAction>

namespace tessal {

TUserDataTaskMenu::TUserDataTaskMenu(TMyCAD *surface, QObject *parent)
    : QObject(parent)
    , m_Surface(surface)
    , m_Edit(new QAction(tr("Edit User Data..."), this))
{
    connect(m_Edit, &QAction::triggered, this, &TUserDataTaskMenu::EditUserData);
}

void TUserDataTaskMenu::EditUserData()
{
    if (!m_Surface)
        return;
    TUserData data = m_Surface->UserData();
    if (!tessal::EditUserData(m_Surface->window(), data))
        return;
    // On a form the change goes through the form's property sheet: it can be undone, the
    // property is marked as changed, and the form file keeps it.
    if (QDesignerFormWindowInterface *form =
            QDesignerFormWindowInterface::findFormWindow(m_Surface))
        form->cursor()->setWidgetProperty(m_Surface, QStringLiteral("UserDataTexts"), data.Texts());
    else
        m_Surface->SetUserData(data);
}

TUserDataTaskMenuFactory::TUserDataTaskMenuFactory(QExtensionManager *parent)
    : QExtensionFactory(parent)
{}

QObject *TUserDataTaskMenuFactory::createExtension(QObject *object, const QString &iid,
                                                   QObject *parent) const
{
    if (iid != Q_TYPEID(QDesignerTaskMenuExtension))
        return nullptr;
    if (auto *surface = qobject_cast<TMyCAD *>(object))
        return new TUserDataTaskMenu(surface, parent);
    return nullptr;
}

} // namespace tessal
