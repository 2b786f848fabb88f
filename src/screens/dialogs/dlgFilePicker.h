#pragma once

#include "screens/touch/ScreenForm.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

class QListWidgetItem;

namespace Ui {
class dlgFilePicker;
}

/// Chooses a file or a folder by touch: the media that can be taken out come first, then the way
/// back to this computer, the folders and the files.
class dlgFilePicker : public ScreenForm {
    Q_OBJECT
public:
    enum class Mode { Open, Save, Folder };

    explicit dlgFilePicker(Mode mode = Mode::Open);
    ~dlgFilePicker() override;

    void setTitle(const QString& title);
    /// Pairs of a name and a pattern, joined by bars.
    void setFilter(const QString& filter);
    /// Where to begin, and the name that is there at first. A folder that can't be read is
    /// replaced by the program's.
    void setStart(const QString& folder, const QString& name);
    /// Full path of what was chosen; empty until then.
    QString Path() const { return path_; }

protected:
    void CloseRequested() override { Hide(); }
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum Image { Cancel, Confirm };
    enum class Row { Volume, Computer, Folder, File };
    struct Filter {
        QString name;
        QStringList patterns;
    };

    void Arrange();
    void Fill();
    void AddRow(Row kind, const QString& text, const QString& path);
    void TapRow(Row kind, const QString& path);
    /// Shows a folder. Without one that can be read, tells so and stays, or goes back to the
    /// program's folder if the present one is gone as well.
    void Enter(const QString& folder);
    void LeaveVanishedFolder();
    void NextFilter();
    void ShowFilter();
    void ShowName(const QString& name);
    void TypeName();
    void MakeFolder();
    void Control_Click(int index);
    void ChooseFile();
    void ChooseTarget();
    void ChooseFolder();
    void Choose(const QString& path);
    QString WithExtension(const QString& name) const;
    QStringList Patterns() const;

    std::unique_ptr<Ui::dlgFilePicker> ui_;
    Mode mode_;
    QList<Filter> filters_;
    int filter_ = 0;
    QString folder_;
    QString name_;
    QString path_;
};
