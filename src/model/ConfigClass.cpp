#include "model/ConfigClass.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "model/SiteFile.h"
#include "platform/RunTimeError.h"

#include <algorithm>
#include <limits>

using platform::RunTimeError;
namespace errors = platform::errors;

namespace {

/// Ids of the factory defaults.
namespace defaults {
constexpr int UserNames = 100000;
constexpr int UserPwds = 100010;
constexpr int InactivityTime = 100110;
constexpr int OptionScreen = 100201;
constexpr int OptionHisto = 100202;
constexpr int OptionPrinter = 100203;
constexpr int OptionKlaxon = 100204;
constexpr int BusSettings = 100301;
constexpr int PrtSettings = 100302;
} // namespace defaults

std::shared_ptr<PanelClass> NewPanel(int index) {
    auto panel = std::make_shared<PanelClass>();
    panel->setNumero(quint8(index));
    panel->setModified(false);
    return panel;
}

size_t PlaceOf(int index) {
    if (index < 1 || index > ConfigClass::PanelCount)
        throw RunTimeError(errors::Subscript);
    return size_t(index) - 1;
}

size_t PrinterPlace(int index) {
    if (index < 0 || index >= ConfigClass::PrinterStrings)
        throw RunTimeError(errors::Subscript);
    return size_t(index);
}

/// A fixed text without the NUL characters and blanks that fill it up.
QString Unpadded(const QString& text) {
    qsizetype length = text.size();
    while (length > 0 && text[length - 1].isNull())
        --length;
    return TrimBlanks(text.left(length));
}

qint16 DefaultInactivity() {
    return qint16(Bytes::Limit(Bytes::Val(GetConfig(defaults::InactivityTime)), -32768.0, 32767.0));
}

quint8 DefaultMask(int id) {
    return quint8(Config::BinToDec(GetConfig(id)));
}

} // namespace

ConfigClass::ConfigClass()
    : biblio_(BiblioCount, QString(BiblioWidth, QChar()))
    , consigne_(ConsigneCount, QString(ConsigneWidth, QChar()))
    , busSettings_(GetConfig(defaults::BusSettings))
    , prtSettings_(GetConfig(defaults::PrtSettings))
    , inactivityTime_(DefaultInactivity())
    , optionScreen_(DefaultMask(defaults::OptionScreen))
    , optionHisto_(DefaultMask(defaults::OptionHisto))
    , optionPrinter_(DefaultMask(defaults::OptionPrinter))
    , optionKlaxon_(DefaultMask(defaults::OptionKlaxon)) {
    for (int i = 1; i <= PanelCount; ++i)
        panels_[PlaceOf(i)] = NewPanel(i);
    alarmPrioSound_.fill(1);
    for (int i = 1; i <= 2; ++i) {
        userNames_.append(GetConfig(defaults::UserNames + i));
        userPwds_.append(GetConfig(defaults::UserPwds + i));
    }
    userLevels_ = {3, 2};
}

qint16 ConfigClass::AlarmPrioSound(int index) const {
    return index <= 0 || index > MaxPriority ? qint16(0) : alarmPrioSound_[size_t(index)];
}

void ConfigClass::setAlarmPrioSound(int index, qint16 value) {
    if (index > 0 && index <= MaxPriority)
        Change(alarmPrioSound_[size_t(index)], value);
}

QString ConfigClass::Biblio(int index) const {
    return biblio_.value(index - 1);
}

void ConfigClass::setBiblio(int index, const QString& value) {
    if (index >= 1 && index <= BiblioCount)
        Change(biblio_[index - 1], value.leftJustified(BiblioWidth, u' ', true));
}

QString ConfigClass::BiblioText(int index) const {
    return Unpadded(Biblio(index));
}

QString ConfigClass::Consigne(int index) const {
    return consigne_.value(index - 1);
}

void ConfigClass::setConsigne(int index, const QString& value) {
    if (index >= 1 && index <= ConsigneCount)
        Change(consigne_[index - 1], value.leftJustified(ConsigneWidth, u' ', true));
}

QString ConfigClass::ConsigneText(int index) const {
    return Unpadded(Consigne(index));
}

void ConfigClass::InitPanel(int index) {
    if (index < 1 || index > PanelCount)
        return;
    panels_[PlaceOf(index)] = NewPanel(index);
    modified_ = true;
}

bool ConfigClass::Modified() const {
    return modified_ || mirrors_.Modified() ||
           std::any_of(panels_.cbegin(), panels_.cend(),
                       [](const auto& panel) { return panel->Modified(); });
}

void ConfigClass::setModified(bool value) {
    for (const auto& panel : panels_)
        panel->setModified(value);
    mirrors_.setModified(value);
    modified_ = value;
}

bool ConfigClass::IsSet(quint8 mask, int bit) {
    return bit >= 0 && bit <= 7 && (mask & (1U << bit)) != 0;
}

void ConfigClass::SetBit(quint8& mask, int bit, bool value) {
    if (bit < 0 || bit > 7)
        throw RunTimeError(errors::Overflow);
    const unsigned flag = 1U << bit;
    Change(mask, quint8(value ? mask | flag : mask & ~flag));
}

PanelClass& ConfigClass::Panel(int index) {
    return *panels_[PlaceOf(index)];
}

const PanelClass& ConfigClass::Panel(int index) const {
    return *panels_[PlaceOf(index)];
}

void ConfigClass::setPanel(int index, std::shared_ptr<PanelClass> panel) {
    if (!panel)
        throw RunTimeError(errors::InvalidPropertyValue);
    if (Replace(panels_[PlaceOf(index)], std::move(panel)))
        setModified(true);
}

void ConfigClass::setPrinterName(const QString& value) {
    if (Replace(printerName_, value))
        setModified(true);
}

QString ConfigClass::PrinterInitCode(int index) const {
    return printerInitCodes_[PrinterPlace(index)];
}

void ConfigClass::setPrinterInitCode(int index, const QString& value) {
    Change(printerInitCodes_[PrinterPlace(index)], value);
}

QString ConfigClass::PrinterInitString(int index) const {
    return printerInitStrings_[PrinterPlace(index)];
}

void ConfigClass::setPrinterInitString(int index, const QString& value) {
    Change(printerInitStrings_[PrinterPlace(index)], value);
}

qint16 ConfigClass::UserCount() const {
    return qint16(std::max({userNames_.size(), userPwds_.size(), userLevels_.size()}));
}

void ConfigClass::setUserCount(qint16 value) {
    if (value < 1)
        throw RunTimeError(errors::Subscript);
    modified_ = modified_ || value != UserCount();
    userNames_.resize(value);
    userPwds_.resize(value);
    userLevels_.resize(value);
}

template <class T> void ConfigClass::Enter(QList<T>& table, int index, const T& value) {
    if (index < 1 || index > std::numeric_limits<qint16>::max())
        throw RunTimeError(errors::Subscript);
    if (index > table.size()) {
        table.resize(index);
        modified_ = true;
    }
    Change(table[index - 1], value);
}

template void ConfigClass::Enter(QList<qint32>&, int, const qint32&);
template void ConfigClass::Enter(QList<QString>&, int, const QString&);
