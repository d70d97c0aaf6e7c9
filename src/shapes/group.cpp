// SPDX-License-Identifier: MIT
// TMyGroup: a box around member shapes that draws only its info text and is hit through
// its members as well as inside its box.
#include <tessal/shapes/rectangle.h>

namespace tessal {

namespace {

// Child lists come from files, which are trusted as read; a group that (through others)
// lists itself must not send the hit test round in circles.
constexpr int MaxNesting = 64;
thread_local int t_Nesting = 0;

} // namespace

void TMyGroup::Draw(TCanvas &canvas)
{
    // The members are shapes of the document and are drawn in their own places.
    DrawInfo(canvas);
}

bool TMyGroup::IsClickedMe(TCanvas &canvas, TPoint point)
{
    if (TMyRectangle::IsClickedMe(canvas, point))
        return true;
    if (t_Nesting >= MaxNesting)
        return false;
    ++t_Nesting;
    bool hit = false;
    for (std::int32_t no : ChildShapes()) {
        TMyShape *member = Host()->GetShapeByNo(no);
        if (member && member != this && member->IsClickedMe(canvas, point)) {
            hit = true;
            break;
        }
    }
    --t_Nesting;
    return hit;
}

} // namespace tessal
