#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Input.h"
#include "model/ChannelSheet.h"
#include "model/ConfigClass.h"
#include "platform/RunTimeError.h"

using Fuzz::Require;
namespace errors = platform::errors;

namespace {

void TakeSheet(ConfigClass& site, const QByteArray& bytes) {
    ChannelSheetImport sheet(site);
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
}

/// Two texts, from bytes up to a NUL each, and numbers as a site file may bring them.
void FillChannel(ChannelClass& channel, Input& input) {
    channel.setAlmPrio(qint16(input.Word()));
    channel.setReactTpo(input.Long());
    const QList<QByteArray> texts = input.Rest().split('\0');
    channel.setScreenText(platform::FromCodePage(texts.value(0)));
    channel.setPrintText(platform::FromCodePage(texts.value(1)));
}

void CheckReturn(ConfigClass& site) {
    const ChannelSheetExport written(site);
    if (written.LostPanel() > 0)
        return;
    site.setModified(false);
    ChannelSheetImport sheet(site);
    sheet.Take(written.Bytes());
    Require(sheet.Lines() == written.Lines() && sheet.Changed() == 0 && !site.Modified(),
            "a sheet gives back what it was written from");
}

} // namespace

int FuzzSheet(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    Input input(data, size);
    ConfigClass site;
    const bool filled = (input.Byte() & 1) != 0;
    if (filled)
        FillChannel(site.Panel(2).Channel(3), input);
    else
        TakeSheet(site, input.Rest());
    // To write a sheet and to read it again costs a run a hundred times the others.
    if (filled || input.IsRare())
        CheckReturn(site);
    return 0;
}
