#pragma once

#include "model/MirrorClass.h"
#include "model/PanelClass.h"
#include "model/Replace.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <array>
#include <memory>

/// The configuration of one installation: panels, mirror rules, texts, users, routing and the
/// settings of bus and printer. Its defaults come from the configuration base, which must be
/// open when one is made.
class ConfigClass {
public:
    static constexpr int PanelCount = 64;
    static constexpr int BiblioCount = 64;
    static constexpr int BiblioWidth = 24;
    static constexpr int ConsigneCount = 48;
    static constexpr int ConsigneWidth = 1024;
    static constexpr int MaxPriority = 99;
    static constexpr int PrinterStrings = 8;

    /// Results of Read and Save; those above 0 are text numbers.
    enum Result : qint32 {
        Saved = -1,
        ReadDone = 0,
        ReadFailed = 20001,
        SaveFailed = 20002,
        NotASiteFile = 20003,
        LaterVersion = 20004,
    };

    ConfigClass();
    ConfigClass(const ConfigClass&) = delete;
    ConfigClass& operator=(const ConfigClass&) = delete;

    /// Sound number of a priority, 1 to 99: 0 elsewhere. Setting elsewhere does nothing.
    qint16 AlarmPrioSound(int index) const;
    void setAlarmPrioSound(int index, qint16 value);
    /// Bus communication starts by itself with the program.
    bool AutoStart() const { return autoStart_; }
    void setAutoStart(bool value) { Change(autoStart_, value); }
    /// Library text, 1 to 64, as stored: 24 characters with its blanks or NUL characters; empty
    /// elsewhere. Setting pads or cuts, and does nothing elsewhere.
    QString Biblio(int index) const;
    void setBiblio(int index, const QString& value);
    /// The library text itself, without what fills it up.
    QString BiblioText(int index) const;
    /// Port and settings of the bus.
    QString BusSettings() const { return busSettings_; }
    void setBusSettings(const QString& value) { Change(busSettings_, value); }
    qint16 BusControl() const { return busControl_; }
    void setBusControl(qint16 value) { Change(busControl_, value); }
    /// Instruction text, 1 to 48, like Biblio with 1024 characters.
    QString Consigne(int index) const;
    void setConsigne(int index, const QString& value);
    QString ConsigneText(int index) const;
    /// Inactivity delay of the operator screens in minutes; below 1 there is none.
    qint16 InactivityTime() const { return inactivityTime_; }
    void setInactivityTime(qint16 value) { Change(inactivityTime_, value); }
    /// Puts a new panel in place of one, 1 to 64; does nothing elsewhere.
    void InitPanel(int index);
    MirrorClasses& Mirrors() { return mirrors_; }
    const MirrorClasses& Mirrors() const { return mirrors_; }
    /// The own mark or that of a panel or of the mirror rules.
    bool Modified() const;
    /// Sets the own mark and those of all panels and of the mirror rules.
    void setModified(bool value);

    /// Routing masks by bit number, 0 to 7. Other bits are false; setting one throws RunTimeError
    /// `Overflow`.
    bool OptionHisto(int bit) const { return IsSet(optionHisto_, bit); }
    void setOptionHisto(int bit, bool value) { SetBit(optionHisto_, bit, value); }
    bool OptionKlaxon(int bit) const { return IsSet(optionKlaxon_, bit); }
    void setOptionKlaxon(int bit, bool value) { SetBit(optionKlaxon_, bit, value); }
    bool OptionPrinter(int bit) const { return IsSet(optionPrinter_, bit); }
    void setOptionPrinter(int bit, bool value) { SetBit(optionPrinter_, bit, value); }
    bool OptionScreen(int bit) const { return IsSet(optionScreen_, bit); }
    void setOptionScreen(int bit, bool value) { SetBit(optionScreen_, bit, value); }

