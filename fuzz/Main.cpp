// libFuzzer's entry points around the one function of a program.

#include "fuzz/Targets.h"

#include <QGuiApplication>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    // Timers, signals and the pointer want an application; it lives until the end.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return FUZZ_FUNCTION(data, size);
}
