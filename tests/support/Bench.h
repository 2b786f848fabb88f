#pragma once

#include "core/Boxes.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/Faults.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "model/CurrentConfig.h"
#include "platform/Clock.h"
#include "platform/Folders.h"
#include "platform/Sound.h"
#include "platform/Volumes.h"
#include "support/PrintText.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

/// An application in a folder of its own: the words of the built base in its first language, a
/// clock that stands at noon of 15 March 2024, a new site, an open trace, a silent horn, and a
/// recorder in place of the message box.
class Bench : public ::testing::Test {
protected:
    Bench() {
        const QString name = QStringLiteral("korvanelle");
        static const bool opened = [&] {
            platform::OverrideApplication(QStringLiteral(KORVANELLE_BUILD_DIR), name);
            return Config::OpenConfigBase();
        }();
        EXPECT_TRUE(opened);
        platform::OverrideApplication(folder_.path(), name);
        DateTimes::ReadLocale(QLocale::c());
        Global::Get() = Global::State();
        Global::ReadMarks();
        auto silent = std::make_unique<platform::SilentSound>();
        horn = silent.get();
        Global::Get().sound = std::move(silent);
        Global::setConfiguration(nullptr);
        Messages::Install([this](const QString& text, int, bool) {
            boxes += text;
            return int(Messages::Ok);
        });
        platform::OverrideSpace(platform::Space{50'000'000, 100'000'000});
        Trace::OpenToday();
    }
    ~Bench() override {
        platform::OverrideSpace(std::nullopt);
        platform::OverrideVolumes({});
        Messages::Install(nullptr);
        Boxes::Forget();
        Faults::Forget();
        Global::Get() = Global::State();
        Global::setConfiguration(nullptr);
        platform::OverrideApplication(QString(), QString());
    }

    static ConfigClass& Site() { return Global::Configuration(); }

    /// An active panel that answers, with a title-less set of channels.
    static PanelClass& AddPanel(int address, int model) {
        PanelClass& panel = Site().Panel(address);
        panel.setModel(quint8(model));
        panel.setActive(true);
        panel.setPresent(true);
        return panel;
    }

    /// All bits of the four routing masks.
    static void SetOptions(int screen, int histo, int printer, int klaxon) {
        for (int bit = 0; bit <= 4; ++bit) {
            const auto isSet = [bit](int mask) { return (mask & (1 << bit)) != 0; };
            Site().setOptionScreen(bit, isSet(screen));
            Site().setOptionHisto(bit, isSet(histo));
            Site().setOptionPrinter(bit, isSet(printer));
            Site().setOptionKlaxon(bit, isSet(klaxon));
        }
    }

    QString Path(const QString& name) const { return QDir(folder_.path()).filePath(name); }

    QByteArray BytesOf(const QString& name) const {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void WriteFile(const QString& name, const QByteArray& bytes) const {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
        file.write(bytes);
    }

    /// The lines of a file without their ends; every line must have one.
    QStringList LinesOf(const QString& name) const {
        QStringList lines = QString::fromLatin1(BytesOf(name)).split(QStringLiteral("\r\n"));
        EXPECT_EQ(lines.last(), QString()) << "the last line has no end";
        lines.removeLast();
        return lines;
    }

    QStringList TraceLines() const {
        return LinesOf(QStringLiteral("Trace/") + DateTimes::FileDate(clock.Now()) +
                       QStringLiteral(".log"));
    }

    platform::TestClock clock;
    platform::SilentSound* horn = nullptr;
    QStringList boxes;

private:
    QTemporaryDir folder_;
};

/// A bench on which every message box fails the test, but for those that it takes.
class QuietBench : public Bench {
protected:
    void TearDown() override { EXPECT_EQ(boxes, QStringList()) << "boxes that nobody expected"; }

    /// Takes the boxes up to now.
    QStringList Boxes() { return std::exchange(boxes, {}); }
};
