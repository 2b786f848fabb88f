#include "Shots.h"

#include "config_screens/panel/PanelEditor.h"
#include "core/Forms.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QPixmap>
#include <QWidget>
#include <cstdio>

bool Save(const QString& form, const QString& path) {
    auto* widget = dynamic_cast<QWidget*>(Forms::Find(form));
    if (widget == nullptr)
        return false;
    // A screen may load what it shows a moment after it stands.
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < 150;)
        QApplication::processEvents();
    return widget->grab().save(path);
}

void Take(const QString& form, const QString& path, int panel) {
    if (auto* editor = dynamic_cast<PanelEditor*>(Forms::Load(form)))
        editor->setNumModule(qint16(panel));
    Forms::Show(form);
    if (!Save(form, path))
        std::fprintf(stderr, "%s: not saved\n", path.toLocal8Bit().constData());
    Forms::Unload(form);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QWidget* Child(const QString& form, const char* name) {
    auto* screen = dynamic_cast<QWidget*>(Forms::Find(form));
    return screen == nullptr ? nullptr : screen->findChild<QWidget*>(QLatin1String(name));
}

void Click(const QString& form, const char* name) {
    if (auto* button = qobject_cast<QAbstractButton*>(Child(form, name)))
        button->click();
}
