// SPDX-License-Identifier: MIT
// The table of first places by name: sorted hashes, each hit checked against the list.
#include <tessal/surface/nameplaces_p.h>

#include <tessal/shapes/shape.h>

#include <QHash>

#include <algorithm>

namespace tessal {

namespace {

std::int32_t Search(const TNamePlaces::TList &list, const QString &name)
{
    for (std::size_t i = 0; i < list.size(); ++i)
        if (list[i] && list[i]->Name() == name)
            return std::int32_t(i);
    return -1;
}

} // namespace

void TNamePlaces::Forget()
{
    m_Entries = {};
    m_Made = false;
    m_Searches = 0;
}

bool TNamePlaces::UpToDate(const TList &list) const
{
    return m_Made && m_Count == list.size() && m_Generation == TMyShape::NameGeneration();
}

void TNamePlaces::Make(const TList &list)
{
    m_Entries.clear();
    m_Entries.reserve(list.size());
    for (std::size_t i = 0; i < list.size(); ++i)
        if (list[i])
            m_Entries.emplace_back(qHash(list[i]->Name()), std::int32_t(i));
    // Equal hashes stay in list order, so the first match of a name is its first place.
    std::sort(m_Entries.begin(), m_Entries.end());
    m_Made = true;
    m_Count = list.size();
    m_Generation = TMyShape::NameGeneration();
}

std::int32_t TNamePlaces::Find(const TList &list, const QString &name)
{
    if (!UpToDate(list)) {
        if (m_Made)
            Forget();
        if (++m_Searches <= SearchesBeforeTable)
            return Search(list, name);
        Make(list);
    }
    const std::size_t hash = qHash(name);
    auto it = std::lower_bound(m_Entries.begin(), m_Entries.end(),
                               std::pair<std::size_t, std::int32_t>(hash, -1));
    for (; it != m_Entries.end() && it->first == hash; ++it)
        if (const TMyShape *shape = list[std::size_t(it->second)].get();
            shape && shape->Name() == name)
            return it->second;
    return -1;
}

} // namespace tessal
