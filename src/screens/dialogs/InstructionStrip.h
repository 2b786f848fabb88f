#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class TouchImage;

/// The way back to an instruction that an event took from the operator: a strip at the foot of the
/// console's list. It goes when it is touched, and with the console.
class InstructionStrip : public QWidget {
    Q_OBJECT
public:
    /// Offers an instruction on the console, if there is one, in place of a former one.
    static void Offer(const QString& alarm, const QString& consigne);
    /// Takes the offer back.
    static void Withdraw();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    InstructionStrip(QWidget* console, const QString& alarm, const QString& consigne);
};
