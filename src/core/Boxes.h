#pragma once

#include <QString>
#include <functional>

/// Boxes that no touch has called. At most one stands, and it holds nothing up: what comes while it
/// is unread is counted in it. One that was never read stays on the console's band.
namespace Boxes {

/// Tells `text` under a style word of `Message`, as soon as none of `Held` exists.
void Post(const QString& text, int style);
/// Number of texts that nobody has read, those that are only counted included.
int Unread();
/// Shows the unread box again, for a touch that asks for it.
void ShowUnread();
/// Somebody has read what stands.
void Read();
/// Drops what is unread without a word, at the end of the program and in tests.
void Forget();

/// While one exists boxes wait: the tick or the start that they come from is to be through first.
class Held {
public:
    Held();
    ~Held();
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
};

/// Shows the one box, or puts another text into the one that stands. `Read` is to be called when
/// its button is pressed. Without one the box goes to whoever shows messages, and counts as read.
using Presenter = std::function<void(const QString& text, int style)>;
void Install(Presenter presenter);

} // namespace Boxes
