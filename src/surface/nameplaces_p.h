// SPDX-License-Identifier: MIT
// Where the first shape of each name stands in a shape list, so that code looking shapes up
// by name on a big drawing does not search the whole list each time.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tessal {

class TMyShape;

// A table of (hash of the name, place) pairs, sorted, made only once look-ups by name keep
// coming: making it costs many searches of the list, so the first look-ups after a change
// search. The table is dropped when the list changes length, when any shape anywhere is
// renamed, and when Forget is called (the list reordered or a shape replaced).
class TNamePlaces
{
public:
    using TList = std::vector<std::unique_ptr<TMyShape>>;

    // Look-ups that search before a table is made.
    static constexpr int SearchesBeforeTable = 16;

    void Forget();
    // The first place in list of a shape named name, or -1.
    std::int32_t Find(const TList &list, const QString &name);

private:
    bool UpToDate(const TList &list) const;
    void Make(const TList &list);

    std::vector<std::pair<std::size_t, std::int32_t>> m_Entries; // (hash, place), sorted
    bool m_Made = false;
    std::size_t m_Count = 0;        // list length the table was made for
    std::uint64_t m_Generation = 0; // renames counted when it was made
    int m_Searches = 0;             // searches since the table was dropped
};

} // namespace tessal
