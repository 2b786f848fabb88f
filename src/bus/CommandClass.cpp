#include "bus/CommandClass.h"

#include "core/Bytes.h"
#include "platform/RunTimeError.h"

#include <algorithm>

using platform::RunTimeError;
namespace errors = platform::errors;

namespace {

constexpr int MaxValues = 124;
constexpr qint32 LastModule = 64;
constexpr qint32 LastWord = 0xFFFF;

qint32 ReadNumber(const QString& text, int base) {
    bool good = false;
    const qint32 number = text.trimmed().toInt(&good, base);
    if (!good)
        throw RunTimeError(errors::TypeMismatch);
    return number;
}

} // namespace

qint16 CommandClass::Value(int index) const {
    if (index < 0 || index >= values_.size())
        throw RunTimeError(errors::Subscript);
    return values_[index];
}

void CommandClass::setValue(int index, qint16 value) {
    if (index < 0)
        throw RunTimeError(errors::Subscript);
    if (index >= values_.size())
        values_.resize(index + 1);
    values_[index] = value;
}

bool CommandClass::SameAs(const CommandClass& other) const {
    return module_ == other.module_ && cmdType_ == other.cmdType_ && address_ == other.address_ &&
           values_ == other.values_;
}

QString CommandClass::ToText() const {
    const QString time =
        sendTime_ < 1 ? DateTimes::LongTime(sendTime_) : DateTimes::DateAndTime(sendTime_);
    QStringList pieces = {QString::number(cmdType_), QString::number(module_),
                          Bytes::Hex4(address_), time};
    for (const qint16 value : values_)
        pieces += Bytes::Hex4(value);
    return pieces.join(u'|');
}

std::shared_ptr<CommandClass> CommandClass::FromText(const QString& text) {
    const QStringList pieces = text.split(u'|');
    if (pieces.size() < 5 || pieces.size() > 4 + MaxValues)
        throw RunTimeError(errors::Subscript);
    auto command = std::make_shared<CommandClass>();
    command->cmdType_ = ReadNumber(pieces[0], 10);
    // Cut to what a frame holds, a number of a damaged text would be that of another panel or
    // register.
    const auto read = [&](int piece, int base, qint32 last) {
        const qint32 number = ReadNumber(pieces[piece], base);
        if (number < 0 || number > last)
            throw RunTimeError(errors::Overflow);
        return number;
    };
    command->module_ = qint16(read(1, 10, LastModule));
    command->address_ = read(2, 16, LastWord);
    // A date of another locale is no date: such a command is due at once, as one of yesterday is.
    command->sendTime_ = DateTimes::Parse(pieces[3]).value_or(0);
    for (int i = 4; i < pieces.size(); ++i)
        command->values_ += qint16(read(i, 16, LastWord));
    return command;
}

void CommandClasses::Add(const CommandPtr& command) {
    const bool waits = std::any_of(items_.cbegin(), items_.cend(),
                                   [&](const CommandPtr& item) { return item->SameAs(*command); });
    if (!waits)
        items_ += command;
}

CommandPtr CommandClasses::Item(int position) const {
    if (position < 1 || position > items_.size())
        throw RunTimeError(errors::Subscript);
    return items_[position - 1];
}

void CommandClasses::Remove(int position) {
    if (position < 1 || position > items_.size())
        throw RunTimeError(errors::Subscript);
    items_.removeAt(position - 1);
}
