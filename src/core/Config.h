#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

/// The configuration base beside the executable: words, factory defaults and alarm sounds.
namespace Config {

/// Opens the base, reads all its words and the language in use. A language that the base doesn't
/// have is told once, and the first one is used. True when the base is open afterwards.
bool OpenConfigBase();
/// Drops the base, for tests.
void CloseConfigBase();

/// The word of a numeric text id in the language in use: empty for a key that isn't a number, the
/// key between two "#" for an unknown one. "|" stands for a line break unless the caller keeps
/// it.
QString GetText(const QString& key, bool keepBars = false);
QString GetText(int key, bool keepBars = false);
/// The word of a text id in every language of the base, that of the language in use first, with
/// its "|". Empty for an unknown id.
QStringList GetTexts(int key);

/// A factory default; empty when there is none of that id.
QString GetConfig(int id);

/// Name of a language, counted from 0; empty behind the last one.
QString GetLanguage(int index);

/// The .wav bytes of a sound number; nothing when the base holds none.
std::optional<QByteArray> Sound(int number);
/// The extension of the file that a sound is meant to be, without a dot; "wav" unless the base says
/// otherwise.
QString SoundExtension(int number);
/// The highest sound number of the base, 0 when it holds none.
int HighestSound();

/// Writes for each place I of the priorities 0 to 99 the sound numbered `soundNumber(I)` to
/// "AlarmSound" + I + ".wav" beside the executable. A file that exists stays as it is. What can't
/// be written keeps no other from being written, and is told once.
void ExportSounds(const std::function<int(int)>& soundNumber);

/// A string of 0 and 1 as a number, sign and magnitude: the leftmost of its 16 or 32 digits makes
/// the sum of the others negative.
qint32 BinToDec(const QString& text, bool is16Bit = false);

} // namespace Config

using Config::GetConfig;
using Config::GetLanguage;
using Config::GetText;
