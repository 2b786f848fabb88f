#pragma once

#include "bus/CommFunctions.h"
#include "core/DateTimes.h"

#include <memory>

/// Kinds of command.
namespace CommandTypes {
inline constexpr qint32 Done = 0;
inline constexpr qint32 Read = 1;
inline constexpr qint32 Write = 2;
} // namespace CommandTypes

/// A write or a read that waits for the bus.
class CommandClass {
public:
    /// Failures after which a command is given up.
    static constexpr qint16 MaxErrors = 3;

    CommandClass() = default;
    /// A write of `values` from register `address` of `module` on; `sendTime` 0 is as soon as
    /// possible.
    CommandClass(qint16 module, qint32 address, Words values, DateTime sendTime = 0)
        : address_(address)
        , cmdType_(CommandTypes::Write)
        , module_(module)
        , sendTime_(sendTime)
        , values_(std::move(values)) {}

    qint32 Address() const { return address_; }
    void setAddress(qint32 value) { address_ = value; }
    qint32 CmdType() const { return cmdType_; }
    void setCmdType(qint32 value) { cmdType_ = value; }
    bool Error() const { return error_; }
    void setError(bool value) { error_ = value; }
    qint16 ErrorCount() const { return errorCount_; }
    void setErrorCount(qint16 value) { errorCount_ = value; }
    void ErrorInc() { ++errorCount_; }
    void ErrorsClear() { errorCount_ = 0; }
    /// 0 is a broadcast.
    qint16 Module() const { return module_; }
    void setModule(qint16 value) { module_ = value; }
    /// Not to be sent before; 0 is as soon as possible.
    DateTime SendTime() const { return sendTime_; }
    void setSendTime(DateTime value) { sendTime_ = value; }
    /// Throws RunTimeError `Subscript` when there is no such value.
    qint16 Value(int index) const;
    /// Grows the values as far as needed. Throws RunTimeError `Subscript` below 0.
    void setValue(int index, qint16 value);
    Words Values() const { return values_; }
    qint16 ValuesCount() const { return qint16(values_.size()); }
    void ValuesCopy(const Words& values) { values_ = values; }

    /// Same module, kind, register and values.
    bool SameAs(const CommandClass& other) const;

    /// What the settings keep of a command over a restart, and its reading. Throws RunTimeError
    /// when the text is none.
    QString ToText() const;
    static std::shared_ptr<CommandClass> FromText(const QString& text);

private:
    qint32 address_ = 0;
    qint32 cmdType_ = 0;
    bool error_ = false;
    qint16 errorCount_ = 0;
    qint16 module_ = 0;
    DateTime sendTime_ = 0;
    Words values_;
};

using CommandPtr = std::shared_ptr<CommandClass>;

/// The queue: commands in order of arrival, each at most once.
class CommandClasses {
public:
    /// Appends, or drops a command that already waits; the older one keeps its place, its time
    /// and its errors.
    void Add(const CommandPtr& command);
    /// 1-based. Throws RunTimeError `Subscript`.
    CommandPtr Item(int position) const;
    int Count() const { return int(items_.size()); }
    void Remove(int position);

private:
    QList<CommandPtr> items_;
};
