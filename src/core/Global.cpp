#include "core/Global.h"

#include "core/Config.h"
#include "platform/Folders.h"

#include <QDir>

namespace Global {

State& Get() {
    static State state;
    return state;
}

void ReadMarks() {
    const QString marks = Config::GetText(50011);
    Get().panelMark = marks.mid(0, 1);
    Get().channelMark = marks.mid(1, 1);
    Get().text10100 = Config::GetText(10100);
    Get().text50012 = Config::GetText(50012);
}

QString InApplicationFolder(const QString& name) {
    return platform::ApplicationFolder() + QDir::separator() + name;
}

} // namespace Global
