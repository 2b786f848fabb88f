#include "model/Models.h"

#include <QStringList>

namespace Models {

namespace {

const QStringList& Delays() {
    static const QStringList delays = ReactivTimeList().split(u'|');
    return delays;
}

} // namespace

QString ModuleName(int code) {
    static const QStringList names =
        QStringLiteral("-----,Q7100,Q6200XT,Q7000,P5000,P5500").split(u',');
    return names.value(code);
}

QString NameOrCode(int code) {
    const QString name = ModuleName(code);
    return name.isEmpty() ? QString::number(code) : name;
}

QString ReactivTimeList() {
    return QStringLiteral("@|00:01|00:05|00:10|00:30|01:00|12:00|24:00|36:00");
}

QString ReactivTime(int index) {
    return index < 1 ? QString() : Delays().value(index, Delays().last());
}

std::optional<int> ReactivTime(const QString& text) {
    const qsizetype index = Delays().indexOf(text.trimmed().toUpper(), 1);
    return index < 1 ? std::nullopt : std::optional<int>(int(index));
}

} // namespace Models
