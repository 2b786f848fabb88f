#pragma once

#include "config_screens/texts/TextEditor.h"

#include <memory>

namespace Ui {
class wParamBiblio;
}

/// A line of the list of library texts, in which breaks are marked.
QString FormatBiblio(int number, const QString& text);

/// The editor of the library texts.
class wParamBiblio : public TextEditor {
    Q_OBJECT
public:
    wParamBiblio();
    ~wParamBiblio() override;

private:
    std::unique_ptr<Ui::wParamBiblio> ui_;
};
