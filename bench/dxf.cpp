// SPDX-License-Identifier: GPL-2.0-or-later
// DXF throughput: importing a 100,000-entity file with the Tessal::DxfImport library against
// ezdxf reading the same file in the same run, and writing 100,000 shapes as DXF.
//
// The file is made once by ezdxf (R2000; 40 % lines, 15 % circles, 15 % arcs, 20 %
// five-vertex polylines with a bulge, 10 % texts, on five layers). ezdxf is timed inside
// its interpreter (readfile only, without starting Python), with Debian's /usr/bin/python3.
// Set TESSAL_BENCH_DXF to an existing file to import that instead.
#include <tessal/dxf/import/dxfimport.h>
#include <tessal/surface/cad.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

using namespace tessal;

namespace {

constexpr int EntityCount = 100000;

const char *const MakeScript = R"(
import sys, random, ezdxf
random.seed(7)
doc = ezdxf.new("R2000")
doc.header["$INSUNITS"] = 4
for i in range(5):
    doc.layers.add("L%d" % i, color=i + 1)
msp = doc.modelspace()
n = int(sys.argv[2])
for i in range(n):
    k = i % 20
    x, y = random.uniform(0, 2000), random.uniform(0, 1500)
    a = {"layer": "L%d" % (i % 5)}
    if k < 8:
        msp.add_line((x, y), (x + random.uniform(-50, 50), y + random.uniform(-50, 50)), dxfattribs=a)
    elif k < 11:
        msp.add_circle((x, y), random.uniform(1, 40), dxfattribs=a)
    elif k < 14:
        msp.add_arc((x, y), random.uniform(1, 40), random.uniform(0, 360), random.uniform(0, 360), dxfattribs=a)
    elif k < 18:
        msp.add_lwpolyline([(x, y, 0, 0, 0.3), (x + 10, y), (x + 10, y + 10), (x, y + 20), (x - 5, y + 5)], format="xyseb", dxfattribs=a)
    else:
        msp.add_text("Label %d" % i, dxfattribs=dict(a, height=2.5, insert=(x, y), rotation=random.uniform(0, 90)))
doc.saveas(sys.argv[1])
)";

const char *const ReadScript = R"(
import sys, time, ezdxf
t, c = time.perf_counter(), time.process_time()
doc = ezdxf.readfile(sys.argv[1])
print(time.perf_counter() - t, time.process_time() - c, len(doc.modelspace()))
)";

QTemporaryDir &Folder()
{
    static QTemporaryDir dir;
    return dir;
}

QString RunPython(const char *script, const QStringList &args)
{
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"),
                 QStringList{QStringLiteral("-c"), QString::fromLatin1(script)} + args);
    if (!python.waitForFinished(600000) || python.exitCode() != 0) {
        std::fprintf(stderr, "python3 failed: %s\n", python.readAllStandardError().constData());
        std::exit(1);
    }
    return QString::fromUtf8(python.readAllStandardOutput()).trimmed();
}

const QString &SampleFile()
{
    static const QString name = [] {
        const QString given = qEnvironmentVariable("TESSAL_BENCH_DXF");
        if (!given.isEmpty())
            return given;
        const QString made = Folder().filePath(QStringLiteral("sample.dxf"));
        RunPython(MakeScript, {made, QString::number(EntityCount)});
        return made;
    }();
    return name;
}

// Wall-clock and CPU seconds of each import, for the ratios of the medians. CPU time is
// the steadier figure on a shared machine.
std::vector<double> g_Tessal, g_Ezdxf, g_TessalCpu, g_EzdxfCpu;
// Wall-clock seconds of each write (the counter above is per CPU second) and its size.
std::vector<double> g_Write;
std::int64_t g_WriteBytes = 0;

double ProcessCpuSeconds()
{
    return double(std::clock()) / CLOCKS_PER_SEC;
}

