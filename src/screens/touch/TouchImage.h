#pragma once

#include <QAbstractButton>
#include <QString>

/// A picture that is touched: a rounded tile with a drawing and, if it has a text, its caption.
/// The whole area takes the touch, and it never takes the keyboard focus.
class TouchImage : public QAbstractButton {
    Q_OBJECT
    /// Name of the drawing in the resources, without folder or extension.
    Q_PROPERTY(QString picture READ Picture WRITE setPicture)
    /// The drawing in its place while a checkable tile is checked; empty for the same.
    Q_PROPERTY(QString checkedPicture READ CheckedPicture WRITE setCheckedPicture)

public:
    explicit TouchImage(QWidget* parent = nullptr);

    QString Picture() const { return picture_; }
    void setPicture(const QString& name);
    QString CheckedPicture() const { return checkedPicture_; }
    void setCheckedPicture(const QString& name) { checkedPicture_ = name; }

    QSize sizeHint() const override;
    /// Where the caption is written; the whole tile when there is no picture.
    QRect CaptionArea() const;
    /// The font in which the whole caption fits its area, at least six tenths of the tile's own.
    QFont CaptionFont() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool IsWide() const;
    QRect PictureArea() const;
    int CaptionFlags() const;

    QString picture_;
    QString checkedPicture_;
};
