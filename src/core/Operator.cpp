#include "core/Operator.h"

#include <utility>

namespace Operator {

namespace {
quint64 touch = 0;
quint64 last = 0;
} // namespace

bool Acts() {
    return touch != 0;
}

quint64 Touch() {
    return touch;
}

Acting::Acting()
    : before_(std::exchange(touch, touch != 0 ? touch : ++last)) {}

Acting::~Acting() {
    touch = before_;
}

Away::Away()
    : before_(std::exchange(touch, 0)) {}

Away::~Away() {
    touch = before_;
}

} // namespace Operator
