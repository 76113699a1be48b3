// SPDX-License-Identifier: MIT
// The one table of hot pixels that the whole program edits.
#pragma once

#include "badpixel.h"
#include "badpixelindex.h"
#include "entrylist.h"

#include <QAbstractTableModel>
#include <QPoint>
#include <QStringList>

#include <cstdint>
#include <vector>

class Camera;

/// Hot pixel entries in list order, one a row, with the columns x, y and class. GUI thread only.
class BadpixelListModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit BadpixelListModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Changes x or y by a number (cut to 16 bits) or the class by "factory" or "user"; the index's row must
    /// be valid. @return whether the value was understood
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    /// Inserts user entries at (0, 0).
    bool insertRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    /// Removes those of the rows that are there; always true. All rows asked for are announced, so callers
    /// with a view attached must pass rows that exist.
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// A copy of the entry at `row`, which must be valid.
    Badpixel badpixel(int row) const;

    /// The first entry, in list order, that lies less than `tolerance` away in x and in y. A tolerance of 1
    /// asks for exactly this place and takes constant time; others walk the list.
    /// @return its row in column 0, or an invalid index
    QModelIndex findBadpixel(int x, int y, int tolerance) const;

    /// Appends a User entry unless a Factory or User entry stands at the same place. Coordinates are cut to
    /// 16 bits before anything else. Takes constant time.
    /// @return whether it was appended
    bool addBadpixel(const QPoint &position);

    /// Removes the entry at `row` if it is the user's own. @return whether it was removed
    bool removeUserBadpixel(int row);

    /// Number of user entries that the camera can hold, and of factory entries that it reported, at the last
    /// getBadpixelList().
    int maximumUserEntries() const { return maxUserEntries; }
    int factoryEntries() const { return factoryCount; }

signals:
    /// Emitted by addBadpixel() with 1 for each entry that it appended.
    void pixelAdded(int count);

public slots:
    /// Replaces the whole list with the camera's factory and user lists; a null camera leaves it empty.
    void getBadpixelList(Camera *cam);

    /// Writes the User entries into the camera, in list order.
    /// @throws std::runtime_error when they are more than it can hold, or when it refuses them
    void writeBadpixelList(Camera *cam);

    /// Removes every User entry and keeps the rest.
    void clearUserBadpixelList();

    /// Removes every entry.
    void clearBadpixelList();

    /// Lets the camera library write the User entries into a binary file, in list order. The library's
    /// current user list is changed for the time and then put back.
    /// @throws std::runtime_error with the library's code when one of the two could not be done. Whether the
    /// file itself was written is not told.
    void saveAsFile(Camera *cam, const QString &filename);

    /// Replaces the User entries by those of a binary file, through the library's current user list.
    /// @throws std::runtime_error with the library's code; the User entries of before are gone even then
    void loadFromFile(Camera *cam, const QString &filename);

    /// Writes the User entries into a text file, in list order.
    /// @throws std::runtime_error when it cannot be opened or written to its end
    void exportAsFile(const QString &filename);

    /// Replaces the User entries by the entries of a text file, which may have any class and place.
    /// @throws std::runtime_error when it cannot be read; the User entries of before are gone even then
    void importFromFile(const QString &filename);

    /// Sorts the list itself by x, y or class; equal entries land in any order.
    /// @throws std::runtime_error "Sort Error" for any other column or order
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    friend struct BadpixelListModelPeer; // tests plant entries of classes that only files bring

    QModelIndex entryAt(int x, int y) const;
    QModelIndex entryNear(int x, int y, int tolerance) const;
    void appendFromCamera(const std::vector<Badpixel> &list);
    void append(const std::vector<Badpixel> &list);
    std::vector<Badpixel> userEntries() const;

    // Written by the camera library itself, hence of its width and sign.
    std::int32_t maxUserEntries = 0;
    std::int32_t factoryCount = 0;
    EntryList entries;
    QStringList headers;
    mutable BadpixelIndex places; // follows the entries when asked
};
