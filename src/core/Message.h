#pragma once

#include <QString>
#include <functional>

/// The program's message box: a text, a style word, a flag for a box that doesn't wait. Gives the
/// number of the button pressed; -1 when the box was closed without one, 0 at once for a box
/// that doesn't wait. A box that only tells and that no touch has called doesn't wait either.
int Message(const QString& text, int buttons = 0, bool noWait = false);

namespace Messages {

/// Pictures of the style word.
inline constexpr int Critical = 16;
inline constexpr int Question = 32;
inline constexpr int Warning = 48;
inline constexpr int Information = 64;
/// Button sets of the style word.
inline constexpr int OkCancel = 1;
inline constexpr int YesNoCancel = 3;
inline constexpr int YesNo = 4;
/// Bits of the style word that choose the buttons; 0 is a box that only tells.
inline constexpr int ButtonSet = 7;

enum Result { Closed = -1, Ok = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };

using Presenter = std::function<int(const QString& text, int buttons, bool noWait)>;

/// What a presenter gives of a notice that it shows.
struct ShownNotice {
    std::function<void()> close;
    /// Puts another text in its place and paints it, without the event loop. May be empty.
    std::function<void(const QString& text)> change;
};

/// A notice that stands on the screen without a button while something takes long; it goes with
/// the object.
class Notice {
public:
    explicit Notice(const QString& text);
    ~Notice();
    Notice(const Notice&) = delete;
    Notice& operator=(const Notice&) = delete;

    /// Shows another text at once; nothing yields.
    void setText(const QString& text);

private:
    ShownNotice shown_;
};

/// Shows a notice.
using NoticePresenter = std::function<ShownNotice(const QString& text)>;
void InstallNotice(NoticePresenter presenter);

/// Says who shows the box, and that nobody keeps unread boxes. Without a presenter `Message` writes
/// to the standard error stream and gives -1, so that a failure ahead of the first screen is still
/// told.
void Install(Presenter presenter);

} // namespace Messages
