#pragma once

#include <functional>
#include <utility>

/// A value that is edited apart from where it comes from. `read` gives it as the site or the
/// settings hold it, and is asked anew each time.
template <class Value> class WorkingCopy {
public:
    explicit WorkingCopy(std::function<Value()> read)
        : read_(std::move(read))
        , value_(read_()) {}

    Value& operator*() { return value_; }
    const Value& operator*() const { return value_; }
    Value* operator->() { return &value_; }
    const Value* operator->() const { return &value_; }

    Value Original() const { return read_(); }
    bool Differs() const { return !(value_ == read_()); }
    /// Drops what was edited.
    void Reload() { value_ = read_(); }

private:
    std::function<Value()> read_;
    Value value_;
};
