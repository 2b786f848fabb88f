#pragma once

#include "config_screens/texts/TextEditor.h"

#include <memory>

namespace Ui {
class wParamConsignes;
}

/// A line of the list of instruction texts: the head of the text on one line.
QString FormateConsigne(int number, const QString& text);

/// The editor of the instruction texts. It shows the whole of the current one and takes one from a
/// text file.
class wParamConsignes : public TextEditor {
    Q_OBJECT
public:
    wParamConsignes();
    ~wParamConsignes() override;

protected:
    void ShowEntry(const QString& text) override;
    void imgControl_Click(int index) override;

private:
    void Import();

    std::unique_ptr<Ui::wParamConsignes> ui_;
};
