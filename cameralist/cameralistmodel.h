// SPDX-License-Identifier: MIT
// The table of cameras attached to the computer.
#pragma once

#include "cameraentry.h"

#include <QAbstractTableModel>
#include <QStringList>

#include <deque>

class Camera;
class QTimer;

/// Attached cameras, one a row, with the columns Cam, Dev, Model, SerNo and Status, read anew from the
/// camera library at an interval. Rows keep their place from one refresh to the next; new cameras go to the
/// end. GUI thread only.
class CameraListModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// Starts refreshing every `interval` milliseconds, for the first time after one interval.
    explicit CameraListModel(int interval, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// The camera of a row, which must be valid.
    const CameraEntry &camera(int row) const { return cameras[static_cast<std::size_t>(row)]; }

signals:
    /// Emitted by a refresh that changed any row.
    void somethingChanged();
    /// Emitted by every refresh that succeeds: the row to select when nothing is selected.
    void rowToSelect(int row);
    /// Emitted by refresh() instead of an exception, with the time to show the text in milliseconds.
    void refreshFailed(QString text, int msec);

public slots:
    /// Names the camera that this program has open; its row says so from the next refresh on.
    void setOpenCamera(Camera *cam);
    void clearOpenCamera();

    /// Sorts the rows once; a refresh does not sort again.
    /// @throws std::runtime_error "Sort Error" for any other column or order, unless there is nothing to
    /// compare
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// Brings the rows up to date with the camera library.
    /// @throws std::runtime_error when the library does not list its cameras; the rows then stay as they were
    void updateList();

    /// updateList() for the event loop: a failure is reported by refreshFailed().
    void refresh();

private:
    // Cameras usually come in the order of the rows, and a refresh takes them away from the front: cheap in a
    // deque, quadratic in a vector, where a library that lies may list tens of thousands.
    using Cameras = std::deque<CameraEntry>;

    bool removeAllRows();
    bool matchRows(Cameras fresh);
    bool updateRows(Cameras &fresh);
    bool updateRow(int row, CameraEntry &fresh);
    bool appendRows(const Cameras &fresh);
    void removeRow(int row);

    Cameras cameras;
    QStringList headers;
    QTimer *timer = nullptr; // a child of the model
    QString openSerial;
};
