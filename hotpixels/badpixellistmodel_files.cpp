// SPDX-License-Identifier: MIT
// The files of the hot pixel table: the camera library's binary ones and plain text.
#include "badpixellistmodel.h"

#include "badpixellistfile.h"
#include "currentuserlist.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <sys/stat.h>

#include <stdexcept>
#include <string>

namespace {

void require(kelvo::Status status, const char *failure)
{
    if (status != kelvo::Success) {
        throw std::runtime_error(failure + std::to_string(status) + "\n");
    }
}

// Opening a pipe to write waits until somebody reads it.
bool isPipe(const QString &filename)
{
    struct stat status;
    return stat(QFile::encodeName(filename).constData(), &status) == 0 && S_ISFIFO(status.st_mode);
}

void requireSaved(kelvo::Status status)
{
    require(status, "write to file failed with ");
}

void requireLoaded(kelvo::Status status)
{
    require(status, "load from file failed with ");
}

} // namespace

// The library saves its current user list only, so ours takes that one's place for a moment.
void BadpixelListModel::saveAsFile(Camera *cam, const QString &filename)
{
    const CurrentUserList current(cam);
    ListBuffer backup;
    requireSaved(current.read(backup));
    ListBuffer list = bufferFrom(userEntries());
    // Kept: the count wraps at 32768. A longer list is sent whole, so the library can see that it does not
    // fit.
    list[0] %= 32768;
    requireSaved(current.set(list));
    // Kept: whether the file was written is not asked; putting the old list back decides.
    current.saveTo(filename);
    requireSaved(current.set(backup));
}

// Kept: the backup is put back after a success alone. After a failure the library holds what it holds.
void BadpixelListModel::loadFromFile(Camera *cam, const QString &filename)
{
    clearUserBadpixelList();
    const CurrentUserList current(cam);
    ListBuffer backup;
    requireLoaded(current.read(backup));
    requireLoaded(current.loadFrom(filename));
    ListBuffer loaded;
    requireLoaded(current.read(loaded));
    append(entriesFrom(loaded, User));
    const kelvo::Status restored = current.set(backup);
    emit layoutChanged();
    requireLoaded(restored);
}

void BadpixelListModel::exportAsFile(const QString &filename)
{
    QFile file(filename);
    if (isPipe(filename) || !file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        throw std::runtime_error("Can't open file for writing.");
    }
    QTextStream text(&file);
    writeEntries(text, userEntries());
    // What the buffers still hold may meet a full disk. A list that is lost must not pass for an exported
    // one.
    text.flush();
    if (text.status() != QTextStream::Ok || !file.flush()) {
        throw std::runtime_error("Can't write file.");
    }
}

void BadpixelListModel::importFromFile(const QString &filename)
{
    clearUserBadpixelList();
    QFile file(filename);
    // Devices and pipes could keep the program waiting for ever, or never end.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        throw std::runtime_error("Can't open file for reading.");
    }
    QTextStream text(&file);
    const std::vector<Badpixel> list = readEntries(text);
    // Half a list must not pass for the whole one.
    if (file.error() != QFileDevice::NoError) {
        throw std::runtime_error("Can't read file.");
    }
    append(list);
    emit layoutChanged();
}

// One announcement for all rows: a view takes a hundred thousand at once as easily as one.
void BadpixelListModel::append(const std::vector<Badpixel> &list)
{
    if (list.empty()) {
        return;
    }
    beginInsertRows(QModelIndex(), rowCount(), rowCount() + static_cast<int>(list.size()) - 1);
    entries.append(list);
    endInsertRows();
}
