// SPDX-License-Identifier: MIT
// The component's message box, routed through a replaceable handler.
#pragma once

#include <QString>

#include <functional>

namespace tessal {

using TMessageHandler = std::function<void(const QString &)>;

// Shows text to the user through the current handler.
void ShowMessage(const QString &text);

// Installs handler (an empty one restores the default) and answers the previous one. The
// default shows a modal message box when a widget application runs on a real screen, and
// logs the text with qWarning otherwise (offscreen platform, command-line tools).
TMessageHandler SetMessageHandler(TMessageHandler handler);

} // namespace tessal
