#pragma once

#include "platform/CodePage.h"

#include <QApplication>
#include <QValidator>

/// Lets into a line only what the files can hold: a real keyboard may have other letters, and paste
/// others still. One that isn't taken beeps.
class CodePageLine : public QValidator {
public:
    using QValidator::QValidator;

    State validate(QString& text, int& caret) const override {
        if (platform::FitsCodePage(text))
            return Acceptable;
        caret = int(platform::WithoutForeign(text.left(caret)).size());
        text = platform::WithoutForeign(text);
        QApplication::beep();
        return Acceptable;
    }
};
