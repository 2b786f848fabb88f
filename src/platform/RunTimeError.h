#pragma once

#include <exception>

namespace platform {

/// A run-time error of the program, known by its number. Thrown where an operation can't be
/// done; caught by the guard of the procedure it happens in, never by a caller further up.
class RunTimeError : public std::exception {
public:
    explicit RunTimeError(int number)
        : number_(number) {}
    int Number() const { return number_; }
    const char* what() const noexcept override { return "run-time error"; }

private:
    int number_;
};

/// Numbers of the run-time errors that the program itself raises. Their texts are those of
/// `ErrorHandling::RunTimeText`.
namespace errors {
inline constexpr int Overflow = 6;
inline constexpr int OutOfMemory = 7;
inline constexpr int Subscript = 9;
inline constexpr int TypeMismatch = 13;
inline constexpr int Internal = 51;
inline constexpr int BadFileName = 52;
inline constexpr int FileNotFound = 53;
inline constexpr int DeviceIo = 57;
inline constexpr int DiskFull = 61;
inline constexpr int InputPastEnd = 62;
inline constexpr int PermissionDenied = 70;
inline constexpr int PathAccess = 75;
inline constexpr int PathNotFound = 76;
inline constexpr int InvalidPropertyValue = 380;
inline constexpr int PrinterError = 482;
inline constexpr int NoSuchField = 3265;
inline constexpr int DatabaseOpen = 3024;
inline constexpr int DatabasePassword = 3031;
inline constexpr int PortNotOpen = 8018;
inline constexpr int PortUnavailable = 8002;
} // namespace errors

} // namespace platform
