#pragma once

#include "core/Forms.h"

#include <QStringList>
#include <functional>

/// A form that notes what is done with it.
class FakeForm : public Forms::Form {
public:
    FakeForm(const QString& name, QStringList& log)
        : name_(name)
        , log_(log) {
        Forms::Added(this);
    }
    ~FakeForm() override { Forms::Removed(this); }
    FakeForm(const FakeForm&) = delete;
    FakeForm& operator=(const FakeForm&) = delete;

    QString Name() const override { return name_; }
    void Show() override { Note(QStringLiteral("show"), true); }
    void Hide() override { Note(QStringLiteral("hide"), false); }
    void BringToFront() override { Note(QStringLiteral("front"), visible_); }
    bool Visible() const override { return visible_; }
    void Unload() override {
        if (atUnload)
            atUnload();
        Note(QStringLiteral("unload"), false);
        Forms::Removed(this);
    }

    std::function<void()> atUnload;

private:
    void Note(const QString& what, bool visible) {
        log_ += what + u' ' + name_;
        visible_ = visible;
    }

    QString name_;
    QStringList& log_;
    bool visible_ = false;
};
