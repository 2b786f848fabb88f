// Makes a site file out of its plain description: korvanelle-mksite <site.json> <base.cfg> <site
// file>. Defaults that the description doesn't name are those of the configuration base.

#include "core/Config.h"
#include "model/ConfigClass.h"
#include "model/Models.h"
#include "platform/Folders.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

using nlohmann::json;

namespace {

QString Text(const json& value) {
    return QString::fromStdString(value.get<std::string>());
}

int ModelOf(const QString& name) {
    for (int code = 1; code <= 5; ++code)
        if (ModuleName(code) == name)
            return code;
    throw std::runtime_error("unknown model " + name.toStdString());
}

void FillChannel(ChannelClass& channel, const json& entry) {
    channel.setScreenText(Text(entry.at("text")));
    channel.setPrintText(Text(entry.at("text")));
    channel.setBibNum(entry.value("biblio", qint16(0)));
    channel.setHelpNum(entry.value("help", qint16(0)));
    channel.setAlmPrio(entry.value("priority", qint16(1)));
    channel.setReactTpo(entry.value("reactivate", 0));
    channel.setReact(channel.ReactTpo() > 0);
    channel.setScrAlm(true);
    channel.setPrtAlm(true);
    channel.setHisto(true);
    channel.setKlaxon(true);
}

void FillPanel(ConfigClass& site, const json& entry) {
    PanelClass& panel = site.Panel(entry.at("address").get<int>());
    panel.setModel(quint8(ModelOf(Text(entry.at("model")))));
    panel.setTitle(Text(entry.at("title")));
    panel.setActive(true);
    for (const json& channel : entry.at("channels"))
        FillChannel(panel.Channel(channel.at("number").get<int>()), channel);
}

/// "panel:channel", channel 0 for the panel as a whole.
std::pair<qint16, qint16> EndPoint(const json& value) {
    const QStringList parts = Text(value).split(u':');
    if (parts.size() != 2)
        throw std::runtime_error("an end point is panel:channel");
    return {parts[0].toShort(), parts[1].toShort()};
}

void FillMirrors(ConfigClass& site, const json& rules) {
    for (const json& rule : rules) {
        const auto from = EndPoint(rule.at("from"));
        const auto to = EndPoint(rule.at("to"));
        site.Mirrors().Add(from.first, from.second, to.first, to.second,
                           rule.value("type", qint16(0)));
    }
}

void FillTexts(ConfigClass& site, const json& description) {
    int number = 0;
    for (const json& text : description.at("biblio"))
        site.setBiblio(++number, Text(text));
    number = 0;
    for (const json& text : description.at("consignes"))
        site.setConsigne(++number, Text(text).replace(u'\n', QStringLiteral("\r\n")));
}

void Make(const char* descriptionPath, const QString& target) {
    std::ifstream stream(descriptionPath);
    const json description = json::parse(stream);
    ConfigClass site;
    site.setBusSettings(Text(description.at("busSettings")));
    site.setAutoStart(description.value("autoStart", false));
    site.setPrtSettings(Text(description.value("printer", json(""))));
    site.setInactivityTime(description.value("inactivityMinutes", site.InactivityTime()));
    for (const auto& [priority, sound] : description.at("sounds").items())
        site.setAlarmPrioSound(std::stoi(priority), sound.get<qint16>());
    FillTexts(site, description);
    for (const json& panel : description.at("panels"))
        FillPanel(site, panel);
    FillMirrors(site, description.at("mirrors"));
    if (site.Save(target) != ConfigClass::Saved)
        throw std::runtime_error("the site file can't be written");
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: korvanelle-mksite <site.json> <base.cfg> <site file>\n");
        return 2;
    }
    const QFileInfo base(QString::fromLocal8Bit(argv[2]));
    platform::OverrideApplication(base.absolutePath(), base.completeBaseName());
    if (!Config::OpenConfigBase())
        return 1;
    try {
        Make(argv[1], QString::fromLocal8Bit(argv[3]));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
    return 0;
}
