// SPDX-License-Identifier: MIT
// The table of first places by identity, taken in from the end of the list it last saw, and
// the shapes by identity at one moment.
#include <tessal/surface/idplaces_p.h>

#include <tessal/shapes/shape.h>

namespace tessal {

std::int32_t TIdPlaces::Find(const TList &list, std::int32_t id)
{
    if (m_Covered > list.size())
        Forget();
    const std::size_t room = 2 * list.size() + 1024;
    for (; m_Covered < list.size(); ++m_Covered) {
        const TMyShape *shape = list[m_Covered].get();
        const std::int32_t each = shape ? shape->ShapeId() : -1;
        if (each < 0 || std::size_t(each) >= room)
            continue;
        if (std::size_t(each) >= m_Places.size())
            m_Places.resize(std::size_t(each) + 1, None);
        if (m_Places[std::size_t(each)] == None)
            m_Places[std::size_t(each)] = std::int32_t(m_Covered);
    }
    if (id < 0 || std::size_t(id) >= m_Places.size())
        return -1;
    const std::int32_t no = m_Places[std::size_t(id)];
    if (no < 0 || std::size_t(no) >= list.size() || !list[std::size_t(no)] ||
        list[std::size_t(no)]->ShapeId() != id)
        return -1;
    return no;
}

// The first place of an identity may go while a later shape of the same identity stays; which
// one is then first is not known without a search, so the identity is marked lost, and neither
// answered nor given the place of a shape appended later.
void TIdPlaces::Removed(const std::vector<std::int32_t> &newPlace)
{
    for (std::int32_t &place : m_Places) {
        if (place < 0)
            continue;
        const std::int32_t now =
            std::size_t(place) < newPlace.size() ? newPlace[std::size_t(place)] : -1;
        place = now >= 0 ? now : Lost;
    }
    std::size_t covered = 0;
    for (std::size_t p = 0; p < m_Covered && p < newPlace.size(); ++p)
        covered += newPlace[p] >= 0 ? 1 : 0;
    m_Covered = covered;
}

TShapesById::TShapesById(const TIdPlaces::TList &list)
    : m_Near(2 * list.size() + 1024, nullptr)
{
    for (const auto &shape : list) {
        const std::int32_t id = shape->ShapeId();
        if (id >= 0 && std::size_t(id) < m_Near.size()) {
            if (!m_Near[std::size_t(id)])
                m_Near[std::size_t(id)] = shape.get();
        } else {
            m_Far.emplace(id, shape.get());
        }
    }
}

TMyShape *TShapesById::Find(std::int32_t id) const
{
    if (id >= 0 && std::size_t(id) < m_Near.size())
        return m_Near[std::size_t(id)];
    const auto it = m_Far.find(id);
    return it == m_Far.end() ? nullptr : it->second;
}

} // namespace tessal