void BM_ImportTessal(benchmark::State &state)
{
    const QString file = SampleFile();
    TMyCAD::SetNoLayerHandler([](TMyCAD *) {});
    for (auto _ : state) {
        TMyCAD cad;
        cad.resize(1000, 800);
        TDxfImportReport report;
        const auto start = std::chrono::steady_clock::now();
        const double cpu = ProcessCpuSeconds();
        if (!LoadFromDxf(cad, file, report))
            state.SkipWithError(report.Error.toUtf8().constData());
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.SetIterationTime(seconds);
        g_Tessal.push_back(seconds);
        g_TessalCpu.push_back(ProcessCpuSeconds() - cpu);
        state.counters["entities"] = double(report.EntitiesRead);
    }
}

void BM_ImportEzdxf(benchmark::State &state)
{
    const QString file = SampleFile();
    for (auto _ : state) {
        const QStringList out = RunPython(ReadScript, {file}).split(QLatin1Char(' '));
        const double seconds = out.value(0).toDouble();
        state.SetIterationTime(seconds);
        g_Ezdxf.push_back(seconds);
        g_EzdxfCpu.push_back(out.value(1).toDouble());
        state.counters["entities"] = out.value(2).toDouble();
    }
}

// 100,000 shapes: a quarter each lines, rectangles, ellipses and five-point polylines.
std::unique_ptr<TMyCAD> ShapesDrawing()
{
    auto cad = std::make_unique<TMyCAD>();
    cad->resize(2000, 1500);
    std::mt19937 random(11);
    std::uniform_real_distribution<float> x(0, 1900), y(0, 1400), d(2, 80);
    const TDrawTool tools[] = {TDrawTool::SpLine, TDrawTool::SpRectangle, TDrawTool::SpEllipse,
                               TDrawTool::SpPolyLine};
    for (int i = 0; i < EntityCount; ++i) {
        const TMyPoint p{x(random), y(random)};
        std::vector<TMyPoint> points{p, {p.X + d(random), p.Y + d(random)}};
        if (i % 4 == 3)
            for (int k = 0; k < 3; ++k)
                points.push_back({p.X + d(random), p.Y + d(random)});
        cad->AddShapeByCode(tools[i % 4], {}, points, 0, {});
        if (i % 1000 == 999)
            cad->ClearAllUndoStuff();
    }
    cad->ClearAllUndoStuff();
    return cad;
}

void BM_WriteTessal(benchmark::State &state)
{
    const std::unique_ptr<TMyCAD> cad = ShapesDrawing();
    const QString file = Folder().filePath(QStringLiteral("written.dxf"));
    std::int64_t bytes = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        if (!cad->SaveToDxf(file))
            state.SkipWithError(cad->LastError().toUtf8().constData());
        g_Write.push_back(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        g_WriteBytes = QFile(file).size();
        bytes += g_WriteBytes;
    }
    state.SetBytesProcessed(bytes);
    state.counters["shapes"] = EntityCount;
}

double Median(std::vector<double> v)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

BENCHMARK(BM_ImportTessal)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImportEzdxf)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteTessal)->Iterations(3)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    if (!g_Tessal.empty() && !g_Ezdxf.empty()) {
        std::printf("import of %s (medians)\n", qPrintable(SampleFile()));
        std::printf("  wall: Tessal %.1f ms, ezdxf %.1f ms, ratio %.3f\n", Median(g_Tessal) * 1000,
                    Median(g_Ezdxf) * 1000, Median(g_Tessal) / Median(g_Ezdxf));
        std::printf("  CPU:  Tessal %.1f ms, ezdxf %.1f ms, ratio %.3f\n",
                    Median(g_TessalCpu) * 1000, Median(g_EzdxfCpu) * 1000,
                    Median(g_TessalCpu) / Median(g_EzdxfCpu));
    }
    if (!g_Write.empty())
        std::printf("write of %d shapes (median): %.1f MB in %.1f ms wall, %.1f MB/s\n",
                    EntityCount, g_WriteBytes / 1e6, Median(g_Write) * 1000,
                    g_WriteBytes / 1e6 / Median(g_Write));
    benchmark::Shutdown();
    return 0;
}
