// The site file: signature and version, the settings, padding up to a fixed offset, then the
// panels, the texts and the mirror rules. Everything lies packed; there is no checksum.

#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Trace.h"
#include "model/ConfigClass.h"
#include "model/SiteFile.h"
#include "platform/CodePage.h"
#include "platform/FileWriting.h"
#include "platform/RunTimeError.h"

#include <QRandomGenerator>
#include <algorithm>
#include <array>

using platform::RunTimeError;
namespace errors = platform::errors;

namespace {

constexpr int SignatureWidth = 24;
/// Where the panels begin, unless the settings already reach beyond it.
constexpr qsizetype PanelOffset = 1024;
/// The revision that brought a sound for each priority, and what there was before.
constexpr int SoundsRevision = 23;
constexpr size_t FormerSounds = 6;
/// A key is one byte.
constexpr size_t Keys = 256;
/// A user without name and password.
constexpr qsizetype SmallestUser = 12;

qsizetype Padding(qsizetype position) {
    return qMax(PanelOffset - position, qsizetype(0));
}

/// Hides a text from a casual look; its own inverse.
QString PasswordMask(const QString& text, quint8 key) {
    QByteArray bytes = platform::ToCodePage(text);
    for (char& byte : bytes)
        byte = char(quint8(byte) ^ key);
    return platform::FromCodePage(bytes);
}

/// Versions compare as texts: minor 10 sorts below minor 9.
QString VersionText(int majorVersion, int minorVersion) {
    return QStringLiteral("%1.000%2").arg(majorVersion).arg(minorVersion);
}

} // namespace

qint32 ConfigClass::Save(const QString& fileName) {
    if (fileName.isEmpty())
        return SaveFailed;
    qint32 result = SaveFailed;
    ErrorHandling::Guard("ConfigClass.Save", [&] {
        SiteFileWriter writer;
        if (!Write(writer))
            return;
        platform::ReplaceFile(fileName, writer.Bytes());
        // What failed above is still to be saved.
        for (const auto& panel : panels_)
            panel->setModified(false);
        result = Saved;
    });
    return result;
}

bool ConfigClass::Write(SiteFileWriter& file) {
    WriteHeader(file);
    for (int i = 1; i <= PanelCount; ++i) {
        Panel(i).setNumero(quint8(i));
        Panel(i).WriteTo(file);
    }
    for (const QString& text : biblio_)
        file.PutFixedText(text, BiblioWidth);
    for (const QString& text : consigne_)
        file.PutFixedText(text, ConsigneWidth);
    return mirrors_.SaveTo(file);
}

void ConfigClass::WriteHeader(SiteFileWriter& file) const {
    file.PutFixedText(Global::Title, SignatureWidth);
    file.PutWord(Global::VersionMajor);
    file.PutWord(Global::VersionMinor);
    file.PutWord(Global::VersionRevision);
    file.PutWord(0);
    file.PutFileString(busSettings_);
    file.PutFileString(prtSettings_);
    file.PutBoolean(autoStart_);
    file.PutBoolean(printBusResult_);
    for (const qint16 sound : alarmPrioSound_)
        file.PutWord(sound);
    file.PutByte(optionScreen_);
    file.PutByte(optionKlaxon_);
    file.PutByte(optionPrinter_);
    file.PutByte(optionHisto_);
    WriteUsers(file);
    file.PutFileString(prtSettings_);
    file.PutWord(printMaxLen_);
    for (const QString& text : printerInitStrings_)
        file.PutFileString(text);
    for (const QString& text : printerInitCodes_)
        file.PutFileString(text);
    file.PutFileString(printerName_);
    file.PutWord(inactivityTime_);
    file.PutZeros(Padding(file.Position()));
}

