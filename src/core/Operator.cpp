#include "core/Operator.h"

#include <utility>

namespace Operator {

namespace {
bool acts = false;
} // namespace

bool Acts() {
    return acts;
}

Acting::Acting()
    : before_(std::exchange(acts, true)) {}

Acting::~Acting() {
    acts = before_;
}

Away::Away()
    : before_(std::exchange(acts, false)) {}

Away::~Away() {
    acts = before_;
}

} // namespace Operator
