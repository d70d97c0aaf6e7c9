// SPDX-License-Identifier: MIT
// The OK and Cancel row every editor dialog ends with.
#pragma once

#include <QDialog>
#include <QDialogButtonBox>

namespace tessal {

inline QDialogButtonBox *OkCancel(QDialog *dialog)
{
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

} // namespace tessal
