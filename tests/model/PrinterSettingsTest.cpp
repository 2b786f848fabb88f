#include "model/PrinterSettings.h"

#include <gtest/gtest.h>

namespace {

using PortKind = PrinterSettings::PortKind;

PrinterSettings Of(const char* text) {
    return PrinterSettings::Of(QString::fromLatin1(text));
}

} // namespace

TEST(PrinterSettingsTest, ATextThatIsWholeComesBackAsItWas) {
    for (const char* text :
         {"COM1:9600,N,8,1", "COM255:1200,O,7,2", "COM2:19200,E,8,1.5", "LPT1:", "LPT12:", ""}) {
        EXPECT_EQ(Of(text).Text(), QString::fromLatin1(text));
        EXPECT_TRUE(Of(text).IsComplete()) << text;
    }
    EXPECT_EQ(Of("com2:9600,n,8,1").Text(), QStringLiteral("COM2:9600,N,8,1"));
    EXPECT_EQ(Of("LPT3:9600,N,8,1").Text(), QStringLiteral("LPT3:"));
    EXPECT_EQ(Of("LPT3:").PortName(), QStringLiteral("LPT3"));
    EXPECT_EQ(Of("USB1:").kind, PortKind::None);
}

TEST(PrinterSettingsTest, WhatCannotBeReadIsMissing) {
    for (const char* text : {"COM", "COMx:9600,N,8,1", "COM0:9600,N,8,1", "COM1", "COM1:9600",
                             "COM1:fast,N,8,1", "COM1:9600,NE,8,1", "COM1:9600,8,N,1", "LPT:"})
        EXPECT_FALSE(Of(text).IsComplete()) << text;
    const PrinterSettings swapped = Of("COM1:9600,8,N,1");
    EXPECT_EQ(swapped.parity + swapped.dataBits, QString());
    EXPECT_EQ(swapped.speed + u' ' + swapped.stopBits, QStringLiteral("9600 1"));
}

TEST(PrinterSettingsTest, OnlyTheChosenKindCounts) {
    PrinterSettings settings = Of("LPT1:");
    settings.speed = QStringLiteral("1200");
    EXPECT_TRUE(settings == Of("LPT1:"));
    settings.kind = PortKind::Serial;
    EXPECT_FALSE(settings == Of("LPT1:"));
}
