// SPDX-License-Identifier: MIT
// The arithmetic of a ruler: units, tick steps and tick positions, free of any widget.
#pragma once

#include <tessal/geometry/mypoint.h>

#include <QString>

#include <functional>
#include <vector>

namespace tessal {

// Screen pixels per unit at zoom 1 for a screen of pixelsPerInch (the surface's document
// pixels are screen pixels at zoom 1).
double PixelsPerUnit(TUnits unit, int pixelsPerInch);
// The short name a ruler shows for a unit: "px", "mm", "cm", "dm", "m", "in".
QString UnitSymbol(TUnits unit);
// The unit after unit in TUnits order, wrapping after the last.
TUnits NextUnit(TUnits unit);

// Where values sit along a ruler. Positions are ruler pixels; value 0 is at Origin and a
// value v at Origin + v x PixelsPerUnit (Origin - v x PixelsPerUnit when Reversed, for a
// surface whose coordinates grow from its far edge).
struct TRulerScale
{
    double PixelsPerUnit = 1;
    int Origin = 0;
    bool Reversed = false;

    double PosOf(double value) const;
    double ValueAt(double pos) const;
};

// Tick spacing in units. Major is 1, 2 or 5 times a power of ten; Minor divides it into
// Divisions parts; Medium marks the half between majors when Divisions is even and at
// least 4. Major is 0 when no sensible step exists (a zero or non-finite scale).
struct TRulerSteps
{
    double Major = 0;
    double Minor = 0;
    int Divisions = 1;
    bool Medium = false;
};

// The smallest major step whose pixel spacing is at least minMajorPixels(step) (the caller
// answers the room a label of that step needs), and the finest of its divisions whose
// spacing is at least minMinorPixels.
TRulerSteps ChooseRulerSteps(double pixelsPerUnit,
                             const std::function<double(double step)> &minMajorPixels,
                             double minMinorPixels);

// A label of a major tick: the value with as many decimals as the step needs ("0.05" for a
// step of 0.05, "-20" for -20 at a step of 10); never "-0".
QString RulerLabel(double value, double step);

struct TRulerTick
{
    enum TLevel { Major, Medium, Minor };
    int Pos = 0; // ruler pixel, rounded to nearest (halves to even)
    TLevel Level = Minor;
    double Value = 0;
    QString Label; // majors only
};

// Every tick whose rounded position lies in [from, to), in increasing position order.
std::vector<TRulerTick> RulerTicks(const TRulerScale &scale, const TRulerSteps &steps, int from,
                                   int to);

} // namespace tessal
