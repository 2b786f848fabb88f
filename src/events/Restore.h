#pragma once

#include "events/BackupFile.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

/// Takes a backup onto this machine: first all of it is unpacked beside what is there and nothing
/// is touched, then a list of renames says what takes which place, and then they are done. A kill
/// ahead of the list leaves all as it was; one behind it is made good at the next start.
namespace Restore {

/// What a file of the backup means for this machine.
enum class Effect {
    Same,     ///< is there with this content, or goes on from it
    New,      ///< there is none of its name
    Replaced, ///< takes the place of another content
    Beside,   ///< another content keeps its place: this one gets a name beside it
};

struct Item {
    QString name;   ///< in the backup
    QString target; ///< name in the application's folder
    Effect effect = Effect::Same;
};

/// The folder in which files wait. It goes with the last plan that knows it, unless what waits in
/// it was written down to be taken.
struct StageFolder {
    explicit StageFolder(QString newPath);
    ~StageFolder();
    StageFolder(const StageFolder&) = delete;
    StageFolder& operator=(const StageFolder&) = delete;

    QString path;
    bool isCommitted = false;
};

struct Plan {
    BackupFile::Manifest manifest;
    std::shared_ptr<StageFolder> stage;
    QList<Item> items;

    /// The waiting file of an entry.
    QString FileOf(const QString& name) const { return stage->path + u'/' + name; }

    QStringList TargetsOf(const QString& kind, Effect effect) const;
};

/// Folders and names of this machine, for work that sees nothing of the main thread.
struct Places {
    QString folder;             ///< the application's
    QString executable;         ///< its name
    QStringList programFolders; ///< where printer definitions are looked for
    QString stage;              ///< where the files wait, each time another

    static Places OfProgram();
};

/// Unpacks a backup beside and finds what each of its files means. Throws like BackupFile::Unpack.
/// Nothing is left of what fails.
Plan Stage(const QString& backup, const Places& places, BackupFile::Progress& progress);

/// A setting that the backup has otherwise than this machine.
struct Setting {
    QString section;
    QString key;
    QString here;
    QString there;
};
/// Settings that would change, apart from those that belong to the moment and from the machine's
/// own if they are kept.
QList<Setting> ChangedSettings(const Plan& plan, bool keepMachine);

/// Writes down what takes which place; from then on it happens, now by Complete or at the next
/// start. What belongs to the moment - standing alarms, commands on their way, numbers of events -
/// stays this machine's, and so do its ports, folders and screen size when they are kept. Throws
/// RunTimeError.
void Commit(const Plan& plan, bool keepMachine);
/// Does what was written down. At the start of the program, what waits for nothing goes as well.
/// True when a restore was brought to its end. Throws RunTimeError; the rest is done by another
/// call.
bool Complete();
bool CompleteAtStart();

} // namespace Restore
