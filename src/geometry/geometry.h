// SPDX-License-Identifier: MIT
// Plane geometry on document points: conversions, angles, crossings, arrow heads and the
// growable point arrays that shapes keep. Y grows downwards everywhere.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/platform/types.h>

#include <QString>

#include <cmath>

#include <utility>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessal {

// Rounds to the nearest integer, halves to the even neighbour, as every screen rounding of
// the component does (never halves away from zero).
inline std::int32_t RoundEven(double v)
{
#if defined(__SSE2__)
    // Within the result's range the processor's conversion rounds by the same rule (the
    // current rounding mode, as nearbyint) without the library call, which saves and restores
    // the floating-point environment every time.
    if (v > -2147483648.0 && v < 2147483647.0)
        return _mm_cvtsd_si32(_mm_set_sd(v));
#endif
    return static_cast<std::int32_t>(std::nearbyint(v));
}

// Conversions. Rounding is to nearest with halves to even.
TMyPoint PtToMyPt(TPoint p);
TPoint MyPtToPt(TMyPoint p);
TRect myRecttoRect(const TMyRect &r);
void OffsetMyRect(TMyRect &r, float dx, float dy);
TRect ExpandRect(const TRect &r, std::int32_t n);
TRect PtToARect(TPoint a, TPoint b);

// Measures and angles.
float GetLengthinPixel(TMyPoint a, TMyPoint b);
double GetSlopeAngle(TMyPoint a, TMyPoint b);
void RecaclinRad(float &a);
void RecaclinDeg(std::int32_t &d);
TMyPoint RotateAPoint(TMyPoint p, TMyPoint c, float a);

// RotateAPoint for many points about one centre by one angle (radians), with the sine and
// cosine taken once; the results are the same to the bit.
class TRotation
{
public:
    TRotation(TMyPoint centre, float angle);
    TMyPoint operator()(TMyPoint p) const;

private:
    TMyPoint m_Centre;
    double m_Sin, m_Cos;
};
std::int32_t PointInQuadrantX(TMyPoint a, TMyPoint b);
std::int32_t PointInQuadrantY(TMyPoint a, TMyPoint b);
bool IsAtLeftTop(TMyPoint a, TMyPoint b);
bool IsAtLeftBottom(TMyPoint a, TMyPoint b);
bool IsAtRightTop(TMyPoint a, TMyPoint b);
bool IsAtRightBottom(TMyPoint a, TMyPoint b);

// Constructions.
TMyPoint Getintersection(TMyPoint p1, TMyPoint p2, TMyPoint p3, TMyPoint p4);
std::pair<TMyPoint, TMyPoint> GetTriangle(TMyPoint tip, TMyPoint tail, std::uint8_t length,
                                          float half);
std::pair<TMyPoint, TMyPoint> SplitLine(TMyPoint a, TMyPoint b, std::int32_t n);
TMyRect GetPointsLTRB(const std::vector<TMyPoint> &points);

// Point arrays. Out-of-range indices change nothing.
void AppendAPoint(TMyPoint p, std::vector<TMyPoint> &arr);
bool InsertAPointBeforeId(TMyPoint p, std::int32_t id, std::vector<TMyPoint> &arr);
bool InsertAPointBeforeId1(TPoint p, std::int32_t id, std::vector<TPoint> &arr);
void RemovePoint(std::int32_t i, std::vector<TMyPoint> &arr);
bool IsExistPt(std::int32_t i, const std::vector<TMyPoint> &arr);
bool IsExistPt1(std::int32_t i, const std::vector<TPoint> &arr);

// Connector lists of a shape: no duplicates on adding; removing takes the last occurrence.
void AddLinklineShape(std::vector<std::int32_t> &linkShapes, std::int32_t id);
void RemoveLinklineShape(std::vector<std::int32_t> &linkShapes, std::int32_t id);

// Pads s with spaces to n + 1 characters when it has at most n (one more than n, as the
// column layout of the length texts expects); longer texts are returned unchanged.
QString AppendSpace(const QString &s, std::int32_t n);

} // namespace tessal
