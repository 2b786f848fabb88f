#pragma once

#include "model/ChannelClass.h"
#include "platform/Clock.h"

#include <array>

/// The module at one bus address, configured and observed. Always holds its 24 channels, whatever
/// its model has of them, so that a change of model loses nothing.
class PanelClass {
public:
    /// Channels in the file and in the editor; place 0 of the table stays unused.
    static constexpr int MaxChannel = 24;
    static constexpr int MaxTitle = 40;
    static constexpr int ErrorCounters = 3;
    /// Red, green and blue from the low byte on.
    static constexpr qint32 Yellow = 65535;

    PanelClass() = default;
    PanelClass(const PanelClass&) = delete;
    PanelClass& operator=(const PanelClass&) = delete;

    /// Bus address, 1 to 64.
    quint8 Numero() const { return numero_; }
    void setNumero(quint8 value) { Change(numero_, value); }
    /// Configured model, a code of `Models`.
    quint8 Model() const { return model_; }
    void setModel(quint8 value) { Change(model_, value); }
    /// The panel's name on every screen.
    QString Title() const { return title_; }
    /// The same on one line: bars break it where there is room for several.
    QString TitleLine() const { return Title().replace(u'|', u' '); }
    void setTitle(const QString& value) { Change(title_, value); }
    /// Colour of the title, red in the low byte, then green, then blue.
    qint32 TitleColor() const { return titleColor_; }
    void setTitleColor(qint32 value) { Change(titleColor_, value); }
    /// To be polled and shown. Marks the panel alone and none of its channels.
    bool Active() const { return active_; }
    void setActive(bool value) { modified_ = Replace(active_, value) || modified_; }

    // Facts of the running system: never in the file, never marked.

    /// Model that the panel itself reported.
    quint8 ActualModel() const { return actualModel_; }
    void setActualModel(quint8 value) { actualModel_ = value; }
    /// The panel reported another model than the configured one. A P5000 can't be told from a
    /// Q7100 by what it reports.
    bool ReportsOtherModel() const;
    /// The panel answered the last time.
    bool Present() const { return present_; }
    void setPresent(bool value) {
        present_ = value;
        lossUntold_ = lossUntold_ && !value;
    }
    /// Found missing outside the polls, or never asked yet: the loss is still to be told, and a
    /// return is none.
    bool LossUntold() const { return lossUntold_; }
    void setLossUntold(bool value) { lossUntold_ = value; }
    /// The operator was told of a loss and of no return since.
    bool LossTold() const { return lossTold_; }
    void setLossTold(bool value) { lossTold_ = value; }
    /// Polled since the start of the bus: its presence is known.
    bool Asked() const { return asked_; }
    void setAsked(bool value) { asked_ = value; }
    /// Error counters of the polling cycle, 0 to 2. Throws RunTimeError `Subscript` elsewhere.
    qint16 ErrCptr(int index) const;
    void setErrCptr(int index, qint16 value);
    /// Time before which the polling cycle leaves the panel alone.
    platform::DateTime NextPoll() const { return nextPoll_; }
    void setNextPoll(platform::DateTime value) { nextPoll_ = value; }

    /// A channel, 0 to 24. Throws RunTimeError `Subscript` elsewhere.
    ChannelClass& Channel(int index);
    const ChannelClass& Channel(int index) const;
    /// Channels of the configured model: 24 or 12.
    quint8 ChannelCount() const;

    /// The panel's own mark or that of a channel.
    bool Modified() const;
    /// Sets the own mark and those of the channels.
    void setModified(bool value);

    /// Takes all but the error counters, the polling time and the marks through the setters.
    void Copy(const PanelClass& source);
    /// Writes the panel's record with its 24 channels and leaves the marks.
    void WriteTo(SiteFileWriter& file) const;
    /// Write and read the panel's record with its 24 channels and lower the marks. Always true.
    bool SaveTo(SiteFileWriter& file);
    bool ReadFrom(SiteFileReader& file);

private:
    /// A change of the panel's identity counts as one of all its channels.
    template <class T> void Change(T& field, T value) {
        if (Replace(field, std::move(value)))
            setModified(true);
    }

    std::array<ChannelClass, MaxChannel + 1> channels_;
    QString title_;
    platform::DateTime nextPoll_ = 0;
    qint32 titleColor_ = Yellow;
    std::array<qint16, ErrorCounters> errCptr_{};
    quint8 numero_ = 0;
    quint8 model_ = 0;
    quint8 actualModel_ = 0;
    bool active_ = false;
    bool present_ = false;
    bool lossUntold_ = true;
    bool lossTold_ = false;
    bool asked_ = false;
    bool modified_ = false;
};
