#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

/// A named pipe in place of a printer.
class PipePrinter {
public:
    explicit PipePrinter(QString path)
        : path_(std::move(path)) {
        EXPECT_EQ(mkfifo(QFile::encodeName(path_).constData(), 0600), 0);
    }
    ~PipePrinter() { close(file_); }
    PipePrinter(const PipePrinter&) = delete;
    PipePrinter& operator=(const PipePrinter&) = delete;

    void SwitchOn() {
        file_ = open(QFile::encodeName(path_).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        EXPECT_GE(file_, 0);
    }
    void SwitchOff() { close(std::exchange(file_, -1)); }
    /// Takes nothing any more.
    void Stick() const {
        const QByteArray block(4096, '#');
        for (qsizetype size = block.size(); size > 0; size /= 2) {
            while (write(file_, block.constData(), size_t(size)) > 0)
                continue;
        }
    }
    /// All that was printed up to now, without what it stuck with.
    QByteArray Paper() {
        QByteArray bytes(4096, '\0');
        for (ssize_t count = 1; count > 0;) {
            count = read(file_, bytes.data(), size_t(bytes.size()));
            paper_ += bytes.left(qMax<qsizetype>(count, 0)).replace('#', "");
        }
        return paper_;
    }
    /// What was printed since the last look.
    QByteArray Taken() {
        Paper();
        return std::exchange(paper_, {});
    }

private:
    QString path_;
    QByteArray paper_;
    int file_ = -1;
};
