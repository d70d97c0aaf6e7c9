// SPDX-License-Identifier: MIT
// A class test for scans over every shape of a big drawing.
#pragma once

#include <tessal/shapes/shape.h>

#include <typeinfo>
#include <utility>
#include <vector>

namespace tessal {

// Whether a shape is a T (or of a class derived from it), as dynamic_cast answers, decided
// once per dynamic class: a failed cast walks the class tree, which over a million shapes
// costs more than the rest of a scan. Shapes have single inheritance, so a shape known to
// be a T is one by a static cast.
template <typename T>
class TShapeKind
{
public:
    const T *operator()(const TMyShape *shape)
    {
        if (!shape)
            return nullptr;
        const std::type_info *type = &typeid(*shape);
        for (const auto &[known, is] : m_Known)
            if (known == type)
                return is ? static_cast<const T *>(shape) : nullptr;
        const T *cast = dynamic_cast<const T *>(shape);
        m_Known.emplace_back(type, cast != nullptr);
        return cast;
    }
    T *operator()(TMyShape *shape)
    {
        return const_cast<T *>((*this)(static_cast<const TMyShape *>(shape)));
    }

private:
    // A handful of classes in any drawing.
    std::vector<std::pair<const std::type_info *, bool>> m_Known;
};

} // namespace tessal
