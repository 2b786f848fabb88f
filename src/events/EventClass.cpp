#include "events/EventClass.h"

#include "platform/RunTimeError.h"

#include <limits>

qint32 EventClass::ID() const {
    const qint64 id =
        qint64(panel_) * 16777216 + qint64(chnl_) * 65536 + qint64(param_) * 256 + aff_;
    if (id > std::numeric_limits<qint32>::max() || id < std::numeric_limits<qint32>::min())
        throw platform::RunTimeError(platform::errors::Overflow);
    return qint32(id);
}

void EventClass::setID(qint32 value) {
    const auto bits = quint32(value);
    panel_ = qint16(bits >> 24);
    chnl_ = qint16((bits >> 16) & 0xFF);
    param_ = qint16((bits >> 8) & 0xFF);
    aff_ = qint16(bits & 0xFF);
}
