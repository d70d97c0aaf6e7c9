// SPDX-License-Identifier: MIT
// Where each identity stands in a shape list, so that a look-up by identity on a big drawing
// is not a search of the whole list.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace tessal {

class TMyShape;

// Identities are handed out from a counter, so a table by identity holds the first place of
// each. Shapes appended to the list are taken in when next asked; any other change of the
// list, or of a listed shape's identity, must be told through Forget.
class TIdPlaces
{
public:
    using TList = std::vector<std::unique_ptr<TMyShape>>;

    void Forget()
    {
        m_Places.clear();
        m_Covered = 0;
    }
    // The first place in list of a shape with identity id, checked against the list; -1 when
    // the table knows none, and the caller searches then: an identity far beyond the number
    // of shapes is left out of the table rather than given room.
    std::int32_t Find(const TList &list, std::int32_t id);

private:
    std::vector<std::int32_t> m_Places; // by identity, -1 for none
    std::size_t m_Covered = 0;          // list places taken in
};

} // namespace tessal
