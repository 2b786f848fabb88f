#include "screens/menu/MenuDialog.h"

void MenuDialog::PrepareMenu() {
    Prepare();
    OnKey(Qt::Key_Escape, [this] { Hide(); });
    OnClick(QStringLiteral("cmdButtons"), [this](int index) {
        cmd_ = qint16(index);
        Hide();
    });
}
