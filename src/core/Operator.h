#pragma once

#include <QtGlobal>

/// Is somebody there to answer? What runs was called by a touch or a key, or by nobody: a timer,
/// the start, the bus. Only the first may wait for an answer.
namespace Operator {

/// True inside the handler of a touch or a key.
bool Acts();
/// Number of that touch or key, another one for each; 0 when nobody acts.
quint64 Touch();

/// While one exists, what runs was called by a touch or a key.
class Acting {
public:
    Acting();
    ~Acting();
    Acting(const Acting&) = delete;
    Acting& operator=(const Acting&) = delete;

private:
    quint64 before_;
};

/// Around everything that lets the event loop run inside a handler: what the loop calls was not
/// called by the touch that waits.
class Away {
public:
    Away();
    ~Away();
    Away(const Away&) = delete;
    Away& operator=(const Away&) = delete;

private:
    quint64 before_;
};

} // namespace Operator
