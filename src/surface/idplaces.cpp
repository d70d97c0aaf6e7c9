// SPDX-License-Identifier: MIT
// The table of first places by identity, taken in from the end of the list it last saw.
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
            m_Places.resize(std::size_t(each) + 1, -1);
        if (m_Places[std::size_t(each)] < 0)
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

} // namespace tessal
