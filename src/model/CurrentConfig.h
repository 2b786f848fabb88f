#pragma once

#include "model/ConfigClass.h"

#include <QString>
#include <memory>

namespace Global {

/// The site model in use; made with its defaults when it is first asked for.
ConfigClass& Configuration();
/// Puts another site in its place; the former one goes with its panels. A null pointer leaves
/// the next caller a new one.
void setConfiguration(std::unique_ptr<ConfigClass> configuration);

} // namespace Global

/// The site file beside the executable that the program starts from.
QString CurrentConfigFile();
/// Saves the site model there; results as ConfigClass::Save. A site that is marked as changed stays
/// so: its own file is another one.
qint32 SaveCurrentConfig();