    /// The panel of a bus address, 1 to 64. Throws RunTimeError `Subscript` elsewhere.
    PanelClass& Panel(int index);
    const PanelClass& Panel(int index) const;
    /// Another object than the present one marks the whole configuration.
    void setPanel(int index, std::shared_ptr<PanelClass> panel);
    /// The state of the bus is printed after a general reading.
    bool PrintBusResult() const { return printBusResult_; }
    void setPrintBusResult(bool value) { Change(printBusResult_, value); }
    /// Longest printed line in characters.
    qint16 PrintMaxLen() const { return printMaxLen_; }
    void setPrintMaxLen(qint16 value) { Change(printMaxLen_, value); }
    /// Name of the printer definition; another one marks the whole configuration.
    QString PrinterName() const { return printerName_; }
    void setPrinterName(const QString& value);
    /// The control sequences, 0 to 7, as the printer editor keeps them and ready to send. Throw
    /// RunTimeError `Subscript` elsewhere.
    QString PrinterInitCode(int index) const;
    void setPrinterInitCode(int index, const QString& value);
    QString PrinterInitString(int index) const;
    void setPrinterInitString(int index, const QString& value);
    /// Port and settings of the printer.
    QString PrtSettings() const { return prtSettings_; }
    void setPrtSettings(const QString& value) { Change(prtSettings_, value); }

    /// The longest of the three user tables.
    qint16 UserCount() const;
    /// Cuts or lengthens the three tables. Throws RunTimeError `Subscript` for a count below 1.
    void setUserCount(qint16 value);
    /// Users count from 1. An index without a user gives 0 or an empty text; setting one
    /// lengthens that table, and throws RunTimeError `Subscript` outside 1 to 32767.
    qint32 UserLevel(int index) const { return userLevels_.value(index - 1); }
    void setUserLevel(int index, qint32 value) { Enter(userLevels_, index, value); }
    QString UserName(int index) const { return userNames_.value(index - 1); }
    void setUserName(int index, const QString& value) { Enter(userNames_, index, value); }
    /// In clear in memory, scrambled in the file.
    QString UserPwd(int index) const { return userPwds_.value(index - 1); }
    void setUserPwd(int index, const QString& value) { Enter(userPwds_, index, value); }

    /// Adds the content of a site file to a new configuration. Gives ReadDone or a text number;
    /// what was read up to a failure stays. Tells nobody of errors.
    qint32 Read(const QString& fileName);
    /// Writes the site file in place of an earlier one, which stays as it is when that fails; the
    /// marks of panels and channels are lowered when it is through. Gives Saved or SaveFailed; a
    /// run-time error is reported.
    qint32 Save(const QString& fileName);

private:
    template <class T> void Change(T& field, T value) {
        if (Replace(field, std::move(value)))
            modified_ = true;
    }
    template <class T> void Enter(QList<T>& table, int index, const T& value);
    static bool IsSet(quint8 mask, int bit);
    void SetBit(quint8& mask, int bit, bool value);

    bool Write(SiteFileWriter& file);
    void WriteHeader(SiteFileWriter& file) const;
    void WriteUsers(SiteFileWriter& file) const;
    quint8 DrawKey() const;
    qint32 ReadAll(SiteFileReader& file);
    void ReadHeader(SiteFileReader& file, int revision);
    void ReadUsers(SiteFileReader& file);

    std::array<std::shared_ptr<PanelClass>, PanelCount> panels_;
    MirrorClasses mirrors_;
    QStringList biblio_;
    QStringList consigne_;
    QString busSettings_;
    QString prtSettings_;
    QString printerName_;
    std::array<QString, PrinterStrings> printerInitStrings_;
    std::array<QString, PrinterStrings> printerInitCodes_;
    QStringList userNames_;
    QStringList userPwds_;
    QList<qint32> userLevels_;
    std::array<qint16, MaxPriority + 1> alarmPrioSound_;
    qint16 busControl_ = 0;
    qint16 printMaxLen_ = 0;
    qint16 inactivityTime_ = 0;
    quint8 optionScreen_ = 0;
    quint8 optionHisto_ = 0;
    quint8 optionPrinter_ = 0;
    quint8 optionKlaxon_ = 0;
    bool autoStart_ = false;
    bool printBusResult_ = false;
    bool modified_ = false;
};
