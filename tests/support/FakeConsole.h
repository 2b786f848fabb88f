#pragma once

#include "bus/AlarmConsole.h"
#include "events/EventClass.h"
#include "support/FakeForm.h"

#include <QList>

/// An alarm console whose rows are the test's, and which keeps what it is handed.
class FakeConsole : public FakeForm, public AlarmConsole {
public:
    struct Row {
        QString text;
        qint32 data;
    };

    explicit FakeConsole(QStringList& log)
        : FakeForm(QStringLiteral("wRunAlarms"), log) {}
    ~FakeConsole() override { Gone(); }
    FakeConsole(const FakeConsole&) = delete;
    FakeConsole& operator=(const FakeConsole&) = delete;

    int RowCount() const override { return int(rows.size()); }
    QString RowText(int row) const override { return rows.value(row).text; }
    qint32 RowData(int row) const override { return rows.value(row).data; }
    void EmptyList() override { rows.clear(); }
    void TakeEvent(const EventClass& event) override { taken += event; }
    void Unload() override {
        Gone();
        FakeForm::Unload();
    }

    QList<Row> rows;
    QList<EventClass> taken;
};
