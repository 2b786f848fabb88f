#pragma once

#include <utility>

/// Stores a value and tells whether it differs from the one before: what a setter raises its
/// change mark by.
template <class T> bool Replace(T& field, T value) {
    if (field == value)
        return false;
    field = std::move(value);
    return true;
}
