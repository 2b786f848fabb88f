#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Input.h"
#include "model/ConfigClass.h"
#include "model/SiteFile.h"

#include <exception>

using Fuzz::Require;

namespace {

// A site is read from memory here: the language lets an explicit instantiation name what is
// private.
template <auto ReadMember, auto WriteMember> struct Opened {
    friend qint32 ReadSite(ConfigClass& site, SiteFileReader& file) {
        return (site.*ReadMember)(file);
    }
    friend bool WriteSite(ConfigClass& site, SiteFileWriter& file) {
        return (site.*WriteMember)(file);
    }
};
qint32 ReadSite(ConfigClass& site, SiteFileReader& file);
bool WriteSite(ConfigClass& site, SiteFileWriter& file);
template struct Opened<&ConfigClass::ReadAll, &ConfigClass::Write>;

constexpr qsizetype SignatureEnd = 32;
constexpr qsizetype HeaderEnd = 1024;
constexpr qsizetype ChannelSize = 30;
constexpr qsizetype PanelSize = 12 + PanelClass::MaxChannel * ChannelSize;
constexpr qsizetype PanelsEnd = HeaderEnd + qsizetype(ConfigClass::PanelCount) * PanelSize;
constexpr qsizetype TextsEnd = PanelsEnd +
                               qsizetype(ConfigClass::BiblioCount) * ConfigClass::BiblioWidth +
                               qsizetype(ConfigClass::ConsigneCount) * ConfigClass::ConsigneWidth;
constexpr int MaxRules = 32767;

/// The file of a new site.
const QByteArray& NewFile() {
    static const QByteArray bytes = [] {
        ConfigClass site;
        SiteFileWriter file;
        WriteSite(site, file);
        return file.Bytes();
    }();
    return bytes;
}

/// Sections of a new site, then the input, then zeros, so that the far sections are reached by
/// small inputs. Few inputs reach beyond the panels: those cost a hundred times the others.
QByteArray FileOf(Input& input) {
    static constexpr qsizetype Starts[] = {0,         SignatureEnd, SignatureEnd, HeaderEnd,
                                           PanelsEnd, TextsEnd,     TextsEnd,     HeaderEnd};
    const int form = input.Byte();
    const bool far = (form & 0x38) == 0x38 && input.IsRare();
    const qsizetype start = far ? Starts[form & 7] : Starts[form & 3];
    QByteArray bytes = NewFile().left(start) + input.Rest();
    if ((form & 0x40) != 0)
        bytes += QByteArray(HeaderEnd, '\0');
    if (far && (form & 0x80) != 0)
        bytes = bytes.leftJustified(TextsEnd + 2, '\0');
    return bytes;
}

qint32 ReadBytes(ConfigClass& site, const QByteArray& bytes) {
    site.Mirrors().RemoveAll();
    try {
        SiteFileReader file(bytes);
        return ReadSite(site, file);
    } catch (const std::exception&) {
        return ConfigClass::ReadFailed;
    }
}

void CheckReturn(ConfigClass& site) {
    SiteFileWriter file;
    Require(WriteSite(site, file), "a site that was read can be written");
    Require(file.Position() >= TextsEnd, "a file has all sections");
    static ConfigClass again;
    Require(ReadBytes(again, file.Bytes()) == ConfigClass::ReadDone,
            "a site that was written can be read");
    Require(again.Mirrors().Count() == site.Mirrors().Count(), "mirror rules come back");
    Require(again.UserCount() == site.UserCount(), "users come back");
    Require(again.BusSettings() == site.BusSettings() || site.BusSettings().isEmpty(),
            "the bus comes back");
    for (int i = 1; i <= site.UserCount(); ++i)
        Require(again.UserLevel(i) == site.UserLevel(i), "a user's level comes back");
    for (int i = 1; i <= ConfigClass::PanelCount; ++i) {
        const PanelClass& panel = site.Panel(i);
        Require(again.Panel(i).Title() == panel.Title() &&
                    again.Panel(i).Model() == panel.Model() &&
                    again.Panel(i).Active() == panel.Active(),
                "a panel comes back");
        const ChannelClass& channel = panel.Channel(i % PanelClass::MaxChannel + 1);
        Require(again.Panel(i).Channel(i % PanelClass::MaxChannel + 1).ScreenText() ==
                    channel.ScreenText(),
                "a channel comes back");
    }
}

} // namespace

int FuzzSite(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    // One object for all runs: making its panels costs more than most runs. Reading replaces all
    // of it but the mirror rules.
    static ConfigClass site;
    Input input(data, size);
    const qint32 result = ReadBytes(site, FileOf(input));
    Require(site.Mirrors().Count() <= MaxRules, "the rules are as many as a word counts");
    if (result == ConfigClass::ReadDone)
        CheckReturn(site);
    else
        Require(result == ConfigClass::ReadFailed || result == ConfigClass::NotASiteFile ||
                    result == ConfigClass::LaterVersion,
                "a result is one of those known");
    return 0;
}
