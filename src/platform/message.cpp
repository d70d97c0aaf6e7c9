// SPDX-License-Identifier: MIT
// Default message presentation and the handler switch used by applications and tests.
#include <tessal/platform/message.h>

#include <QApplication>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QtDebug>

namespace tessal {

namespace {

void DefaultHandler(const QString &text)
{
    const bool widgets = qobject_cast<QApplication *>(QCoreApplication::instance()) != nullptr;
    if (widgets && QGuiApplication::platformName() != QLatin1String("offscreen") &&
        QGuiApplication::primaryScreen() != nullptr) {
        QMessageBox::information(nullptr, QGuiApplication::applicationDisplayName(), text);
        return;
    }
    qWarning().noquote() << text;
}

TMessageHandler &CurrentHandler()
{
    static TMessageHandler handler = DefaultHandler;
    return handler;
}

} // namespace

void ShowMessage(const QString &text)
{
    CurrentHandler()(text);
}

TMessageHandler SetMessageHandler(TMessageHandler handler)
{
    TMessageHandler previous = std::move(CurrentHandler());
    CurrentHandler() = handler ? std::move(handler) : TMessageHandler(DefaultHandler);
    return previous;
}

} // namespace tessal
