#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace platform {

/// A program that runs beside this one and takes its orders line by line. It never outlives it.
class Companion : public QObject {
    Q_OBJECT
public:
    explicit Companion(QObject* parent = nullptr);
    ~Companion() override;

    /// Starts it in place of one that runs, and waits until it has said a line; false when none
    /// came within so many milliseconds.
    bool Start(const QString& program, const QStringList& arguments, int milliseconds);
    bool Runs() const;
    /// Number of the process, 0 for none.
    qint64 Number() const { return process_.processId(); }
    void Tell(const QByteArray& line);
    /// Ends it without `Died`, and waits for that.
    void End();

Q_SIGNALS:
    /// It has ended by itself or by another's doing.
    void Died();

private:
    QProcess process_;
};

} // namespace platform
