// SPDX-License-Identifier: MIT
// Placing a shape library entry into a drawing. (Inserting a drawing file as a block is part
// of TMyCAD: AddBlockfromZEDAFile, LoadFromStreamforBlock, PasteforBlock.)
#pragma once

#include <QString>

#include <cstdint>

namespace tessal {

class TLibManager;
class TMyCAD;

// Places the library entry name into target with the left-top corner of the entry's box
// at (x, y), control pixels (divided by the zoom into document units). The result is one
// TMyCombine, also for an entry of a single shape, so that a placed entry always carries
// its link points and user data and is told from a user's group the same way: its four
// points are the box's corners, its link points the entry's link point shapes' points, its
// user data the entry's, and its members clones of the entry's other shapes. The members'
// stored relations name places of the drawing the entry was taken from and are dropped.
// The members and then the combine are added on the current layer with fresh identities
// and names "Shape" followed by the identity, as one "ACT_ADD" step, and the combine
// becomes the working shape. False, adding nothing, when the entry does not exist or
// cannot be read.
bool AddUserDefineShapefromLib(TLibManager &library, const QString &name, std::int32_t x,
                               std::int32_t y, TMyCAD &target);

} // namespace tessal
