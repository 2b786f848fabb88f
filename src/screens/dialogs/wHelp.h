#pragma once

#include "screens/touch/ScreenForm.h"

#include <memory>

namespace Ui {
class wHelp;
}

/// The operator's help, turned by touch.
class wHelp : public ScreenForm {
    Q_OBJECT
public:
    wHelp();
    ~wHelp() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void FollowLine(const QPoint& place);
    void imgNavig_Click(int index);
    void imgControl_Click(int index);
    void Close();

    std::unique_ptr<Ui::wHelp> ui_;
    /// Screen from which the help was called.
    QString opener_;
};

/// The help page in the language in use, else in the first language; empty when there is none.
QString HelpPage();
/// Shows the help above the screen in front, or says that there is none.
void ShowHelp();
