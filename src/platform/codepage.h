// SPDX-License-Identifier: MIT
// The process-wide 8-bit (ANSI) code page in which stored texts are encoded.
#pragma once

#include <QByteArray>
#include <QString>

namespace tessal {

// Name of the current code page as iconv knows it; "WINDOWS-1252" until changed.
QByteArray AnsiCodePage();

// Selects the code page for all later conversions. Answers false for a name iconv does not
// know, keeping the previous code page.
bool SetAnsiCodePage(const QByteArray &name);

// Unicode to the code page. A character the code page cannot represent becomes '?'.
QByteArray ToAnsi(const QString &text);

// The code page to Unicode. A byte (or byte sequence) the code page leaves undefined, such
// as 0x81 in Windows-1252, becomes U+FFFD REPLACEMENT CHARACTER.
QString FromAnsi(const QByteArray &bytes);

} // namespace tessal
