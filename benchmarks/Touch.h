#pragma once

#include "config_screens/panel/PanelEditor.h"
#include "core/Forms.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

/// Brings up a screen; the panel editor shows panel 1. Null when it isn't there.
inline QWidget* OpenScreenOf(const QString& form) {
    if (auto* editor = dynamic_cast<PanelEditor*>(Forms::Load(form)))
        editor->setNumModule(1);
    Forms::Show(form);
    return dynamic_cast<QWidget*>(Forms::Find(form));
}

inline void CloseScreens() {
    Forms::UnloadAllBut({});
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// A finger on the middle of a control.
inline void Press(QWidget& control) {
    const QPointF middle(control.rect().center());
    const QPointF place = control.mapToGlobal(middle);
    QMouseEvent press(QEvent::MouseButtonPress, middle, place, Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(&control, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, middle, place, Qt::LeftButton, Qt::NoButton,
                        {});
    QApplication::sendEvent(&control, &release);
}
