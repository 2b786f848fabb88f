#include "platform/FileCopy.h"

#include "platform/RunTimeError.h"

#include <QFileInfo>

namespace platform {

namespace {

/// The original, ahead of anything that is made for its copy.
QFile& Opened(QFile& source) {
    if (!source.open(QIODevice::ReadOnly))
        throw RunTimeError(source.exists() ? errors::PathAccess : errors::PathNotFound);
    return source;
}

} // namespace

FileCopy::FileCopy(const QString& from, const QString& to)
    : source_(from)
    , copy_((Opened(source_), to)) {}

bool FileCopy::Advance(qint64 most) {
    if (finished_)
        return false;
    const QByteArray portion = source_.read(most);
    if (portion.isEmpty()) {
        if (source_.error() != QFileDevice::NoError)
            throw RunTimeError(errors::DeviceIo);
        Finish();
        return false;
    }
    copy_.Append(portion);
    copied_ += portion.size();
    return true;
}

/// The copy takes the time of its original: a trace is told by its day.
void FileCopy::Finish() {
    copy_.setTime(QFileInfo(source_).lastModified());
    copy_.Finish();
    finished_ = true;
}

} // namespace platform
