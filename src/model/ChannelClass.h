#pragma once

#include "model/Replace.h"

#include <QString>

class SiteFileReader;
class SiteFileWriter;

/// One input of a module, configured and observed.
class ChannelClass {
public:
    /// Longest text as the editor takes it; longer ones in a file stay.
    static constexpr int MaxText = 40;

    /// Priority of the channel's alarms, 1 to 99.
    qint16 AlmPrio() const { return almPrio_; }
    void setAlmPrio(qint16 value) { Change(almPrio_, value); }
    /// Number of the library text, 1 to 64; 0 for none.
    qint16 BibNum() const { return bibNum_; }
    void setBibNum(qint16 value) { Change(bibNum_, value); }
    /// Number of the instruction text, 1 to 48; 0 for none.
    qint16 HelpNum() const { return helpNum_; }
    void setHelpNum(qint16 value) { Change(helpNum_, value); }
    /// Events go to the history file.
    bool Histo() const { return histo_; }
    void setHisto(bool value) { Change(histo_, value); }
    /// Alarms sound the horn.
    bool Klaxon() const { return klaxon_; }
    void setKlaxon(bool value) { Change(klaxon_, value); }
    /// Text of the channel on the printer.
    QString PrintText() const { return printText_; }
    void setPrintText(const QString& value) { Change(printText_, value); }
    /// Alarms go to the printer.
    bool PrtAlm() const { return prtAlm_; }
    void setPrtAlm(bool value) { Change(prtAlm_, value); }
    /// A standing alarm is reactivated after `ReactTpo`.
    bool React() const { return react_; }
    void setReact(bool value) { Change(react_, value); }
    /// Delay of the reactivation, an index into the reactivation times.
    qint32 ReactTpo() const { return reactTpo_; }
    void setReactTpo(qint32 value) { Change(reactTpo_, value); }
    /// Text of the channel on the screen and in the history.
    QString ScreenText() const { return screenText_; }
    void setScreenText(const QString& value) { Change(screenText_, value); }
    /// Alarms go to the screen.
    bool ScrAlm() const { return scrAlm_; }
    void setScrAlm(bool value) { Change(scrAlm_, value); }
    /// Kind of printing, 0 to 3; kept and edited only.
    qint16 TypeImp() const { return typeImp_; }
    void setTypeImp(qint16 value) { Change(typeImp_, value); }

    // Facts of the running system: never in the file, never marked.

    /// State as last taken from the panel or forced by a mirror.
    qint16 State() const { return state_; }
    void setState(qint16 value) { state_ = value; }
    /// Kind of the mirror rule that last set the state.
    qint16 MirrorType() const { return mirrorType_; }
    void setMirrorType(qint16 value) { mirrorType_ = value; }
    /// Taken out of service by the technician.
    bool OutOfOrder() const { return outOfOrder_; }
    void setOutOfOrder(bool value) { outOfOrder_ = value; }

    bool Modified() const { return modified_; }
    void setModified(bool value) { modified_ = value; }

    /// Takes all but `OutOfOrder` and the mark through the setters.
    void Copy(const ChannelClass& source);
    /// Writes the channel's record and leaves the mark.
    void WriteTo(SiteFileWriter& file) const;
    /// Write and read the channel's record and lower the mark. Nobody looks at the result, which
    /// is false.
    bool SaveTo(SiteFileWriter& file);
    bool ReadFrom(SiteFileReader& file);

private:
    template <class T> void Change(T& field, T value) {
        if (Replace(field, std::move(value)))
            modified_ = true;
    }

    QString screenText_;
    QString printText_;
    qint32 reactTpo_ = 0;
    qint16 helpNum_ = 0;
    qint16 bibNum_ = 0;
    qint16 almPrio_ = 99;
    qint16 typeImp_ = 0;
    qint16 state_ = 0;
    qint16 mirrorType_ = 0;
    bool scrAlm_ = false;
    bool prtAlm_ = false;
    bool histo_ = true;
    bool klaxon_ = false;
    bool react_ = false;
    bool outOfOrder_ = false;
    bool modified_ = false;
};
