#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Input.h"
#include "model/ChannelSheet.h"
#include "model/ConfigClass.h"
#include "platform/RunTimeError.h"

using Fuzz::Require;
namespace errors = platform::errors;

namespace {

// What a sheet has changed is put back: the language lets an explicit instantiation name what is
// private.
template <auto Member> struct Opened {
    friend const QSet<int>& ChangedBy(const ChannelSheetImport& sheet) { return sheet.*Member; }
};
const QSet<int>& ChangedBy(const ChannelSheetImport& sheet);
template struct Opened<&ChannelSheetImport::changed_>;

/// A run in so many writes a sheet and reads it again, which takes a thousand times the others.
constexpr int ReturnOneIn = 1009;

/// One object for all runs: making its channels takes a hundred times as long as most sheets.
ConfigClass& Site() {
    static ConfigClass site;
    return site;
}

void PutBack(int panel, int channel) {
    static const ConfigClass unchanged;
    Site().Panel(panel).Channel(channel) = unchanged.Panel(panel).Channel(channel);
}

void CheckReturn() {
    ConfigClass& site = Site();
    const ChannelSheetExport written(site);
    if (written.LostPanel() > 0)
        return;
    site.setModified(false);
    ChannelSheetImport sheet(site);
    sheet.Take(written.Bytes());
    Require(sheet.Lines() == written.Lines() && sheet.Changed() == 0 && !site.Modified(),
            "a sheet gives back what it was written from");
}

void TakeSheet(const QByteArray& bytes, bool thenReturn) {
    ChannelSheetImport sheet(Site());
    try {
        sheet.Take(bytes);
        Require(sheet.BadLine() == 0, "what goes through has no bad line");
    } catch (const platform::RunTimeError& error) {
        Require(error.Number() == errors::Subscript || error.Number() == errors::TypeMismatch ||
                    error.Number() == errors::InvalidPropertyValue,
                "a bad line is told by an error that is known");
        Require(sheet.BadLine() > 0 && !sheet.BadColumn().isEmpty(), "a bad line is told");
    }
    Require(sheet.Changed() <= sheet.Lines(), "a line changes one channel");
    if (thenReturn)
        CheckReturn();
    constexpr int Row = PanelClass::MaxChannel + 1;
    for (const int place : ChangedBy(sheet))
        PutBack(place / Row, place % Row);
}

/// Two texts, from bytes up to a NUL each, and numbers as a site file may bring them.
void FillChannel(ChannelClass& channel, Input& input) {
    channel.setAlmPrio(qint16(input.Word()));
    channel.setReactTpo(input.Long());
    const QList<QByteArray> texts = input.Rest().split('\0');
    channel.setScreenText(platform::FromCodePage(texts.value(0)));
    channel.setPrintText(platform::FromCodePage(texts.value(1)));
}

} // namespace

int FuzzSheet(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    Input input(data, size);
    const bool isSheet = (input.Byte() & 1) == 0;
    const bool thenReturn = input.IsRare(ReturnOneIn);
    if (isSheet) {
        TakeSheet(input.Rest(), thenReturn);
    } else if (thenReturn) {
        FillChannel(Site().Panel(2).Channel(3), input);
        CheckReturn();
        PutBack(2, 3);
    }
    return 0;
}
