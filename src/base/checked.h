#pragma once
// Bounds-checked table access. An index outside a table raises "Subscript out of range" (9) on
// the session's error state and hands back a scratch element, so a bad file can never make the
// program read or write outside a buffer.

#include "base/runtime_error.h"

#include <array>
#include <cstddef>
#include <vector>

namespace torquil {

template <class T> T& scratchElement() {
    static thread_local T scratch{};
    scratch = T{};
    return scratch;
}

template <class T>
T& checkedAt(std::vector<T>& table, long long index, ErrorState& errors, const char* what) {
    if (index < 0 || index >= static_cast<long long>(table.size())) {
        errors.raise(err::SubscriptOutOfRange, what);
        return scratchElement<T>();
    }
    return table[static_cast<std::size_t>(index)];
}

template <class T>
[[nodiscard]] const T& checkedAt(const std::vector<T>& table, long long index, ErrorState& errors,
                                 const char* what) {
    if (index < 0 || index >= static_cast<long long>(table.size())) {
        errors.raise(err::SubscriptOutOfRange, what);
        return scratchElement<T>();
    }
    return table[static_cast<std::size_t>(index)];
}

template <class T, std::size_t N>
T& checkedAt(std::array<T, N>& table, long long index, ErrorState& errors, const char* what) {
    if (index < 0 || index >= static_cast<long long>(N)) {
        errors.raise(err::SubscriptOutOfRange, what);
        return scratchElement<T>();
    }
    return table[static_cast<std::size_t>(index)];
}

// Grows or shrinks the table to hold indexes 0..last, keeping the elements it already holds.
template <class T>
void resizeToLast(std::vector<T>& table, long long last, ErrorState& errors, const char* what) {
    if (last < 0 || last > 100'000'000) {
        errors.raise(err::SubscriptOutOfRange, what);
        return;
    }
    table.resize(static_cast<std::size_t>(last) + 1);
}

} // namespace torquil
