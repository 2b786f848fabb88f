#include "screens/touch/Interrupted.h"

#include "platform/Clock.h"

#include <utility>

namespace {
constexpr qint64 LongestMs = 1800000;
} // namespace

void Interrupted::Keep(const QStringList& question, const QString& answer) {
    question_ = question;
    answer_ = answer;
    since_ = platform::Clock::Current().MonotonicMs();
}

std::optional<QString> Interrupted::Take(const QStringList& question) {
    const bool same = !question_.isEmpty() && question_ == question &&
                      platform::Clock::Current().MonotonicMs() - since_ <= LongestMs;
    question_.clear();
    QString answer = std::exchange(answer_, {});
    return same ? std::make_optional(answer) : std::nullopt;
}
