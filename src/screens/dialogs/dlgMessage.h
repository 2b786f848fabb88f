#pragma once

#include "core/Message.h"
#include "screens/touch/ScreenForm.h"

#include <functional>
#include <memory>

namespace Ui {
class dlgMessage;
}

/// The message box: a text of any length, one of five pictures, one to three buttons. Each call
/// of `Message` makes its own, so several may be there at a time.
class dlgMessage : public ScreenForm {
    Q_OBJECT
public:
    dlgMessage();
    ~dlgMessage() override;

    /// Style word: bits 0 to 2 the button set, 4 to 6 the picture, 8 and 9 the default button.
    void setButtons(int style);
    /// True when the dialog goes by itself at the press of a button, nobody waiting for it.
    void setDoUnload(bool on) { doUnload_ = on; }
    void setMessage(const QString& text);
    /// Number of the button pressed, -1 when there was none.
    int Result() const { return *result_; }
    /// Shows one box as `Message` does and gives what `Message` gives.
    static int Present(const QString& text, int buttons, bool noWait);
    /// Shows the one box that no touch has called, or gives the one that stands another text. Its
    /// button tells that it was read.
    static void PresentUnread(const QString& text, int buttons);
    /// Shows a box without buttons that tells of work going on.
    static Messages::ShownNotice PresentNotice(const QString& text);

protected:
    /// The texts come from the style word.
    void Nationality() override {}
    void Form_Activate() override;
    QRect PlaceIn(const QRect& area) const override;
    /// One that nobody waits for never takes the keyboard.
    bool Floats() const override { return doUnload_; }
    void mouseReleaseEvent(QMouseEvent* event) override;
    void CloseRequested() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    static constexpr int ButtonCount = 3;

    void HideButtons();
    void ShowSet(int set);
    void ShowPicture(int picture);
    void PlaceButtons(int count);
    void Layout();
    void Press(int index);
    int MostHeight() const;

    std::unique_ptr<Ui::dlgMessage> ui_;
    bool doUnload_ = false;
    /// Holds what nobody has read yet.
    bool unread_ = false;
    /// Outlives the dialog, for the caller that waits while the dialog is unloaded.
    std::shared_ptr<int> result_;
    int default_ = 0;
    /// Button of the Escape key, -1 for none.
    int cancel_ = -1;
    int borderHeight_ = 0;
    int lineHeight_ = 0;
};
