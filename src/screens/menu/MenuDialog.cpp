#include "screens/menu/MenuDialog.h"

#include <QKeyEvent>

void MenuDialog::PrepareMenu() {
    Prepare();
    OnClick(QStringLiteral("cmdButtons"), [this](int index) {
        cmd_ = qint16(index);
        Hide();
    });
}

void MenuDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        Hide();
}
