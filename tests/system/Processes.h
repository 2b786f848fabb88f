#pragma once

#include "core/Config.h"
#include "core/SLVfonctions.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/CodePage.h"
#include "platform/Folders.h"
#include "support/PrintText.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>

/// The simulator as a process of its own, with its commands on standard input.
class SimulatorProcess {
public:
    SimulatorProcess(const QString& link, const QStringList& models) {
        QStringList arguments = {"--link", link};
        for (const QString& model : models)
            arguments += {"--model", model};
        process_.start(QStringLiteral(KORVANELLE_BUILD_DIR "/simulator/korvanelle-sim"), arguments);
        EXPECT_TRUE(process_.waitForStarted());
        EXPECT_FALSE(WaitFor("ready").isEmpty());
    }
    ~SimulatorProcess() {
        process_.terminate();
        process_.waitForFinished();
    }

    void Do(const QByteArray& command) {
        process_.write(command + '\n');
        process_.waitForBytesWritten();
    }
    /// Waits for a line that begins so; gives it, or nothing after a minute.
    QByteArray WaitFor(const QByteArray& head) {
        const QDeadlineTimer deadline(60000);
        while (!deadline.hasExpired()) {
            output_ += process_.readAllStandardOutput();
            const qsizetype at = ("\n" + output_).indexOf("\n" + head);
            if (at >= 0 && output_.indexOf('\n', at) > 0) {
                QByteArray line = output_.mid(at, output_.indexOf('\n', at) - at);
                output_ = output_.mid(output_.indexOf('\n', at) + 1);
                return line;
            }
            process_.waitForReadyRead(20);
        }
        return {};
    }
    QByteArray Ask(const QByteArray& command, const QByteArray& head) {
        Do(command);
        return WaitFor(head);
    }

private:
    QProcess process_;
    QByteArray output_;
};

/// Section of the settings that keeps the queue over an end of the program.
inline const QString Pending = "PendingCommands";

/// Lines of all files of a pattern, in the order of their names.
inline QStringList LinesIn(const QDir& dir, const QString& pattern) {
    QStringList lines;
    for (const QString& name : dir.entryList({pattern}, QDir::Files, QDir::Name)) {
        QFile file(dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        lines += platform::FromCodePage(file.readAll())
                     .split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    }
    return lines;
}

/// A folder that the program is installed into, with a site of its own.
class RunFolder {
public:
    RunFolder() {
        // Another build can be put to the test in place of this one's.
        const QString program = qEnvironmentVariable(
            "KORVANELLE_PROGRAM", QStringLiteral(KORVANELLE_BUILD_DIR "/src/korvanelle"));
        const QString target = Path("korvanelle");
        EXPECT_TRUE(QFile::copy(program, target));
        EXPECT_TRUE(QFile::copy(QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg"),
                                Path("korvanelle.cfg")));
        platform::OverrideApplication(folder_.path(), "korvanelle");
        IniWrite("Ports", "COM1", Bus());
    }
    ~RunFolder() { platform::OverrideApplication(QString(), QString()); }

    QString Path(const QString& name) const { return folder_.filePath(name); }
    QString Bus() const { return Path("bus"); }

    QStringList Trace() const { return LinesIn(Path("Trace"), "*.log"); }
    QStringList History() const { return LinesIn(Path(QString()), "Histo*.his"); }

private:
    QTemporaryDir folder_;
};

/// The installed program, offscreen.
class ProgramProcess {
public:
    /// `variables` are further ones of its environment.
    explicit ProgramProcess(const RunFolder& folder, const QMap<QString, QString>& variables = {},
                            const QStringList& arguments = {}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        for (const auto& [name, value] : variables.asKeyValueRange())
            environment.insert(name, value);
        process_.setProcessEnvironment(environment);
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(folder.Path("korvanelle"), arguments);
        EXPECT_TRUE(process_.waitForStarted());
    }
    ~ProgramProcess() { Kill(); }
    void Kill() {
        process_.kill();
        process_.waitForFinished();
    }
    /// Ends it as the system does; gives its exit status.
    int Terminate() {
        process_.terminate();
        EXPECT_TRUE(process_.waitForFinished(60000));
        return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }
    void Signal(int number) { ::kill(pid_t(process_.processId()), number); }
    bool WaitForEnd(int milliseconds) { return process_.waitForFinished(milliseconds); }
    int ExitCode() const { return process_.exitCode(); }
    qint64 Number() const { return process_.processId(); }
    bool Running() const { return process_.state() == QProcess::Running; }

private:
    QProcess process_;
};

/// Waits until a condition holds, at most a minute or as long as told: a machine under load is
/// slow.
inline bool Eventually(const std::function<bool()>& condition, int seconds = 60) {
    const QDeadlineTimer deadline(qint64(seconds) * 1000);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(20);
    }
    return true;
}

/// The installed program with a site that starts its bus by itself.
class PlantTest : public ::testing::Test {
protected:
    PlantTest() {
        EXPECT_TRUE(opened);
        site.setAutoStart(true);
    }

    /// An active panel of model `Q7100`.
    PanelClass& Put(int address) {
        PanelClass& panel = site.Panel(address);
        panel.setModel(Models::Q7100);
        panel.setActive(true);
        return panel;
    }
    void Save() { EXPECT_EQ(site.Save(CurrentConfigFile()), ConfigClass::Saved); }
    QStringList Traced(const QString& part) const { return folder.Trace().filter(part); }
    /// Waits for lines of the trace. The first start of a full bus takes half a minute.
    bool Comes(const QString& part, int times = 1) const {
        return Eventually([&] { return Traced(part).size() >= times; }, 120);
    }
    bool FileComes(const QString& name) const {
        return Eventually([&] { return QFile::exists(folder.Path(name)); });
    }
    /// The start is through: its last file is there.
    bool Starts() const { return FileComes("AlarmSound99.wav"); }

    RunFolder folder;
    /// A new site takes its settings out of the base.
    const bool opened = Config::OpenConfigBase();
    ConfigClass site;
};
