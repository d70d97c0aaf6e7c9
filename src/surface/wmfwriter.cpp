// SPDX-License-Identifier: MIT
// Windows metafiles of the page or the selection: one stretched device-independent bitmap
// under a placeable header, built with libUEMF's record makers.
#include <tessal/surface/cad.h>

#include <tessal/platform/filesaver_p.h>

#include <QLibrary>
#include <QTemporaryFile>

#ifdef TESSAL_HAVE_UEMF
extern "C" {
#include <uwmf.h>
}
#endif

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace tessal {

#ifdef TESSAL_HAVE_UEMF

namespace {

// libUEMF is loaded on first use with its symbols kept to itself. It exports a wmf_free of
// its own; linked like other libraries, that function would stand in for the metafile
// reader's wmf_free in libwmf's own calls, with other arguments, and crash the reader.
#define TESSAL_UEMF_FUNCTIONS(X)                                                                   \
    X(wmf_start)                                                                                   \
    X(wmf_append)                                                                                  \
    X(wmf_header_append)                                                                           \
    X(wmf_finish)                                                                                  \
    X(U_WMRHEADER_set)                                                                             \
    X(U_WMRSETMAPMODE_set)                                                                         \
    X(U_WMRSETWINDOWORG_set)                                                                       \
    X(U_WMRSETWINDOWEXT_set)                                                                       \
    X(U_WMRSTRETCHDIB_set)                                                                         \
    X(U_WMREOF_set)                                                                                \
    X(RGBA_to_DIB)                                                                                 \
    X(bitmapinfoheader_set)                                                                        \
    X(bitmapinfo_set)

struct TUemf
{
#define TESSAL_UEMF_POINTER(name) decltype(&::name) name = nullptr;
    TESSAL_UEMF_FUNCTIONS(TESSAL_UEMF_POINTER)
#undef TESSAL_UEMF_POINTER
    bool Loaded = false;
};

const TUemf &Uemf()
{
    static const TUemf api = [] {
        TUemf found;
        QLibrary library(QStringLiteral("uemf"), 0); // never unloaded
        if (!library.load())
            return found;
        bool all = true;
#define TESSAL_UEMF_RESOLVE(name)                                                                  \
    found.name = reinterpret_cast<decltype(found.name)>(library.resolve(#name));                   \
    all = all && found.name;
        TESSAL_UEMF_FUNCTIONS(TESSAL_UEMF_RESOLVE)
#undef TESSAL_UEMF_RESOLVE
        found.Loaded = all;
        return found;
    }();
    return api;
}

// Owns a metafile under construction. libUEMF's own wmf_free is not called, for the reason
// above.
struct TWmfTrack
{
    WMFTRACK *Track = nullptr;
    ~TWmfTrack()
    {
        if (!Track)
            return;
        if (Track->fp)
            std::fclose(Track->fp);
        std::free(Track->buf);
        std::free(Track);
    }
};

// Appends a record made by a libUEMF maker (which answers nullptr on bad arguments).
bool Append(char *record, WMFTRACK *track)
{
    return record && Uemf().wmf_append(reinterpret_cast<U_METARECORD *>(record), track, 1) == 0;
}

// The picture as metafile bytes, or empty when a record could not be made. Logical units
// are the picture's pixels at the screen's dots per inch, so that the placeable header
// gives the picture its physical size.
QByteArray MetafileOf(const QImage &picture, int dpi, QString &error)
{
    const TUemf &uemf = Uemf();
    if (!uemf.Loaded) {
        error = TMyCAD::tr("Metafiles cannot be written: libUEMF could not be loaded.");
        return {};
    }
    const QImage rgba = picture.convertToFormat(QImage::Format_RGBA8888);
    const int w = rgba.width();
    const int h = rgba.height();
    // The library writes its buffer to a file when finishing; that file is a scratch copy,
    // the caller replaces the real one atomically.
    QTemporaryFile scratch;
    if (!scratch.open()) {
        error = TMyCAD::tr("No temporary file for the metafile: %1").arg(scratch.errorString());
        return {};
    }
    const QByteArray scratchName = QFile::encodeName(scratch.fileName());
    TWmfTrack wt;
    if (uemf.wmf_start(scratchName.constData(), 1u << 20, 1u << 20, &wt.Track) != 0) {
        error = TMyCAD::tr("The metafile cannot be started.");
        return {};
    }
    U_PAIRF inches{float(double(w) / dpi), float(double(h) / dpi)};
    char *header = uemf.U_WMRHEADER_set(&inches, unsigned(dpi));
    bool ok = header &&
              uemf.wmf_header_append(reinterpret_cast<U_METARECORD *>(header), wt.Track, 1) == 0;
    ok = ok && Append(uemf.U_WMRSETMAPMODE_set(U_MM_ANISOTROPIC), wt.Track);
    ok = ok && Append(uemf.U_WMRSETWINDOWORG_set(U_POINT16{0, 0}), wt.Track);
    ok = ok && Append(uemf.U_WMRSETWINDOWEXT_set(U_POINT16{int16_t(w), int16_t(h)}), wt.Track);
    char *pixels = nullptr;
    uint32_t pixelBytes = 0;
    PU_RGBQUAD colours = nullptr;
    int colourCount = 0;
    ok = ok && uemf.RGBA_to_DIB(&pixels, &pixelBytes, &colours, &colourCount,
                                reinterpret_cast<const char *>(rgba.constBits()), w, h,
                                int(rgba.bytesPerLine()), U_BCBM_COLOR24, U_CT_NO,
                                U_ROW_ORDER_INVERT) == 0;
    if (ok) {
        const U_BITMAPINFOHEADER bmih =
            uemf.bitmapinfoheader_set(w, h, 1, U_BCBM_COLOR24, U_BI_RGB, pixelBytes, 0, 0, 0, 0);
        PU_BITMAPINFO bmi = uemf.bitmapinfo_set(bmih, nullptr);
        const U_POINT16 size{int16_t(w), int16_t(h)};
        ok = bmi &&
             Append(uemf.U_WMRSTRETCHDIB_set(U_POINT16{0, 0}, size, U_POINT16{0, 0}, size,
                                             U_DIB_RGB_COLORS, U_SRCCOPY, bmi, pixelBytes, pixels),
                    wt.Track);
        std::free(bmi);
    }
    std::free(pixels);
    std::free(colours);
    ok = ok && Append(uemf.U_WMREOF_set(), wt.Track) && uemf.wmf_finish(wt.Track) == 0;
    if (!ok) {
        error = TMyCAD::tr("The metafile records cannot be made.");
        return {};
    }
    return QByteArray(wt.Track->buf, qsizetype(wt.Track->used));
}

} // namespace

bool TMyCAD::SaveToWmf(const QString &fileName, TExportArea area)
{
    m_LastError.clear();
    const QImage picture = ExportImage(area);
    if (picture.isNull()) {
        m_LastError =
            area == TExportArea::Selection ? tr("Nothing is selected.") : tr("The page is empty.");
        return false;
    }
    // Metafile coordinates are 16-bit.
    constexpr int MaxSide = std::numeric_limits<int16_t>::max();
    if (picture.width() > MaxSide || picture.height() > MaxSide) {
        m_LastError = tr("The picture is too large for a metafile.");
        return false;
    }
    // Made while the save holds off the file-size signal: the library writes a scratch file.
    QString why;
    const bool saved = detail::SaveWholeFile(
        fileName,
        [&](QIODevice &file) {
            const QByteArray bytes = MetafileOf(picture, logicalDpiX(), why);
            return !bytes.isEmpty() && file.write(bytes) == bytes.size();
        },
        m_LastError);
    if (!saved && !why.isEmpty())
        m_LastError = why;
    return saved;
}

#else

bool TMyCAD::SaveToWmf(const QString &fileName, TExportArea)
{
    m_LastError = tr("%1: this build writes no metafiles (libUEMF was not found).").arg(fileName);
    return false;
}

#endif

} // namespace tessal
