#pragma once

#include "screens/touch/ScreenForm.h"

#include <memory>

namespace Ui {
class dlgConsigne;
}

/// The instruction that belongs to an alarm, under the alarm's own line. A text that is longer than
/// the dialog is scrolled by touch.
class dlgConsigne : public ScreenForm {
    Q_OBJECT
public:
    dlgConsigne();
    ~dlgConsigne() override;

    /// The alarm's line as the list shows it; its blanks keep their width.
    void setAlarm(const QString& text);
    void setConsigne(const QString& text);

    /// Shows the dialog and returns when it is closed. The caller may be gone by then.
    static void Present(const QString& alarm, const QString& consigne);
    /// Shows the instruction of a number: its text, or the words for a missing one, which are also
    /// told in a box for the number 0.
    static void PresentNumber(const QString& alarm, int number);

protected:
    void CloseRequested() override { Hide(); }
    void Form_Unload() override;

private:
    void Layout();
    void ScrollBy(int pixels);
    void imgControl_Click(int index);

    std::unique_ptr<Ui::dlgConsigne> ui_;
    QString alarm_;
    QString consigne_;
    int narrow_ = 0; ///< width of the frame beside the buttons
};
