#pragma once

#include "core/Forms.h"
#include "platform/RunTimeError.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QWidget>
#include <functional>

class QEventLoop;
class QLabel;
class RehearsalStrip;

/// A screen or dialog of the program: a window without a frame that the registry knows by its
/// name. Its controls are addressed as arrays: the control `imgControl_4` is index 4 of
/// `imgControl`. A dynamic property `Tag` holds the number of a control's text.
class ScreenForm : public QWidget, public Forms::Form {
    Q_OBJECT
public:
    /// A screen covers the display and has the shared background; a dialog lies in the middle,
    /// above all screens.
    enum class Kind { Screen, Dialog };

    explicit ScreenForm(const QString& name, Kind kind = Kind::Screen);
    ~ScreenForm() override;
    ScreenForm(const ScreenForm&) = delete;
    ScreenForm& operator=(const ScreenForm&) = delete;

    QString Name() const override { return name_; }
    void Show() override;
    void Hide() override;
    void BringToFront() override;
    bool Visible() const override { return isVisible(); }
    void Unload() override;

    /// Shows the form and returns when it is hidden or unloaded. No other form takes a touch
    /// meanwhile, unless `modality` lets them; timers go on.
    void ShowModal(Qt::WindowModality modality = Qt::ApplicationModal);
    /// False for null and for a form that has been unloaded, though the object may still be there.
    static bool IsLoaded(const ScreenForm* form);

    /// The control of an array. Throws RunTimeError `Subscript` for an index that isn't there.
    template <class W = QWidget> W* Control(const QString& array, int index) const;
    /// Indices of an array, ascending.
    QList<int> Indices(const QString& array) const;

protected:
    /// The common end of a constructor, after the controls are there: fonts, pointer, texts, fit
    /// to the display, background.
    void Prepare();
    /// Gives every control with a `Tag` its text in the language in use.
    virtual void Nationality();
    /// Each time that the form is shown or comes to the front.
    virtual void Form_Activate() {}
    /// Once, when the form goes.
    virtual void Form_Unload() {}
    /// Somebody asks from outside to close the window. A screen stays: what is left by a tap may
    /// ask questions first.
    virtual void CloseRequested() {}
    /// Where a form of this size goes: `area` is what the screens cover of the display.
    virtual QRect PlaceIn(const QRect& area) const;
    /// True for a box that lies above all others, the one that waits included, takes its touches
    /// whoever waits, and never takes the keyboard.
    virtual bool Floats() const { return false; }
    /// Gives the form another size than the design's, without the strip of a rehearsal.
    void setFormSize(int width, int height);
    /// Height without that strip.
    int FormHeight() const;
    /// Puts the form where it belongs, after a change of its size.
    void Place();

    /// Runs `handler` with the index for a tap on any control of the array. An error inside is
    /// reported under the form, the array and "_Click".
    void OnClick(const QString& array, const std::function<void(int)>& handler);
    /// The same for a control outside an array.
    void OnClick(QWidget* control, std::function<void()> handler);
    /// Runs `handler` for a key that no control takes. Enter is the same as Return. An error inside
    /// is reported under the form and "Form_KeyDown".
    void OnKey(Qt::Key key, const std::function<void()>& handler);
    /// Makes black copies of the labels of an array, moved by the offsets in pixels, at the
    /// indices after the last one. The copies have the `Tag` of their label and follow it.
    void OmbrerTexte(const QString& array, int dx, int dy);
    /// Sets the text of a control of any kind.
    static void SetCaption(QWidget* control, const QString& text);
    /// Sets the text of a label and of its shadow.
    void SetCaption(const QString& array, int index, const QString& text);
    /// True when the form was made larger or smaller for the display.
    bool IsScaled() const { return scaled_; }

    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* FindControl(const QString& array, int index) const;
    void Connect(QWidget* control, const QString& object, std::function<void()> handler);
    void Activate();
    void PutStrip();
    static void RaiseDialogs();
    static QWidget* Waiting();
    static void LiftFloats();

    QString name_;
    Kind kind_;
    bool scaled_ = false;
    bool unloaded_ = false;
    QEventLoop* modalLoop_ = nullptr;
    RehearsalStrip* strip_ = nullptr; // null outside a rehearsal
    QHash<QObject*, std::function<void()>> labelClicks_;
    QHash<int, std::function<void()>> keys_;
    QHash<QLabel*, QLabel*> shadows_;
};

template <class W> W* ScreenForm::Control(const QString& array, int index) const {
    if (W* control = qobject_cast<W*>(FindControl(array, index)))
        return control;
    throw platform::RunTimeError(platform::errors::Subscript);
}
