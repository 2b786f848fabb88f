#pragma once

#include <QString>

/// Names of the forms, as the registry knows them.
namespace FormNames {

inline const QString wMain = QStringLiteral("wMain");
inline const QString wPolling = QStringLiteral("wPolling");
inline const QString wRunAlarms = QStringLiteral("wRunAlarms");
inline const QString wTeleCmdes = QStringLiteral("wTeleCmdes");
inline const QString wTeleCmde = QStringLiteral("wTeleCmde");
inline const QString wRehearsal = QStringLiteral("wRehearsal");
inline const QString wHistoric = QStringLiteral("wHistoric");
inline const QString wAlarmReport = QStringLiteral("wAlarmReport");
inline const QString wHistorySearch = QStringLiteral("wHistorySearch");
inline const QString wHelp = QStringLiteral("wHelp");
inline const QString wBusModules = QStringLiteral("wBusModules");
inline const QString wBusPanneau = QStringLiteral("wBusPanneau");
inline const QString wBusMiroirs = QStringLiteral("wBusMiroirs");
inline const QString wBusMirrorOne = QStringLiteral("wBusMirrorOne");
inline const QString wParamBiblio = QStringLiteral("wParamBiblio");
inline const QString wParamConsignes = QStringLiteral("wParamConsignes");
inline const QString wParamEcran = QStringLiteral("wParamEcran");
inline const QString wParamPrinter = QStringLiteral("wParamPrinter");
inline const QString wSysComm = QStringLiteral("wSysComm");
inline const QString wSysConfSon = QStringLiteral("wSysConfSon");
inline const QString wSysForward = QStringLiteral("wSysForward");
inline const QString wBackup = QStringLiteral("wBackup");
inline const QString wSiteCompare = QStringLiteral("wSiteCompare");
inline const QString wTechnician = QStringLiteral("wTechnician");
inline const QString wTechFindPanels = QStringLiteral("wTechFindPanels");
inline const QString wTechEtatModule = QStringLiteral("wTechEtatModule");
inline const QString wTechConsignations = QStringLiteral("wTechConsignations");
inline const QString wTechDiagnosis = QStringLiteral("wTechDiagnosis");
inline const QString dlgBusCopy = QStringLiteral("dlgBusCopy");
inline const QString dlgConsigne = QStringLiteral("dlgConsigne");
inline const QString dlgDefPwds = QStringLiteral("dlgDefPwds");
inline const QString dlgEditMirror = QStringLiteral("dlgEditMirror");
inline const QString dlgFilePicker = QStringLiteral("dlgFilePicker");
inline const QString dlgHistoryPeriod = QStringLiteral("dlgHistoryPeriod");
inline const QString dlgKeyboard = QStringLiteral("dlgKeyboard");
inline const QString dlgListInput = QStringLiteral("dlgListInput");
inline const QString dlgMenuParams = QStringLiteral("dlgMenuParams");
inline const QString dlgMenuSystem = QStringLiteral("dlgMenuSystem");
inline const QString dlgMessage = QStringLiteral("dlgMessage");
inline const QString dlgOutOfService = QStringLiteral("dlgOutOfService");
inline const QString dlgParamPrinter = QStringLiteral("dlgParamPrinter");
inline const QString dlgPortDevice = QStringLiteral("dlgPortDevice");
inline const QString dlgSysTime = QStringLiteral("dlgSysTime");
inline const QString dlgUserCodes = QStringLiteral("dlgUserCodes");

} // namespace FormNames
