// SPDX-License-Identifier: MIT
// The working shapes (the selection) in the order they were taken, with a membership test
// that does not search the list once the selection is large.
#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <unordered_set>
#include <vector>

namespace tessal {

class TMyShape;

// Reads like the list it holds. A set of the members is made when a large selection is
// first asked about; taking shapes in keeps it, and any other change drops it.
class TWorkingShapes
{
public:
    using TList = std::vector<TMyShape *>;
    using const_iterator = TList::const_iterator;

    // A selection up to this size is searched.
    static constexpr std::size_t SearchedUpTo = 32;

    TWorkingShapes &operator=(std::initializer_list<TMyShape *> shapes)
    {
        m_List = shapes;
        Drop();
        return *this;
    }
    operator const TList &() const { return m_List; }

    const_iterator begin() const { return m_List.begin(); }
    const_iterator end() const { return m_List.end(); }
    std::size_t size() const { return m_List.size(); }
    bool empty() const { return m_List.empty(); }
    TMyShape *front() const { return m_List.front(); }
    TMyShape *back() const { return m_List.back(); }

    bool Contains(const TMyShape *shape) const
    {
        if (m_List.size() <= SearchedUpTo)
            return std::find(m_List.begin(), m_List.end(), shape) != m_List.end();
        if (!m_Made) {
            m_Set.clear();
            m_Set.insert(m_List.begin(), m_List.end());
            m_Made = true;
        }
        return m_Set.contains(shape);
    }

    void push_back(TMyShape *shape)
    {
        m_List.push_back(shape);
        if (m_Made)
            m_Set.insert(shape);
    }
    void insert(const_iterator at, TMyShape *shape)
    {
        m_List.insert(at, shape);
        if (m_Made)
            m_Set.insert(shape);
    }
    void assign(std::size_t count, TMyShape *shape)
    {
        m_List.assign(count, shape);
        Drop();
    }
    void erase(const_iterator at)
    {
        m_List.erase(at);
        Drop();
    }
    template <typename Predicate>
    void EraseIf(Predicate gone)
    {
        std::erase_if(m_List, gone);
        Drop();
    }
    void clear()
    {
        m_List.clear();
        Drop();
    }

private:
    void Drop()
    {
        if (m_Made)
            m_Set = {};
        m_Made = false;
    }

    TList m_List;
    mutable std::unordered_set<const TMyShape *> m_Set;
    mutable bool m_Made = false;
};

} // namespace tessal
