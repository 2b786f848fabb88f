#pragma once

#include <QByteArray>

class ConfigClass;

/// What the program that plays a site's modules is to play.
namespace SimulatedSite {

/// The panels that are polled, each with its model and title, as the simulator reads them (JSON,
/// UTF-8). Empty for a site without any.
QByteArray ScenarioOf(const ConfigClass& site);

/// Makes a site one for a rehearsal: the bus starts by itself, and what is printed on whatever port
/// goes to a parallel one. Neither counts as a change.
void Fit(ConfigClass& site);

} // namespace SimulatedSite
