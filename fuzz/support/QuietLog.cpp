// Stands in place of the logs on disk, all of platform/LineLog.cpp: lines are encoded and go
// nowhere.

#include "platform/CodePage.h"
#include "platform/LineLog.h"

namespace platform {

void EndTornLine(const QString&) {}

void LineLog::Open(const QString& path, int) {
    file_.setFileName(path);
}

void LineLog::WriteLine(const QString& text) {
    ToCodePage(text);
}

bool LineLog::OpenAgain() {
    return true;
}

void LineLog::Renew() {}

void LineLog::Commit() {}

} // namespace platform
