#include "technician/TraceCopy.h"

#include "platform/FileCopy.h"
#include "platform/RunTimeError.h"

#include <QDir>

namespace {
/// A slow stick takes it in some 50 ms.
constexpr qint64 Portion = qint64(128) * 1024;
} // namespace

TraceCopy::TraceCopy(const QString& from, const QString& to, QObject* parent)
    : QObject(parent)
    , from_(from)
    , to_(to)
    , waiting_(QDir(from).entryList(QDir::Files, QDir::Name)) {
    allFiles_ = int(waiting_.size());
    timer_.callOnTimeout([this] { Advance(); });
    timer_.start(0);
}

TraceCopy::~TraceCopy() = default;

qint64 TraceCopy::Bytes() const {
    return bytes_ + (file_ == nullptr ? 0 : file_->Copied());
}

void TraceCopy::Stop() {
    if (state_ == State::Running)
        End(State::Stopped);
}

void TraceCopy::Advance() {
    try {
        if (file_ == nullptr && waiting_.isEmpty()) {
            End(State::Complete);
            return;
        }
        if (file_ == nullptr) {
            name_ = waiting_.takeFirst();
            file_ = std::make_unique<platform::FileCopy>(QDir(from_).filePath(name_),
                                                         QDir(to_).filePath(name_));
        }
        if (!file_->Advance(Portion)) {
            bytes_ += file_->Copied();
            file_.reset();
            ++files_;
        }
        Q_EMIT Changed();
    } catch (const platform::RunTimeError& error) {
        error_ = error.Number();
        End(State::Failed);
    }
}

void TraceCopy::End(State state) {
    timer_.stop();
    file_.reset();
    state_ = state;
    Q_EMIT Changed();
}
