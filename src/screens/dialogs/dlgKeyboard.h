#pragma once

#include "screens/touch/ScreenForm.h"

#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace Ui {
class dlgKeyboard;
}

/// The on-screen keyboard: one line of text, or several, in the characters of the code page.
/// Line breaks of the text are carriage return and line feed.
class dlgKeyboard : public ScreenForm {
    Q_OBJECT
public:
    dlgKeyboard();
    ~dlgKeyboard() override;

    /// True when the user confirmed. Otherwise the text is to be ignored.
    bool Ok() const { return ok_; }
    void setTitle(const QString& title);
    QString Text() const;
    /// The text, cut to the greatest length; the caret goes behind it.
    void setText(const QString& text);
    /// Greatest number of characters, a line break counting two; 0 for no limit.
    void setMaxLength(int length);
    /// Several lines and the key for a line break, or one line.
    void setMultiLine(bool on);
    bool MultiLine() const { return multiLine_; }
    /// `note` gets the text when the keyboard is unloaded while it stands, without an answer.
    void WhenTakenAway(std::function<void(const QString& text)> note) {
        takenAway_ = std::move(note);
    }

protected:
    void Form_Activate() override;
    void Form_Unload() override;
    void CloseRequested() override { Control_Click(Cancel); }
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum Image { Cancel, Confirm };

    void MakeKeys();
    void KeyRename();
    void LayoutKeys();
    void Range_Click(int index);
    void Key_Click(int index);
    void Ctrl_Click(int index);
    void Control_Click(int index);
    void Insert(const QString& characters);
    bool HandleKey(const QKeyEvent& event);
    int Caret() const;
    void Write(const QString& text, int caret);
    void LimitText();
    QWidget* Box() const;

    std::unique_ptr<Ui::dlgKeyboard> ui_;
    bool ok_ = false;
    bool multiLine_ = false;
    int maxLength_ = 0;
    /// Character code of the first key.
    int rangeBase_ = 0;
    std::function<void(const QString&)> takenAway_;
};

/// Lets the user type a text and gives it; nothing when the keyboard was left otherwise, also when
/// it was unloaded while it waited.
std::optional<QString> AskText(const QString& title, const QString& present, int maxLength,
                               bool multiLine = false);
