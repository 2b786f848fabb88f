// The screens of the configuration, full and empty.

#include "Shots.h"

#include "bus/wPolling.h"
#include "config_screens/mirrors/dlgEditMirror.h"
#include "config_screens/panel/MirrorOne.h"
#include "config_screens/panel/dlgColour.h"
#include "config_screens/printer/dlgParamPrinter.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>
#include <utility>

namespace {

/// The printer's screen with each kind of port, and the choice for a class.
void TakePrinter(const Paths& path) {
    ConfigClass& site = Global::Configuration();
    const QString settings = site.PrtSettings();
    site.setPrinterName(QStringLiteral("escp"));
    const char* codes[] = {"", "1B", "1", "0", "0B", "2BIU", "2", "3I"};
    for (int i = 0; i < int(std::size(codes)); ++i)
        site.setPrinterInitCode(i, QString::fromLatin1(codes[i]));
    for (const auto& [name, port] :
         {std::pair{"wParamPrinter_serial", "COM2:9600,N,8,1"},
          std::pair{"wParamPrinter_parallel", "LPT1:"}, std::pair{"wParamPrinter_none", ""}}) {
        site.setPrtSettings(QString::fromLatin1(port));
        Take(FormNames::wParamPrinter, path(name));
    }
    site.setPrtSettings(settings);
    if (auto* dialog = dynamic_cast<dlgParamPrinter*>(Forms::Load(FormNames::dlgParamPrinter))) {
        dialog->setTitle(GetText(430321));
        dialog->setDefinition(PrinterDefinition(PrinterDefinition::PathOf(site.PrinterName())));
        dialog->setCode(PrinterCode::Of(QStringLiteral("1BU")));
    }
    Take(FormNames::dlgParamPrinter, path("dlgParamPrinter_class"));
}

void FillPanels(ConfigClass& site) {
    constexpr qint32 Colours[] = {0xFFFF, 0xFF0000, 0xFFFFFF, 0,
                                  0xFF,   0x00FF00, 0x808080, 0x443A2E};
    const QString widest(PanelClass::MaxTitle, u'W');
    const QString titles[] = {widest, QStringLiteral("Pump room|North basin"),
                              QStringLiteral("Main switchboard of the water treatment"),
                              QStringLiteral("Boiler")};
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        PanelClass& panel = site.Panel(number);
        panel.setModel(quint8(1 + number % 5));
        panel.setActive(number % 7 != 0);
        panel.setTitle(titles[number / 2 % 4]);
        panel.setTitleColor(Colours[number % 8]);
        for (int channel = 1; channel <= PanelClass::MaxChannel; ++channel) {
            ChannelClass& one = panel.Channel(channel);
            one.setScreenText(widest);
            one.setPrintText(widest);
            one.setScrAlm(true);
            one.setAlmPrio(99);
            one.setBibNum(ConfigClass::BiblioCount);
            one.setHelpNum(ConfigClass::ConsigneCount);
        }
    }
}

/// Every text at its length in the widest letter, all panels in use, 1,000 mirrors.
void FillSite() {
    Global::setConfiguration(std::make_unique<ConfigClass>());
    ConfigClass& site = Global::Configuration();
    FillPanels(site);
    for (int number = 1; number <= ConfigClass::BiblioCount; ++number)
        site.setBiblio(number, QString(24, u'W'));
    for (int number = 1; number <= ConfigClass::ConsigneCount; ++number)
        site.setConsigne(number, QString(1024, u'W'));
    for (int rule = 0; rule < 1000; ++rule)
        site.Mirrors().Add(qint16(rule < 40 ? 5 : 1 + rule % 64), qint16(rule < 40 ? 1 : rule % 12),
                           qint16(1 + (rule + 1) % 64), qint16(1 + rule % 12),
                           qint16(rule % 12 == 0 ? 0 : 1 + rule % 2));
}

/// A form that is shown modally waits for its end: the picture is taken while it does.
void TakeMirrorsOf(int panel, const QString& channel, const QString& path) {
    auto* mirrors = dynamic_cast<MirrorOne*>(Forms::Load(FormNames::wBusMirrorOne));
    if (mirrors == nullptr)
        return;
    QTimer::singleShot(0, qApp, [path] {
        Save(FormNames::wBusMirrorOne, path);
        Forms::Unload(FormNames::wBusMirrorOne);
    });
    ConfigClass& site = Global::Configuration();
    mirrors->Present(site.Mirrors(), site.Panel(panel), channel);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void TakeDialogs(const Paths& path) {
    if (auto* dialog = dynamic_cast<dlgEditMirror*>(Forms::Load(FormNames::dlgEditMirror)))
        dialog->setRule(Global::Configuration().Mirrors().Item(2));
    Take(FormNames::dlgEditMirror, path("dlgEditMirror_full"));
    auto* palette = new dlgColour;
    palette->setColour(0x00FFFF);
    palette->setSample(QString(PanelClass::MaxTitle, u'W'));
    palette->Show();
    Save(QStringLiteral("dlgColour"), path("dlgColour"));
    palette->Unload();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Switched on, with a server that isn't there and paths of any length.
void TakeForwarding(const Paths& path) {
    ForwardSettings settings;
    settings.journal = settings.syslog = true;
    settings.server.host = QStringLiteral("logserver.waterworks.example.com");
    settings.server.authority = QStringLiteral("/media/STICK/certificates/waterworks/plant-ca.pem");
    settings.Write();
    EventForwarder& forwarder = Polling()->Forwarder();
    forwarder.Start();
    forwarder.SendTest(QString());
    // Certificates in a file that isn't there: no try leaves this machine.
    QElapsedTimer patience;
    patience.start();
    while (forwarder.Present().error == platform::LogServerError::None &&
           !patience.hasExpired(5000))
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    Take(FormNames::wSysForward, path("wSysForward_on"));
    IniDeleteSection(QStringLiteral("Forward"));
    forwarder.Start();
    QDir(Global::InApplicationFolder(QStringLiteral("Forward"))).removeRecursively();
}

} // namespace

void TakeConfiguration(const Paths& path) {
    TakeForwarding(path);
    TakePrinter(path);
    const QString forms[] = {FormNames::wBusModules,     FormNames::wBusPanneau,
                             FormNames::wBusMiroirs,     FormNames::wParamBiblio,
                             FormNames::wParamConsignes, FormNames::wParamEcran,
                             FormNames::wSysComm,        FormNames::wSysConfSon};
    FillSite();
    for (const QString& form : forms)
        Take(form, path((form.toLatin1() + "_full").constData()), 5);
    Take(FormNames::dlgBusCopy, path("dlgBusCopy_full"));
    TakeMirrorsOf(5, QStringLiteral("1"), path("wBusMirrorOne_full"));
    TakeDialogs(path);
    Global::setConfiguration(std::make_unique<ConfigClass>());
    for (const QString& form : forms)
        Take(form, path((form.toLatin1() + "_empty").constData()));
    Global::Configuration().Read(CurrentConfigFile());
}
