#pragma once

#include "Sources.h"

namespace mkbase {

/// Writes the configuration base of `sources` to `path`: the tables T_Language, T_Config and
/// T_Sounds, each with its id as primary key. The base is built in a file beside it and takes its
/// place at the end, so that a failure leaves the old one. Throws BuildError.
void WriteBase(const Sources& sources, const QString& path);

} // namespace mkbase
