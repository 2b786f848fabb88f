#include "config_screens/texts/wParamBiblio.h"

#include "model/ConfigClass.h"
#include "ui_wParamBiblio.h"

namespace {

constexpr int BigStep = 19;

const TextTable& Table() {
    static const TextTable table{FormNames::wParamBiblio,
                                 QStringLiteral("lstBiblio"),
                                 ConfigClass::BiblioCount,
                                 ConfigClass::BiblioWidth,
                                 BigStep,
                                 false,
                                 &ConfigClass::Biblio,
                                 &ConfigClass::setBiblio,
                                 &FormatBiblio};
    return table;
}

} // namespace

QString FormatBiblio(int number, const QString& text) {
    return FormatEntry(number, text, QStringLiteral("¶"));
}

wParamBiblio::wParamBiblio()
    : TextEditor(Table())
    , ui_(std::make_unique<Ui::wParamBiblio>()) {
    ui_->setupUi(this);
    Begin();
}

wParamBiblio::~wParamBiblio() = default;
