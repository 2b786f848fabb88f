#pragma once

#include <QString>
#include <QStringList>
#include <optional>

/// The answer that stood in a dialog when it was taken away, kept for the same question. Another
/// question, or half an hour, makes it worthless.
class Interrupted {
public:
    void Keep(const QStringList& question, const QString& answer);
    /// Gives the answer to this question once, and drops whatever is kept.
    std::optional<QString> Take(const QStringList& question);

private:
    QStringList question_;
    QString answer_;
    qint64 since_ = 0;
};
