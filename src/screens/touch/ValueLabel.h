#pragma once

#include <QLabel>
#include <QString>

/// A value that is shown and never typed into: black on white, on yellow while it is pointed at.
/// What is too long for one line ends in an ellipsis.
class ValueLabel : public QLabel {
    Q_OBJECT
public:
    explicit ValueLabel(QWidget* parent = nullptr);

    QString Caption() const { return text(); }
    void setCaption(const QString& caption);
    /// The number with which the caption begins, 0 for none.
    int Number() const;
    /// True when the caption is a number as a whole.
    bool IsNumeric() const;
    bool IsPointed() const { return pointed_; }
    void setPointed(bool on);

Q_SIGNALS:
    /// The caption is another one.
    void Changed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool pointed_ = false;
};
