#pragma once

#include <QDateTime>
#include <QString>
#include <memory>
#include <optional>

namespace platform {
class BackgroundTask;
}

/// The daily care of the second folder: old histories go, new ones are copied. It lies on a stick
/// or on another machine, so that each look at it may take long: all is done on a thread of its
/// own, and the bus goes on.
class SecondFolder {
public:
    SecondFolder();
    ~SecondFolder();

    /// Begins to care for a folder. Histories there that were last written before the limit go. A
    /// care that still goes on is not disturbed; that is noted in the trace.
    void Begin(const QString& folder, const std::optional<QDateTime>& limit);
    /// Tells what became of it, once; called each second. A folder that isn't there is noted in the
    /// trace. Throws RunTimeError for what else went wrong last.
    void Look();
    /// Something is under way or not told.
    bool IsBusy() const { return task_ != nullptr; }

private:
    void NoteNotCopied() const;

    QString folder_;
    std::unique_ptr<platform::BackgroundTask> task_;
};
