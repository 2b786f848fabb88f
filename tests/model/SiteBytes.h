#pragma once

#include "model/ConfigClass.h"
#include "model/SiteFile.h"
#include "platform/RunTimeError.h"
#include "support/PrintText.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <functional>
#include <gtest/gtest.h>

namespace errors = platform::errors;

/// Puts the bytes of a site file together by hand, without the program's own writer.
class SiteBytes {
public:
    SiteBytes& Byte(int value) {
        bytes.append(char(value));
        return *this;
    }
    SiteBytes& Word(int value) { return Byte(value & 0xFF).Byte((value >> 8) & 0xFF); }
    SiteBytes& Long(qint32 value) { return Word(value & 0xFFFF).Word((value >> 16) & 0xFFFF); }
    SiteBytes& Raw(const QByteArray& raw) {
        bytes.append(raw);
        return *this;
    }
    SiteBytes& Text(const QByteArray& text) { return Long(qint32(text.size())).Raw(text); }
    SiteBytes& Fixed(const QByteArray& text, int width, char pad = ' ') {
        return Raw(text.leftJustified(width, pad, true));
    }

    QByteArray bytes;
};

inline QByteArray Masked(QByteArray text, int key) {
    for (char& c : text)
        c = char(c ^ key);
    return text;
}

/// The part of a site file ahead of the panels.
struct SiteHeader {
    QByteArray signature = "Korvanelle II";
    int majorVersion = 2;
    int minorVersion = 2;
    int revision = 27;
    QByteArray busSettings = "COM3:9600,N,8,2";
    QByteArray prtSettings = "LPT1:";
    int sounds = 100;
    int sound = 7;
    int key = 0x80;
    int userCount = 2;
    QByteArray name = "CHIEF";
    QByteArray pwd = "1234";
    QByteArray secondPrtSettings = "LPT2:";

    QByteArray Bytes() const {
        SiteBytes file;
        file.Fixed(signature, 24).Word(majorVersion).Word(minorVersion).Word(revision).Word(0);
        file.Text(busSettings).Text(prtSettings).Word(-1).Word(0);
        for (int i = 0; i < sounds; ++i)
            file.Word(sound);
        file.Byte(0x1F).Byte(0x03).Byte(0x05).Byte(0x11).Byte(key).Word(userCount);
        for (int i = 0; i < userCount; ++i)
            file.Text(Masked(name, key)).Text(Masked(pwd, key)).Long(i + 1);
        file.Text(secondPrtSettings).Word(132);
        for (int i = 0; i < 8; ++i)
            file.Text(QByteArray("\x1B") + char('A' + i));
        for (int i = 0; i < 8; ++i)
            file.Text(QByteArray("<27>") + char('A' + i));
        file.Text("Matrix").Word(15);
        return file.bytes.leftJustified(1024, '\0');
    }
};

/// Everything behind the header, with each panel and channel as new.
inline QByteArray SiteTail() {
    SiteBytes file;
    for (int panel = 1; panel <= 64; ++panel) {
        file.Byte(panel).Byte(0).Text("").Long(65535).Word(0);
        for (int channel = 1; channel <= 24; ++channel) {
            file.Text("").Text("").Word(0).Word(0).Word(0).Word(0).Word(-1).Word(0).Word(99);
            file.Word(0).Long(0).Word(0);
        }
    }
    file.Raw(QByteArray(64 * 24 + 48 * 1024, '\0'));
    return file.Word(1).Word(3).Word(12).Word(5).Word(4).Word(2).bytes;
}

inline void WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

inline QByteArray FileBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A piece of the site file as the program writes it.
template <class Piece> QByteArray Saved(Piece& piece) {
    SiteFileWriter writer;
    piece.SaveTo(writer);
    return writer.Bytes();
}

/// The number of the run-time error that `body` throws, 0 without one.
int ErrorNumberOf(const std::function<void()>& body);
