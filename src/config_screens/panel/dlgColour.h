#pragma once

#include "screens/touch/ScreenForm.h"

#include <memory>
#include <optional>

namespace Ui {
class dlgColour;
}

/// A palette for a finger. Each colour tells how well a text on it is read, 1 not at all, 21 best.
class dlgColour : public ScreenForm {
    Q_OBJECT
public:
    static constexpr int ColourCount = 48;

    dlgColour();
    ~dlgColour() override;

    /// True when a colour was confirmed.
    bool Ok() const { return ok_; }
    /// Red in the low byte, then green, then blue, as the site holds it.
    qint32 Colour() const { return colour_; }
    void setColour(qint32 colour);
    /// The text on which colours are tried.
    void setSample(const QString& text);

protected:
    void CloseRequested() override { imgControl_Click(Cancel); }

private:
    enum Image { Cancel, Confirm };

    void MakeCells();
    void imgControl_Click(int index);

    std::unique_ptr<Ui::dlgColour> ui_;
    bool ok_ = false;
    qint32 colour_ = 0;
};

/// Lets the user choose a colour and gives it; nothing when the palette was left otherwise. The
/// caller may be gone afterwards.
std::optional<qint32> AskColour(qint32 present, const QString& sample);
