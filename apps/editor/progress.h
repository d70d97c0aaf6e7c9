// SPDX-License-Identifier: MIT
// A progress dialog for long loads, saves and imports. It appears only when the work lasts
// longer than a short delay, and its Cancel button asks the surface to stop.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>

class QProgressDialog;
class QWidget;

namespace tessal {

class TMyCAD;

class TProgressScope
{
public:
    // passes: how many runs over the work the bar covers (a check and then the real load,
    // for instance); each run fills an equal share of it.
    TProgressScope(QWidget *parent, const QString &label, int delayMs, int passes = 1);
    ~TProgressScope();
    TProgressScope(const TProgressScope &) = delete;
    TProgressScope &operator=(const TProgressScope &) = delete;

    // Reports the surface's progress here until the scope ends or another surface attaches.
    void Attach(TMyCAD *surface);
    // The following reports belong to the next run.
    void NextPass();
    void Report(std::int64_t done, std::int64_t total);
    bool Cancelled() const;
    // Ends the reports and closes the dialog, before a message about the outcome shows.
    void Finish();

private:
    std::unique_ptr<QProgressDialog> m_Dialog;
    TMyCAD *m_Surface = nullptr;
    int m_Pass = 0;
    bool m_Cancelled = false;
};

} // namespace tessal
