#pragma once

#include "core/Message.h"

#include <QString>
#include <QtGlobal>

/// How far work on the whole bus is.
struct BusStep {
    int panel;  ///< place of the panel that is next among them, from 1
    int panels; ///< panels of a pass
    int pass;   ///< from 1
    int passes;
};

/// The notice of work on the whole bus, with how far it is and how long it will go on.
class BusProgress {
public:
    explicit BusProgress(const QString& text);

    /// Paints anew at most four times a second; the event loop stands still meanwhile.
    void Tell(const BusStep& step);

private:
    QString text_;
    Messages::Notice notice_;
    qint64 begun_;
    qint64 told_;
};
