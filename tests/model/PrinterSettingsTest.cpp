#include "model/PrinterSettings.h"

#include "support/PrintText.h"

#include <gtest/gtest.h>

namespace {

using PortKind = PrinterSettings::PortKind;

PrinterSettings Of(const char* text) {
    return PrinterSettings::Of(Text(text));
}

} // namespace

TEST(PrinterSettingsTest, ATextThatIsWholeComesBackAsItWas) {
    for (const char* text :
         {"COM1:9600,N,8,1", "COM255:1200,O,7,2", "COM2:19200,E,8,1.5", "LPT1:", "LPT12:", ""}) {
        EXPECT_EQ(Of(text).Text(), Text(text));
        EXPECT_TRUE(Of(text).IsComplete()) << text;
    }
    EXPECT_EQ(Of("com2:9600,n,8,1").Text(), Text("COM2:9600,N,8,1"));
    EXPECT_EQ(Of("LPT3:9600,N,8,1").Text(), Text("LPT3:"));
    EXPECT_EQ(Of("LPT3:").PortName(), Text("LPT3"));
    EXPECT_EQ(Of("USB1:").kind, PortKind::None);
    // Only the chosen kind counts.
    PrinterSettings settings = Of("LPT1:");
    settings.speed = Text("1200");
    EXPECT_TRUE(settings == Of("LPT1:"));
}

TEST(PrinterSettingsTest, WhatCannotBeReadIsMissing) {
    for (const char* text : {"COM", "COMx:9600,N,8,1", "COM0:9600,N,8,1", "COM1", "COM1:9600",
                             "COM1:fast,N,8,1", "COM1:9600,NE,8,1", "COM1:9600,8,N,1", "LPT:"})
        EXPECT_FALSE(Of(text).IsComplete()) << text;
    const PrinterSettings swapped = Of("COM1:9600,8,N,1");
    EXPECT_EQ(swapped.parity + swapped.dataBits + swapped.speed, Text("9600"));
    EXPECT_EQ(swapped.stopBits, Text("1"));
}
