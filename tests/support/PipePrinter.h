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
    ~PipePrinter() { SwitchOff(); }
    PipePrinter(const PipePrinter&) = delete;
    PipePrinter& operator=(const PipePrinter&) = delete;

    void SwitchOn() {
        file_ = open(QFile::encodeName(path_).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        EXPECT_GE(file_, 0);
    }
<<<<<<< HEAD
    void SwitchOff() {
        if (file_ >= 0)
            close(std::exchange(file_, -1));
    }
=======
    void SwitchOff() { close(std::exchange(file_, -1)); }
>>>>>>> main
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
<<<<<<< HEAD
    /// The paper is torn off.
    QByteArray TakePaper() {
=======
    /// What was printed since the last look.
    QByteArray Taken() {
>>>>>>> main
        Paper();
        return std::exchange(paper_, {});
    }

private:
    QString path_;
    QByteArray paper_;
    int file_ = -1;
};
