// SPDX-License-Identifier: MIT
// Grouping within a shape list: shared by the surface and by drawings built aside for it,
// so that a group comes out the same wherever it is made.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tessal {

class TMyCAD;
class TMyShape;

namespace Grouping {

using TShapeList = std::vector<std::unique_ptr<TMyShape>>;

// The place of shape in list: where its hints say when that place holds it, else found by a
// search (which mends every hint);
// -1 for a shape that is not in the list.
std::int32_t PlaceOf(const TShapeList &list, const TMyShape *shape);
// The shape's place when its hints (list place, number) name it, else -1; never searches.
std::int32_t HintedPlace(const TShapeList &list, const TMyShape *shape);
// Follows ParentNo up to the shape that has no parent; nullptr for nullptr.
TMyShape *RootOf(const TShapeList &list, TMyShape *shape);
// The roots of those shapes that are in the list, each once, in order of the shapes, and
// in layer their layer. Empty when they cannot be grouped: none is in the list, or the
// shapes or their roots lie on two layers or are invisible.
std::vector<TMyShape *> Roots(const TShapeList &list, std::span<TMyShape *const> shapes,
                              std::int32_t &layer);
// A group shape of className for surface over the roots' box, to be list place no with
// identity id on layer; it does not know its members yet (see Adopt).
std::unique_ptr<TMyShape> NewGroup(TMyCAD &surface, const QString &className,
                                   std::span<TMyShape *const> roots, std::int32_t layer,
                                   std::int32_t no, std::int32_t id);
// Makes the roots the members of group, which is list place no.
void Adopt(const TShapeList &list, TMyShape &group, std::int32_t no,
           std::span<TMyShape *const> roots);

} // namespace Grouping
} // namespace tessal
