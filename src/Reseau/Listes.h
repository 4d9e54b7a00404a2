// Lists by number, such as the transitions that need each place: all in one piece, since there are many, and most of
// them are short.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace Reseau {

template <class T>
class Listes {
public:
    using Entree = std::pair<std::uint32_t, T>;  ///< the number of a list, and what stands in it

    Listes() = default;
    /// @param nombre of lists
    /// @param entrees those of one list in their order there
    Listes(std::size_t nombre, const std::vector<Entree>& entrees) : debuts_(nombre + 2, 0), entrees_(entrees.size()) {
        for (const Entree& e : entrees) ++debuts_[e.first + 2];
        for (std::size_t i = 2; i < debuts_.size(); ++i) debuts_[i] += debuts_[i - 1];
        for (const Entree& e : entrees) entrees_[debuts_[e.first + 1]++] = e.second;
    }

    std::span<const T> operator[](std::size_t i) const {
        return std::span(entrees_).subspan(debuts_[i], debuts_[i + 1] - debuts_[i]);
    }

private:
    std::vector<std::size_t> debuts_;  // by list; the last one is behind the end
    std::vector<T> entrees_;
};

}  // namespace Reseau
