#pragma once

#include "events/AlarmTables.h"

#include <QByteArray>

/// The report as a PDF of A4 pages: figures, bars and tables. `site` and `made` stand at its head.
QByteArray ReportPdf(const AlarmTables& tables, const QString& site, const QString& made);
