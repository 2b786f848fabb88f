#pragma once

/// Is somebody there to answer? What runs was called by a touch or a key, or by nobody: a timer,
/// the start, the bus. Only the first may wait for an answer.
namespace Operator {

/// True inside the handler of a touch or a key.
bool Acts();

/// While one exists, what runs was called by a touch or a key.
class Acting {
public:
    Acting();
    ~Acting();
    Acting(const Acting&) = delete;
    Acting& operator=(const Acting&) = delete;

private:
    bool before_;
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
    bool before_;
};

} // namespace Operator