/// A random one of those with which every name and code comes back: what a key turns blank at an
/// end is trimmed by whoever reads the file. With too many users for any key those remain that do
/// the least harm.
quint8 ConfigClass::DrawKey() const {
    std::array<int, Keys> losses{};
    const auto count = [&losses](const QString& text) {
        const QByteArray bytes = platform::ToCodePage(text);
        if (bytes.isEmpty())
            return;
        const auto first = quint8(quint8(bytes.front()) ^ quint8(' '));
        const auto last = quint8(quint8(bytes.back()) ^ quint8(' '));
        ++losses[first];
        if (last != first)
            ++losses[last];
    };
    for (int i = 1; i <= UserCount(); ++i) {
        count(UserName(i));
        count(UserPwd(i));
    }
    const int fewest = *std::min_element(losses.begin(), losses.end());
    if (fewest > 0) {
        Trace::Note(
            QStringLiteral("SITE FILE  NAMES AND CODES DAMAGED BY THE KEY: %1").arg(fewest));
        ErrorHandling::Report(QStringLiteral("ConfigClass.DrawKey"), errors::Internal);
    }
    int place =
        QRandomGenerator::global()->bounded(int(std::count(losses.begin(), losses.end(), fewest)));
    int key = 0;
    while (losses[size_t(key)] != fewest || place-- > 0)
        ++key;
    return quint8(key);
}

void ConfigClass::WriteUsers(SiteFileWriter& file) const {
    const quint8 key = DrawKey();
    file.PutByte(key);
    file.PutWord(UserCount());
    for (int i = 1; i <= UserCount(); ++i) {
        file.PutFileString(PasswordMask(UserName(i), key));
        file.PutFileString(PasswordMask(UserPwd(i), key));
        file.PutLong(UserLevel(i));
    }
}

qint32 ConfigClass::Read(const QString& fileName) {
    if (fileName.isEmpty())
        return ReadFailed;
    try {
        SiteFileReader file = SiteFileReader::Open(fileName);
        return ReadAll(file);
    } catch (const std::exception&) {
        return ReadFailed;
    }
}

qint32 ConfigClass::ReadAll(SiteFileReader& file) {
    if (TrimBlanks(file.GetFixedText(SignatureWidth)) != Global::Title)
        return NotASiteFile;
    const int majorVersion = file.GetWord();
    const int minorVersion = file.GetWord();
    const int revision = file.GetWord();
    if (VersionText(majorVersion, minorVersion) >
        VersionText(Global::VersionMajor, Global::VersionMinor))
        return LaterVersion;
    file.Skip(2);
    ReadHeader(file, revision);
    for (int i = 1; i <= PanelCount; ++i) {
        if (!Panel(i).ReadFrom(file))
            return ReadFailed;
    }
    for (QString& text : biblio_)
        text = file.GetFixedText(BiblioWidth);
    for (QString& text : consigne_)
        text = file.GetFixedText(ConsigneWidth);
    return mirrors_.ReadFrom(file) ? ReadDone : ReadFailed;
}

void ConfigClass::ReadHeader(SiteFileReader& file, int revision) {
    if (const QString text = file.GetFileString(); !text.isEmpty())
        setBusSettings(text);
    if (const QString text = file.GetFileString(); !text.isEmpty())
        setPrtSettings(text);
    setAutoStart(file.GetBoolean());
    setPrintBusResult(file.GetBoolean());
    if (revision >= SoundsRevision) {
        for (qint16& sound : alarmPrioSound_)
            sound = qMin(file.GetWord(), qint16(MaxPriority));
    } else {
        for (size_t i = 0; i < FormerSounds; ++i)
            alarmPrioSound_[i] = file.GetWord();
    }
    optionScreen_ = file.GetByte();
    optionKlaxon_ = file.GetByte();
    optionPrinter_ = file.GetByte();
    optionHisto_ = file.GetByte();
    ReadUsers(file);
    setPrtSettings(file.GetFileString());
    setPrintMaxLen(file.GetWord());
    for (QString& text : printerInitStrings_)
        text = file.GetFileString();
    for (QString& text : printerInitCodes_)
        text = file.GetFileString();
    setPrinterName(file.GetFileString());
    setInactivityTime(file.GetWord());
    file.Skip(Padding(file.Position()));
}

void ConfigClass::ReadUsers(SiteFileReader& file) {
    const quint8 key = file.GetByte();
    const qint16 count = file.GetWord();
    // Checked ahead of the tables, which a damaged count would fill with empty users.
    if (count * SmallestUser > file.Left())
        throw RunTimeError(errors::InputPastEnd);
    setUserCount(count);
    for (int i = 1; i <= count; ++i) {
        setUserName(i, PasswordMask(file.GetFileString(), key));
        setUserPwd(i, PasswordMask(file.GetFileString(), key));
        setUserLevel(i, file.GetLong());
    }
}
