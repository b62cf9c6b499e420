// Tables with one row for each case of an enumeration, in its declared order, so that a look-up is an index.
//
//     struct PowerRow { PowerAction key; std::string_view name; };
//     constexpr PowerRow powerRows[] = {{PowerAction::sleep, "sleep"}, ...};
//     static_assert(rowsCover(powerRows, PowerAction::preventSleep));
//     rowOf(powerRows, PowerAction::sleep).name == "sleep"
#pragma once

#include <cstddef>

namespace brindlet {

// True if the rows stand in the order of their keys, from the first case to `lastCase`, with none left out.
template <class Row, std::size_t count>
constexpr bool rowsCover(const Row (&rows)[count], decltype(Row::key) lastCase) {
    for (std::size_t index = 0; index < count; ++index)
        if (static_cast<std::size_t>(rows[index].key) != index) return false;
    return rows[count - 1].key == lastCase;
}

template <class Row, std::size_t count>
constexpr const Row& rowOf(const Row (&rows)[count], decltype(Row::key) key) {
    return rows[static_cast<std::size_t>(key)];
}

}  // namespace brindlet
