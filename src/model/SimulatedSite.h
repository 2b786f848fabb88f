#pragma once

#include <QByteArray>

class ConfigClass;

/// What the program that plays a site's modules is to play.
namespace SimulatedSite {

/// The panels that are polled, each with its model, as the simulator reads them (JSON). Empty for a
/// site without any.
QByteArray ScenarioOf(const ConfigClass& site);

} // namespace SimulatedSite
