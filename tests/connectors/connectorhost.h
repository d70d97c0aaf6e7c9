// SPDX-License-Identifier: MIT
// Shared set-up of the connector tests: boxes with link points placed in a host document,
// connectors joining them, and checks of the shape of a route.
#pragma once

#include "shapes/testhost.h"

#include <tessal/shapes/link.h>
#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace tessal::test {

// Adds shape as the next shape of the host's document, numbered and identified like the
// surface does it (number = list position, identity = 100 + number).
template <class T>
T *Place(TTestHost &host, std::unique_ptr<T> shape)
{
    T *raw = shape.get();
    raw->SetShapeNo(std::int32_t(host.Shapes.size()));
    raw->SetShapeId(100 + std::int32_t(host.Shapes.size()));
    host.Add(std::move(shape));
    return raw;
}

// An upright rectangle with corners (l, t) and (r, b) in document units and the given link
// points (document units).
inline TMyRectangle *PlaceBox(TTestHost &host, float l, float t, float r, float b,
                              std::vector<TMyPoint> links)
{
    auto box = std::make_unique<TMyRectangle>(&host);
    MakeBox(*box, l, t, r, b);
    box->LinkPoints() = std::move(links);
    return Place(host, std::move(box));
}

inline TMyLinkLine *PlaceConnector(TTestHost &host, TMyPointArray points)
{
    auto link = std::make_unique<TMyLinkLine>(&host);
    link->Points() = std::move(points);
    return Place(host, std::move(link));
}

// Whether the horizontal or vertical segment a-b passes through the open interior of the
// box (l, t, r, b).
inline bool EntersBox(TMyPoint a, TMyPoint b, double l, double t, double r, double bottom)
{
    if (a.Y == b.Y)
        return t < a.Y && a.Y < bottom && std::max(a.X, b.X) > l && std::min(a.X, b.X) < r;
    return l < a.X && a.X < r && std::max(a.Y, b.Y) > t && std::min(a.Y, b.Y) < bottom;
}

// Every segment is horizontal or vertical and has a length, and no two consecutive
// segments lie on one line (so they alternate).
inline ::testing::AssertionResult Alternates(const std::vector<TMyPoint> &route)
{
    if (route.size() < 2)
        return ::testing::AssertionFailure() << "fewer than two points";
    for (std::size_t i = 1; i < route.size(); ++i) {
        const TMyPoint a = route[i - 1], b = route[i];
        if (a == b)
            return ::testing::AssertionFailure() << "repeated point " << i;
        if (a.X != b.X && a.Y != b.Y)
            return ::testing::AssertionFailure() << "slanted segment " << i << ": (" << a.X << ","
                                                 << a.Y << ")-(" << b.X << "," << b.Y << ")";
        if (i >= 2) {
            const bool before = route[i - 2].Y == a.Y;
            if (before == (a.Y == b.Y))
                return ::testing::AssertionFailure()
                       << "segments " << i - 1 << " and " << i << " do not alternate";
        }
    }
    return ::testing::AssertionSuccess();
}

} // namespace tessal::test
