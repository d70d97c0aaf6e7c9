// SPDX-License-Identifier: MIT
#include "progress.h"

#include <tessal/surface/cad.h>

#include <QCoreApplication>
#include <QProgressDialog>

#include <algorithm>

namespace tessal {

namespace {
// Steps of the bar in one run.
constexpr int Steps = 1000;
} // namespace

TProgressScope::TProgressScope(QWidget *parent, const QString &label, int delayMs, int passes)
    : m_Dialog(std::make_unique<QProgressDialog>(label, QProgressDialog::tr("Cancel"), 0,
                                                 Steps * passes, parent))
{
    m_Dialog->setWindowModality(Qt::WindowModal);
    m_Dialog->setMinimumDuration(delayMs);
    m_Dialog->setAutoReset(false);
    m_Dialog->setAutoClose(false);
    // The delay counts from here, the start of the work.
    m_Dialog->setValue(0);
}

TProgressScope::~TProgressScope()
{
    Finish();
}

void TProgressScope::Finish()
{
    Attach(nullptr);
    if (!m_Dialog)
        return;
    m_Cancelled = m_Dialog->wasCanceled();
    // Its timer would show it from the next event loop, a message box's for instance.
    m_Dialog.reset();
}

void TProgressScope::Attach(TMyCAD *surface)
{
    if (m_Surface)
        m_Surface->SetOnProgress({});
    m_Surface = surface;
    if (!m_Surface)
        return;
    m_Surface->SetOnProgress([this](TMyCAD *, std::int64_t done, std::int64_t total, bool &cancel) {
        Report(done, total);
        cancel = Cancelled();
    });
}

void TProgressScope::NextPass()
{
    ++m_Pass;
}

void TProgressScope::Report(std::int64_t done, std::int64_t total)
{
    // Work that cannot stop at once (a DXF being parsed) goes on reporting: the cancelled
    // dialog stays closed.
    if (!m_Dialog || m_Dialog->wasCanceled())
        return;
    const std::int64_t step =
        total > 0 ? std::clamp<std::int64_t>(done * Steps / total, 0, Steps) : 0;
    m_Dialog->setValue(std::min(m_Pass * Steps + int(step), m_Dialog->maximum()));
    // The work holds the event loop; once the dialog shows, let it paint and take the
    // Cancel click. It is window-modal, so the drawing cannot be edited meanwhile.
    if (m_Dialog->isVisible())
        QCoreApplication::processEvents();
}

bool TProgressScope::Cancelled() const
{
    return m_Dialog ? m_Dialog->wasCanceled() : m_Cancelled;
}

} // namespace tessal
