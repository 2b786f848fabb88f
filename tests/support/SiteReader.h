#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <QStringList>
#include <QtEndian>
#include <array>
#include <gtest/gtest.h>

/// Reads a site file by its bytes alone, without the program's own reader, so that what a screen
/// saved is judged by somebody else. Fields that no test asks for are read past.
struct SiteReader {
    struct Channel {
        QString screenText, printText;
        int helpNum, bibNum, scrAlm, prtAlm, histo, klaxon, almPrio, react, reactTpo, typeImp;
    };
    struct Panel {
        int numero, model;
        QString title;
        int titleColor, active;
        std::array<Channel, 25> channels;
    };

    explicit SiteReader(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        bytes_ = file.readAll();
        ReadHead();
        for (int number = 1; number <= 64; ++number)
            panels[size_t(number)] = ReadPanel();
        for (int i = 0; i < 64; ++i)
            biblio += Text(24);
        for (int i = 0; i < 48; ++i)
            consigne += Text(1024);
        const int rules = Word();
        for (int i = 0; i < rules; ++i) {
            const std::array<int, 5> rule{Word(), Word(), Word(), Word(), Word()};
            mirrors += rule;
        }
        EXPECT_TRUE(whole_) << "cut short";
        EXPECT_EQ(at_, bytes_.size()) << "something behind the rules";
    }

    QString busSettings, prtSettings, printerName;
    int autoStart = 0;
    std::array<int, 100> sounds{};
    int screenMask = 0, klaxonMask = 0, printerMask = 0, histoMask = 0;
    int inactivity = 0;
    QStringList initStrings, initCodes;
    std::array<Panel, 65> panels;
    QStringList biblio, consigne;
    /// Source panel and channel, destination panel and channel, kind.
    QList<std::array<int, 5>> mirrors;

private:
    static constexpr qsizetype HeadSize = 1024;

    void ReadHead() {
        EXPECT_EQ(Text(24), QStringLiteral("Korvanelle II"));
        at_ = 32;
        busSettings = String();
        String();
        autoStart = Word();
        Word();
        for (int& sound : sounds)
            sound = Word();
        for (int* mask : {&screenMask, &klaxonMask, &printerMask, &histoMask})
            *mask = quint8(Take(1)[0]);
        Take(1);
        const int users = Word();
        for (int i = 0; i < users; ++i) {
            String();
            String();
            Long();
        }
        prtSettings = String();
        Word();
        for (QStringList* list : {&initStrings, &initCodes}) {
            for (int i = 0; i < 8; ++i)
                *list += String();
        }
        printerName = String();
        inactivity = Word();
        at_ = qMax(at_, HeadSize);
    }
    Panel ReadPanel() {
        Panel panel{};
        panel.numero = quint8(Take(1)[0]);
        panel.model = quint8(Take(1)[0]);
        panel.title = String();
        panel.titleColor = Long();
        panel.active = Word();
        for (int number = 1; number <= 24; ++number) {
            Channel& channel = panel.channels[size_t(number)];
            channel.screenText = String();
            channel.printText = String();
            for (int* field : {&channel.helpNum, &channel.bibNum, &channel.scrAlm, &channel.prtAlm,
                               &channel.histo, &channel.klaxon, &channel.almPrio, &channel.react})
                *field = Word();
            channel.reactTpo = Long();
            channel.typeImp = Word();
        }
        return panel;
    }
    QByteArray Take(qsizetype count) {
        whole_ = whole_ && at_ + count <= bytes_.size();
        const QByteArray taken = bytes_.mid(at_, count).leftJustified(count, char(0));
        at_ += count;
        return taken;
    }
    int Word() { return qFromLittleEndian<qint16>(Take(2).constData()); }
    int Long() { return qFromLittleEndian<qint32>(Take(4).constData()); }
    QString String() { return QString::fromLatin1(Take(qBound(0, Long(), 100000))); }
    QString Text(int width) { return QString::fromLatin1(Take(width)).remove(QChar(0)).trimmed(); }

    QByteArray bytes_;
    qsizetype at_ = 0;
    bool whole_ = true;
};
