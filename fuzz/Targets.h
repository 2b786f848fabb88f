#pragma once

#include <cstddef>
#include <cstdint>

// The fuzz functions. Each takes any bytes, gives 0 and ends the process when something that must
// hold doesn't. A run leaves nothing behind that another one would see, and no file is touched.

/// The exchanges of the bus with any reply.
int FuzzExchange(const uint8_t* data, size_t size);
/// The engine with any words and event memories of all five models, and any command.
int FuzzPanels(const uint8_t* data, size_t size);
/// A site file, whole or from any of its sections on.
int FuzzSite(const uint8_t* data, size_t size);
/// A settings file, edited by hand and by the program, on a disk that fails at times.
int FuzzSettings(const uint8_t* data, size_t size);
/// A line of a history file and the dates in it.
int FuzzHistoLine(const uint8_t* data, size_t size);
/// A command as the settings keep it.
int FuzzCommand(const uint8_t* data, size_t size);
/// The alarms of the console as the settings keep them.
int FuzzAlarmList(const uint8_t* data, size_t size);
/// A printer's definition, and a line printed with it.
int FuzzPrinter(const uint8_t* data, size_t size);
/// A sheet of the channels as a spreadsheet may save it, or texts of a channel that go out and come
/// back.
int FuzzSheet(const uint8_t* data, size_t size);
