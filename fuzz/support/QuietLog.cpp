// Stands in place of the logs on disk, all of platform/LineLog.cpp: lines are encoded and go
// nowhere.

#include "platform/CodePage.h"
#include "platform/LineLog.h"

namespace platform {

void EndTornLine(const QString&) {}

void LineLog::Open(const QString& path, int) {
    path_ = path;
}

void LineLog::WriteLine(const QString& text) {
    ToCodePage(text);
}

void LineLog::Close() {}

bool LineLog::IsInPlace() const {
    return true;
}

void LineLog::OpenAgain() {}

void LineLog::Commit() const {}

} // namespace platform
