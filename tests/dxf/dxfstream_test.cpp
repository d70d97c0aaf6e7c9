// SPDX-License-Identifier: MIT
// The DXF import reads its file through a window of whole lines: whatever the window's size,
// the drawing, the report and the progress reports are the same, and a file that cannot be
// read to its end says so.
#include "surface/documenthelpers.h"

#include <tessal/dxf/import/dxfimport.h>
#include <tessal/dxf/import/dxfimport_p.h>
#include <tessal/surface/cad.h>

#include <QBuffer>
#include <QDir>
#include <QFile>

#include <random>

namespace tessal {
namespace {

// Everything an import leaves behind that a user could tell apart.
struct TOutcome
{
    bool Ok = false;
    QStringList Report;
    QString LastError;
    QByteArray Drawing;
    std::vector<std::pair<std::int64_t, std::int64_t>> Progress;

    bool operator==(const TOutcome &) const = default;
};

TOutcome Import(QIODevice &device, qsizetype window)
{
    TMyCAD cad;
    cad.resize(640, 480);
    TOutcome out;
    TDxfImportOptions options;
    options.MaxShapes = 20000;
    options.Progress = [&](std::int64_t done, std::int64_t total) {
        out.Progress.emplace_back(done, total);
    };
    TDxfImportReport report;
    out.Ok = LoadFromDxfDevice(cad, device, report, options, window);
    out.Report = report.Lines();
    out.LastError = cad.LastError();
    out.Drawing = test::Saved(cad);
    return out;
}

TOutcome Import(const QByteArray &data, qsizetype window)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    return Import(buffer, window);
}

// The sample files of the tests and the fuzz seeds, and drawings made here: one large enough
// for several progress reports, with counts, polylines of both kinds, blocks and texts.
QList<QByteArray> Samples()
{
    QList<QByteArray> samples;
    for (const QString &folder :
         {QStringLiteral(TESSAL_TEST_DATA_DIR "/dxf"), QStringLiteral(TESSAL_DXF_FUZZ_CORPUS)}) {
        const QDir dir(folder);
        for (const QString &name : dir.entryList(QDir::Files)) {
            QFile file(dir.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
            samples << file.readAll();
        }
    }
    QByteArray drawing = "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\ncell\n10\n0\n20\n0\n"
                         "0\nCIRCLE\n8\n0\n10\n1\n20\n1\n40\n2\n0\nENDBLK\n0\nENDSEC\n"
                         "0\nSECTION\n2\nENTITIES\n";
    for (int i = 0; i < 2400; ++i)
        drawing += QString::asprintf(
                       "0\nLINE\n8\nparts\n62\n%d\n10\n%d\n20\n%d\n11\n%d.5\n21\n%d\n"
                       "0\nLWPOLYLINE\n8\n0\n90\n3\n70\n1\n10\n%d\n20\n0\n10\n1\n20\n%d\n42\n0.5\n"
                       "10\n2\n20\n2\n",
                       i % 255, i % 100, i / 100, i % 100, i / 100, i, i % 7)
                       .toLatin1();
    drawing += "0\nPOLYLINE\n8\n0\n66\n1\n70\n0\n0\nVERTEX\n10\n1\n20\n2\n0\nVERTEX\n10\n3\n20\n4\n"
               "0\nSEQEND\n0\nTEXT\n8\n0\n10\n1\n20\n1\n40\n3\n1\n45%%d\n"
               "0\nINSERT\n2\ncell\n10\n5\n20\n5\n70\n2\n71\n3\n44\n4\n45\n4\n0\nENDSEC\n0\nEOF\n";
    samples << drawing;
    return samples;
}

// A random piece of damage: a line made a bad count or a long one, a group of an unknown
// entity or a bare count code put in, a line dropped, blank lines at the end, the file cut.
QByteArray Damaged(const QByteArray &sample, std::mt19937 &random)
{
    QList<QByteArray> lines = sample.split('\n');
    const QByteArray counts[] = {"2147483647", "-2147483648",          "",   "x", "+5", " 12 ",
                                 "-1",         "99999999999999999999", "3\r"};
    for (int edits = int(random() % 5); edits > 0; --edits) {
        const auto at = qsizetype(random() % std::uint32_t(lines.size()));
        switch (random() % 6) {
        case 0:
            lines[at] = counts[random() % std::size(counts)];
            break;
        case 1:
            lines.insert(at, QByteArray(int(random() % 5000), char('a' + random() % 26)));
            break;
        case 2:
            lines.insert(at & ~qsizetype(1), 2, "WIPEOUT");
            lines[at & ~qsizetype(1)] = "0";
            break;
        case 3:
            lines.insert(at, QByteArray::number(70 + random() % 30));
            break;
        case 4:
            lines.removeAt(at);
            break;
        default:
            lines.append(QByteArray());
        }
    }
    QByteArray data = lines.join('\n');
    if (random() % 3 == 0)
        data.replace("\n", "\r\n");
    if (random() % 3 == 0)
        data.truncate(qsizetype(random() % std::uint32_t(data.size() + 1)));
    return data;
}

// Windows of a few bytes split lines, CRLF pairs and groups everywhere and make the window
// grow for long lines; the import must not tell them from a window larger than the file.
TEST(DxfStream, TinyWindowsReadLikeOneWindowOfTheWholeFile)
{
    const QList<QByteArray> samples = Samples();
    ASSERT_GE(samples.size(), 7);
    std::mt19937 random(4711);
    int damaged = 0, reports = 0;
    for (int run = 0; run < 120; ++run) {
        const QByteArray &sample = samples[run % samples.size()];
        const QByteArray data = run < samples.size() ? sample : Damaged(sample, random);
        const TOutcome whole = Import(data, data.size() + 1);
        const auto window = qsizetype(1 + random() % 7);
        const TOutcome pieces = Import(data, window);
        ASSERT_EQ(pieces, whole) << "run " << run << ", window " << window << "\n"
                                 << pieces.Report.join('\n').toStdString() << "\nwanted\n"
                                 << whole.Report.join('\n').toStdString();
        damaged += !whole.Ok;
        reports += int(whole.Progress.size());
    }
    // The runs met damage and files long enough to report within the parse.
    EXPECT_GT(damaged, 20);
    EXPECT_GT(reports, 120 * 4);
}

// A device that fails once it has handed out a number of bytes, counted over every pass.
class TFailingBuffer : public QBuffer
{
public:
    TFailingBuffer(const QByteArray &data, qint64 budget)
        : m_Budget(budget)
    {
        setData(data);
        open(QIODevice::ReadOnly);
    }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        if (m_Budget <= 0) {
            setErrorString(QStringLiteral("input/output error"));
            return -1;
        }
        const qint64 read = QBuffer::readData(data, std::min(size, m_Budget));
        m_Budget -= read;
        return read;
    }

private:
    qint64 m_Budget;
};

// A read error in the first pass leaves the drawing untouched; one in the parse keeps what
// was read before it, as a file cut there would. Either way the report says why.
TEST(DxfStream, AReadErrorIsReportedAndKeepsWhatWasReadBefore)
{
    const QByteArray data = Samples().back();
    const TOutcome whole = Import(data, 64);
    ASSERT_TRUE(whole.Ok) << whole.Report.join('\n').toStdString();
    const QString error = QStringLiteral("the file could not be read: input/output error");

    TFailingBuffer early(data, data.size() / 2);
    const TOutcome untouched = Import(early, 64);
    EXPECT_EQ(std::tuple(untouched.Ok, untouched.LastError, untouched.Report.last()),
              std::tuple(false, error, "error: " + error));
    TMyCAD empty;
    empty.resize(640, 480);
    EXPECT_EQ(untouched.Drawing, test::Saved(empty));

    // The first pass and the end of the file are read, then half the file.
    TFailingBuffer late(data, data.size() + 64 + data.size() / 2);
    const TOutcome partial = Import(late, 64);
    EXPECT_EQ(std::tuple(partial.Ok, partial.LastError, partial.Report.last()),
              std::tuple(false, error, "error: " + error));
    EXPECT_GT(partial.Drawing.size(), untouched.Drawing.size());
    EXPECT_LT(partial.Drawing.size(), whole.Drawing.size());
}

} // namespace
} // namespace tessal
