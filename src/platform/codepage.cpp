// SPDX-License-Identifier: MIT
// Code-page conversion through iconv, with per-character recovery from unmappable input.
#include <tessal/platform/codepage.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iconv.h>

namespace tessal {

namespace {

// Qt's UTF-16 is host order; iconv's "UTF-16" would add a byte-order mark.
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
constexpr char kUtf16[] = "UTF-16LE";
#else
constexpr char kUtf16[] = "UTF-16BE";
#endif

QByteArray &CurrentCodePage()
{
    static QByteArray name = QByteArrayLiteral("WINDOWS-1252");
    return name;
}

// Whether the current code page reads bytes 0 to 127 as the same code points. Nearly every
// stored text is plain ASCII, which then needs no conversion at all.
bool &AsciiCompatible()
{
    static bool compatible = true;
    return compatible;
}

bool IsAscii(const QByteArray &bytes)
{
    for (const char c : bytes)
        if (static_cast<unsigned char>(c) >= 0x80)
            return false;
    return true;
}

// Owns one iconv conversion descriptor.
class Converter
{
public:
    Converter(const char *to, const char *from)
        : m_Cd(iconv_open(to, from))
    {}
    ~Converter()
    {
        if (IsValid())
            iconv_close(m_Cd);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool IsValid() const { return m_Cd != reinterpret_cast<iconv_t>(-1); }

    // Converts input; at an unconvertible or incomplete sequence, appends replacement to the
    // output, skips skipUnit bytes of input (or the rest, when incomplete) and goes on.
    QByteArray Run(const QByteArray &input, const QByteArray &replacement, size_t skipUnit)
    {
        QByteArray out;
        char *in = const_cast<char *>(input.constData());
        size_t inLeft = size_t(input.size());
        char buffer[256];
        while (inLeft > 0) {
            char *outPtr = buffer;
            size_t outLeft = sizeof buffer;
            const size_t rc = iconv(m_Cd, &in, &inLeft, &outPtr, &outLeft);
            out.append(buffer, qsizetype(sizeof buffer - outLeft));
            if (rc != size_t(-1) || errno == E2BIG)
                continue;
            out.append(replacement);
            const size_t skip = errno == EINVAL ? inLeft : SkipLength(in, inLeft, skipUnit);
            in += skip;
            inLeft -= skip;
            iconv(m_Cd, nullptr, nullptr, nullptr, nullptr); // reset the shift state
        }
        return out;
    }

private:
    // A UTF-16 surrogate pair is one character: skip both units together.
    static size_t SkipLength(const char *in, size_t left, size_t unit)
    {
        if (unit == 2 && left >= 4) {
            char16_t first;
            std::memcpy(&first, in, 2);
            if (first >= 0xD800 && first < 0xDC00)
                return 4;
        }
        return std::min(unit, left);
    }

    iconv_t m_Cd;
};

} // namespace

QByteArray AnsiCodePage()
{
    return CurrentCodePage();
}

bool SetAnsiCodePage(const QByteArray &name)
{
    if (name.isEmpty())
        return false;
    const Converter to(name.constData(), kUtf16);
    const Converter from(kUtf16, name.constData());
    if (!to.IsValid() || !from.IsValid())
        return false;
    CurrentCodePage() = name;
    QByteArray ascii(128, Qt::Uninitialized);
    for (int i = 0; i < 128; ++i)
        ascii[i] = char(i);
    AsciiCompatible() = false; // measured by the full conversion
    AsciiCompatible() = FromAnsi(ascii) == QString::fromLatin1(ascii);
    return true;
}

QByteArray ToAnsi(const QString &text)
{
    Converter c(CurrentCodePage().constData(), kUtf16);
    if (!c.IsValid())
        return {};
    const QByteArray utf16(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    return c.Run(utf16, QByteArrayLiteral("?"), 2);
}

QString FromAnsi(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return {};
    if (AsciiCompatible() && IsAscii(bytes))
        return QString::fromLatin1(bytes);
    Converter c(kUtf16, CurrentCodePage().constData());
    if (!c.IsValid())
        return {};
    const char16_t replacement = 0xFFFD;
    const QByteArray utf16 =
        c.Run(bytes, QByteArray(reinterpret_cast<const char *>(&replacement), 2), 1);
    return QString(reinterpret_cast<const QChar *>(utf16.constData()), utf16.size() / 2);
}

} // namespace tessal
