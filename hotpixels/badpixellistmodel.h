// SPDX-License-Identifier: MIT
// The one table of hot pixels that the whole program edits.
#pragma once

#include "badpixel.h"

#include <QAbstractTableModel>
#include <QPoint>
#include <QStringList>
#include <QVector>

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
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool insertRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// A copy of the entry at `row`, which must be valid.
    Badpixel badpixel(int row) const;

    /// The first entry, in list order, that lies less than `tolerance` away in x and in y.
    /// @return its row in column 0, or an invalid index
    QModelIndex findBadpixel(int x, int y, int tolerance) const;

    /// Appends a User entry unless a Factory or User entry stands at the same place.
    /// @return whether it was appended
    bool addBadpixel(const QPoint &position);

    /// Removes the entry at `row` if it is the user's own. @return whether it was removed
    bool removeUserBadpixel(int row);

    /// Number of user entries that the camera can hold, and of factory entries that it reported, at the last
    /// getBadpixelList().
    int maximumUserEntries() const { return maxUserEntries; }
    int factoryEntries() const { return factoryCount; }

signals:
    void pixelAdded(int count);

public slots:
    /// Replaces the whole list with the camera's factory and user lists; a null camera leaves it empty.
    void getBadpixelList(Camera *cam);

    /// Writes the User entries into the camera. @throws std::runtime_error
    void writeBadpixelList(Camera *cam);

    /// Removes every User entry and keeps the rest.
    void clearUserBadpixelList();

    /// Removes every entry.
    void clearBadpixelList();

    /// Sorts the list itself by x, y or class; equal entries land in any order.
    /// @throws std::runtime_error "Sort Error" for any other column or order
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
};
