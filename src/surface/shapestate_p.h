// SPDX-License-Identifier: MIT
// Copying the whole state of a shape onto another one (private to the surface).
#pragma once

namespace tessal {

class TMyShape;

// Everything a shape's record and relations hold: Assign's fields plus the text point,
// identity, list number, name, the enable and display flags and a line's arrow offset. The
// two shapes may be of different classes; the class's own fields are copied when both have
// them.
void CopyWholeState(TMyShape &to, const TMyShape &from);

} // namespace tessal
