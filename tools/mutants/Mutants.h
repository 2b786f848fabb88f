#pragma once

// The switches of the faults that tools/mutants puts into a copy of the sources.

#include <cstdlib>

namespace mutants {

constexpr int MaxFaults = 16384;
/// What was reached since the listener last cleared it.
inline unsigned char Reached[MaxFaults];

/// Whether fault `number` is the one of this run: MUTANTS_ACTIVE of the environment.
inline bool On(int number) {
    static const int active = [] {
        const char* text = std::getenv("MUTANTS_ACTIVE");
        return text == nullptr ? -1 : std::atoi(text);
    }();
    Reached[number] = 1;
    return number == active;
}

// Each with the edge on the other side when its fault is on.
template <class A, class B> bool Less(int number, const A& a, const B& b) {
    return On(number) ? a <= b : a < b;
}
template <class A, class B> bool LessEqual(int number, const A& a, const B& b) {
    return On(number) ? a < b : a <= b;
}
template <class A, class B> bool Greater(int number, const A& a, const B& b) {
    return On(number) ? a >= b : a > b;
}
template <class A, class B> bool GreaterEqual(int number, const A& a, const B& b) {
    return On(number) ? a > b : a >= b;
}

} // namespace mutants
