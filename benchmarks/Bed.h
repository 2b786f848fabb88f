#pragma once

#include "core/Config.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Trace.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "platform/Clock.h"
#include "platform/Folders.h"
#include "platform/Sound.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

/// The machine's clock without the mandated rest between frames, so that what is measured is the
/// work.
class RestlessClock : public platform::Clock {
public:
    RestlessClock()
        : machine_(platform::Clock::Current()) {
        platform::Clock::Install(this);
    }
    ~RestlessClock() override { platform::Clock::Install(nullptr); }
    RestlessClock(const RestlessClock&) = delete;
    RestlessClock& operator=(const RestlessClock&) = delete;

    platform::DateTime Now() const override { return machine_.Now(); }
    int OffsetFromUtc() const override { return machine_.OffsetFromUtc(); }
    qint64 MonotonicMs() const override { return machine_.MonotonicMs(); }
    void Sleep(int) override {}

private:
    platform::Clock& machine_;
};

/// A run folder with the built base, an open trace and a full site: 64 panels, every text at its
/// length, 200 mirror rules.
class Bed {
public:
    Bed() {
        const QString name = QStringLiteral("korvanelle");
        QFile::copy(QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg"),
                    folder_.filePath(QStringLiteral("korvanelle.cfg")));
        platform::OverrideApplication(folder_.path(), name);
        Config::OpenConfigBase();
        Global::ReadMarks();
        Global::Get().sound = std::make_unique<platform::SilentSound>();
        Global::setConfiguration(std::make_unique<ConfigClass>());
        Messages::Install([](const QString& text, int, bool) {
            std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
            return int(Messages::Ok);
        });
        FillSite();
        Trace::OpenToday();
    }
    ~Bed() {
        Messages::Install(nullptr);
        Global::setConfiguration(nullptr);
        Config::CloseConfigBase();
        platform::OverrideApplication(QString(), QString());
    }

    QString Path(const QString& name) const { return folder_.filePath(name); }

private:
    static void FillSite() {
        ConfigClass& site = Global::Configuration();
        const QString text(40, u'x');
        for (int bit = 0; bit <= 4; ++bit) {
            site.setOptionScreen(bit, true);
            site.setOptionHisto(bit, true);
        }
        for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
            PanelClass& panel = site.Panel(number);
            panel.setTitle(text);
            for (int channel = 1; channel <= 24; ++channel) {
                panel.Channel(channel).setScreenText(text);
                panel.Channel(channel).setPrintText(text);
                panel.Channel(channel).setScrAlm(true);
                panel.Channel(channel).setBibNum(qint16(channel));
            }
            site.setBiblio(number, text);
        }
        for (int number = 1; number <= ConfigClass::ConsigneCount; ++number)
            site.setConsigne(number, QString(1000, u'y'));
        for (int rule = 0; rule < 200; ++rule)
            site.Mirrors().Add(qint16(1 + rule % 64), qint16(1 + rule % 12), 1, 1, 1);
    }

    QTemporaryDir folder_;
};

/// The simulator with one `Q7100` at address 1.
class Simulator {
public:
    explicit Simulator(const QString& link) {
        process_.start(QStringLiteral(KORVANELLE_BUILD_DIR "/simulator/korvanelle-sim"),
                       {QStringLiteral("--link"), link, QStringLiteral("--quiet"),
                        QStringLiteral("--model"), QStringLiteral("1=Q7100")});
        process_.waitForStarted();
        process_.waitForReadyRead(5000);
    }
    ~Simulator() {
        process_.terminate();
        process_.waitForFinished();
    }

private:
    QProcess process_;
};
