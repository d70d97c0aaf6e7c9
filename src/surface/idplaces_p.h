// SPDX-License-Identifier: MIT
// Where each identity stands in a shape list, so that a look-up by identity on a big drawing
// is not a search of the whole list.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace tessal {

class TMyShape;

// Identities are handed out from a counter, so a table by identity holds the first place of
// each. Shapes appended to the list are taken in when next asked, shapes removed through
// Removed; any other change of the list, or of a listed shape's identity, must be told
// through Forget.
class TIdPlaces
{
public:
    using TList = std::vector<std::unique_ptr<TMyShape>>;

    void Forget()
    {
        m_Places.clear();
        m_Covered = 0;
    }
    // Shapes left the list and the others kept their order: the shape at place p is now at
    // newPlace[p], or gone when that is negative. Walking the table costs far less than
    // taking in every shape again, which visits each shape.
    void Removed(const std::vector<std::int32_t> &newPlace);
    // The first place in list of a shape with identity id, checked against the list; -1 when
    // the table knows none, and the caller searches then: an identity far beyond the number
    // of shapes is left out of the table rather than given room.
    std::int32_t Find(const TList &list, std::int32_t id);

private:
    static constexpr std::int32_t None = -1, Lost = -2;
    std::vector<std::int32_t> m_Places; // by identity: a place, None or Lost
    std::size_t m_Covered = 0;          // list places taken in
};

// The shapes of a list by identity at one moment, made in a single pass for work that looks
// up many identities while it changes the list: a table for identities in the counter's
// usual range, a map for any far beyond it. A duplicated identity answers its first shape.
class TShapesById
{
public:
    explicit TShapesById(const TIdPlaces::TList &list);
    // Null when no shape had the identity.
    TMyShape *Find(std::int32_t id) const;

private:
    std::vector<TMyShape *> m_Near; // by identity
    std::unordered_map<std::int32_t, TMyShape *> m_Far;
};

} // namespace tessal
