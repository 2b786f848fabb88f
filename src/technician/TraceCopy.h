#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <memory>

namespace platform {
class FileCopy;
}

/// Copies the files of a folder into another one, a portion in each turn of the event loop: the bus
/// goes on, and the copying can be stopped.
class TraceCopy : public QObject {
    Q_OBJECT
public:
    enum class State { Running, Complete, Stopped, Failed };

    /// Begins to copy all files of `from`; `to` is there.
    TraceCopy(const QString& from, const QString& to, QObject* parent);
    ~TraceCopy() override;

    void Stop();
    State Outcome() const { return state_; }
    const QString& Target() const { return to_; }
    /// Files that are whole on the medium, and all.
    int Files() const { return files_; }
    int AllFiles() const { return allFiles_; }
    /// Bytes copied of all files.
    qint64 Bytes() const;
    /// Number of the run-time error that ended the copying, 0 for none, and the file.
    int Error() const { return error_; }
    const QString& FileName() const { return name_; }

Q_SIGNALS:
    /// A portion was copied, or the outcome is there.
    void Changed();

private:
    void Advance();
    void End(State state);

    QString from_;
    QString to_;
    QStringList waiting_;
    QString name_;
    std::unique_ptr<platform::FileCopy> file_;
    QTimer timer_;
    State state_ = State::Running;
    int files_ = 0;
    int allFiles_ = 0;
    qint64 bytes_ = 0;
    int error_ = 0;
};
