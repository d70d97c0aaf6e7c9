// SPDX-License-Identifier: MIT
// Units, 1-2-5 tick steps and tick positions of the rulers.
#include <tessal/ruler/rulerscale.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tessal {

double PixelsPerUnit(TUnits unit, int pixelsPerInch)
{
    const double ppi = pixelsPerInch;
    switch (unit) {
    case TUnits::pixel:
        return 1;
    case TUnits::mm:
        return ppi / 25.4;
    case TUnits::cm:
        return ppi / 2.54;
    case TUnits::dm:
        return ppi / 0.254;
    case TUnits::m:
        return ppi / 0.0254;
    case TUnits::inch:
        return ppi;
    }
    return 1;
}

QString UnitSymbol(TUnits unit)
{
    switch (unit) {
    case TUnits::pixel:
        return QStringLiteral("px");
    case TUnits::mm:
        return QStringLiteral("mm");
    case TUnits::cm:
        return QStringLiteral("cm");
    case TUnits::dm:
        return QStringLiteral("dm");
    case TUnits::m:
        return QStringLiteral("m");
    case TUnits::inch:
        return QStringLiteral("in");
    }
    return {};
}

TUnits NextUnit(TUnits unit)
{
    return unit == TUnits::inch ? TUnits::pixel : TUnits(int(unit) + 1);
}

double TRulerScale::PosOf(double value) const
{
    return Origin + (Reversed ? -value : value) * PixelsPerUnit;
}

double TRulerScale::ValueAt(double pos) const
{
    const double v = (pos - Origin) / PixelsPerUnit;
    return Reversed ? -v : v;
}

namespace {

// The divisions of a major step m x 10^e that stay within the 1-2-5 sequence, coarsest
// first: 1 -> halves, fifths, tenths; 2 -> halves, quarters, tenths; 5 -> fifths, tenths.
std::vector<int> DivisionsOf(int mantissa)
{
    switch (mantissa) {
    case 1:
        return {2, 5, 10};
    case 2:
        return {2, 4, 10};
    default:
        return {5, 10};
    }
}

} // namespace

TRulerSteps ChooseRulerSteps(double pixelsPerUnit,
                             const std::function<double(double step)> &minMajorPixels,
                             double minMinorPixels)
{
    TRulerSteps steps;
    if (!std::isfinite(pixelsPerUnit) || pixelsPerUnit <= 0)
        return steps;
    // Start a decade below the step a one-pixel label would need, then climb 1, 2, 5.
    int exponent = int(std::floor(std::log10(1.0 / pixelsPerUnit))) - 1;
    static constexpr std::array<int, 3> mantissas{1, 2, 5};
    for (int round = 0; round < 40 && steps.Major == 0; ++round, ++exponent) {
        for (int m : mantissas) {
            const double step = m * std::pow(10.0, exponent);
            if (step * pixelsPerUnit < minMajorPixels(step))
                continue;
            steps.Major = step;
            steps.Minor = step;
            for (int d : DivisionsOf(m)) {
                if (step / d * pixelsPerUnit >= minMinorPixels) {
                    steps.Divisions = d;
                    steps.Minor = step / d;
                }
            }
            steps.Medium = steps.Divisions >= 4 && steps.Divisions % 2 == 0;
            break;
        }
    }
    return steps;
}

QString RulerLabel(double value, double step)
{
    const int decimals = step >= 1 ? 0 : int(std::ceil(-std::log10(step) - 1e-9));
    // A value that rounds to zero prints without its sign.
    if (std::abs(value) < 0.5 * std::pow(10.0, -decimals))
        value = 0;
    return QString::number(value, 'f', decimals);
}

std::vector<TRulerTick> RulerTicks(const TRulerScale &scale, const TRulerSteps &steps, int from,
                                   int to)
{
    std::vector<TRulerTick> ticks;
    if (steps.Major <= 0 || to <= from)
        return ticks;
    // Widen the value range by a tick so that rounding at the ends loses nothing.
    const double a = scale.ValueAt(from - 1);
    const double b = scale.ValueAt(to + 1);
    const auto first = std::int64_t(std::floor(std::min(a, b) / steps.Minor));
    const auto last = std::int64_t(std::ceil(std::max(a, b) / steps.Minor));
    if (last - first > 1000000)
        return ticks;
    const int half = steps.Divisions / 2;
    for (std::int64_t k = first; k <= last; ++k) {
        const double value = double(k) * steps.Minor;
        const int pos = int(std::nearbyint(scale.PosOf(value)));
        if (pos < from || pos >= to)
            continue;
        TRulerTick tick;
        tick.Pos = pos;
        tick.Value = value;
        if (k % steps.Divisions == 0) {
            tick.Level = TRulerTick::Major;
            tick.Label = RulerLabel(value, steps.Major);
        } else if (steps.Medium && k % half == 0) {
            tick.Level = TRulerTick::Medium;
        }
        ticks.push_back(tick);
    }
    if (scale.Reversed)
        std::reverse(ticks.begin(), ticks.end());
    return ticks;
}

} // namespace tessal
