// SPDX-License-Identifier: MIT
// The table of cameras attached to the computer.
#include "cameralistmodel.h"

#include "boundedsort.h"
#include "camera.h"
#include "cameralistreader.h"
#include "guard.h"

#include <QTimer>

#include <algorithm>
#include <stdexcept>

namespace {

enum Column { ColumnCamera, ColumnDevice, ColumnModel, ColumnSerialNumber, ColumnStatus };

constexpr int failureShownFor = 2000; // milliseconds

QString statusText(const CameraEntry &camera)
{
    if (camera.inUse == 0) {
        return CameraListModel::tr("free");
    }
    return camera.opened ? CameraListModel::tr("opened") : CameraListModel::tr("in use");
}

bool ascending(const CameraEntry &a, const CameraEntry &b, int column)
{
    switch (column) {
    case ColumnCamera:
        return a.cameraId < b.cameraId;
    case ColumnDevice:
        // Kept: the device id is held against the other's camera id, which orders nothing in general.
        return a.deviceId < b.cameraId;
    case ColumnModel:
        return a.model < b.model;
    case ColumnSerialNumber:
        return a.serialNumber < b.serialNumber;
    case ColumnStatus:
        return statusText(b).localeAwareCompare(statusText(a)) > 0;
    default:
        throw std::runtime_error("Sort Error");
    }
}

bool descending(const CameraEntry &a, const CameraEntry &b, int column)
{
    if (column == ColumnDevice) {
        return a.deviceId > b.cameraId; // not the mirror of ascending, kept likewise
    }
    return ascending(b, a, column);
}

// The order is an int, because callers may pass what Qt::SortOrder does not hold.
bool comesBefore(const CameraEntry &a, const CameraEntry &b, int column, int order)
{
    switch (order) {
    case Qt::AscendingOrder:
        return ascending(a, b, column);
    case Qt::DescendingOrder:
        return descending(a, b, column);
    default:
        throw std::runtime_error("Sort Error");
    }
}

} // namespace

CameraListModel::CameraListModel(int interval, QObject *parent)
    : QAbstractTableModel(parent)
    , headers{tr("Cam"), tr("Dev"), tr("Model"), tr("SerNo"), tr("Status")}
    , timer(new QTimer(this))
{
    if (connect(timer, &QTimer::timeout, this, &CameraListModel::refresh)) {
        timer->start(interval);
    }
}

int CameraListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(cameras.size());
}

int CameraListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : headers.size();
}

QVariant CameraListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole || index.row() >= rowCount()) {
        return QVariant();
    }
    const CameraEntry &entry = camera(index.row());
    switch (index.column()) {
    case ColumnCamera:
        return static_cast<qulonglong>(entry.cameraId);
    case ColumnDevice:
        return static_cast<qulonglong>(entry.deviceId);
    case ColumnModel:
        return entry.model;
    case ColumnSerialNumber:
        return entry.serialNumber;
    case ColumnStatus:
        return statusText(entry);
    default:
        return QVariant();
    }
}

QVariant CameraListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole) {
        return QVariant();
    }
    if (orientation == Qt::Vertical) {
        return section; // rows are numbered from 0
    }
    return headers.value(section);
}

void CameraListModel::setOpenCamera(Camera *cam)
{
    openSerial = cam ? cam->serialNumber() : QString();
}

void CameraListModel::clearOpenCamera()
{
    openSerial.clear();
}

void CameraListModel::sort(int column, Qt::SortOrder order)
{
    if (cameras.empty()) {
        return;
    }
    const int anyOrder = static_cast<int>(order);
    boundedSort(cameras, [column, anyOrder](const CameraEntry &a, const CameraEntry &b) {
        return comesBefore(a, b, column, anyOrder);
    });
    emit layoutChanged();
}

void CameraListModel::updateList()
{
    const std::size_t number = numberOfAttachedCameras();
    const bool changed = number == 0 ? removeAllRows() : matchRows(readAttachedCameras(number));
    if (changed) {
        emit somethingChanged();
    }
    emit rowToSelect(0);
}

void CameraListModel::refresh()
{
    guarded([this] { updateList(); },
            [this](const QString &text) { emit refreshFailed(text, failureShownFor); });
}

bool CameraListModel::removeAllRows()
{
    if (cameras.empty()) {
        return false;
    }
    beginRemoveRows(QModelIndex(), 0, rowCount() - 1);
    cameras.clear();
    endRemoveRows();
    return true;
}

bool CameraListModel::matchRows(Cameras fresh)
{
    const bool known = updateRows(fresh);
    const bool added = appendRows(fresh);
    return known || added;
}

// Takes the cameras that rows stand for already out of `fresh`.
bool CameraListModel::updateRows(Cameras &fresh)
{
    bool changed = false;
    int row = 0;
    while (row < rowCount()) {
        const std::uint32_t device = camera(row).deviceId;
        const auto found = std::find_if(fresh.begin(), fresh.end(),
                                        [device](const CameraEntry &c) { return c.deviceId == device; });
        if (found == fresh.end()) {
            removeRow(row);
            changed = true;
            continue;
        }
        changed = updateRow(row, *found) || changed;
        fresh.erase(found);
        ++row;
    }
    return changed;
}

bool CameraListModel::updateRow(int row, CameraEntry &fresh)
{
    // Kept: a camera without a serial number counts as this program's while none is open.
    if (fresh.serialNumber == openSerial) {
        fresh.opened = true;
    }
    CameraEntry &entry = cameras[static_cast<std::size_t>(row)];
    if (entry == fresh) {
        return false;
    }
    entry = fresh;
    emit dataChanged(index(row, ColumnCamera), index(row, ColumnStatus));
    return true;
}

// Kept: a camera that shows up while it is open says "in use" until the next refresh finds its row.
bool CameraListModel::appendRows(const Cameras &fresh)
{
    if (fresh.empty()) {
        return false;
    }
    const int first = rowCount();
    beginInsertRows(QModelIndex(), first, first + static_cast<int>(fresh.size()) - 1);
    cameras.insert(cameras.end(), fresh.begin(), fresh.end());
    endInsertRows();
    return true;
}

void CameraListModel::removeRow(int row)
{
    beginRemoveRows(QModelIndex(), row, row);
    cameras.erase(cameras.begin() + row);
    endRemoveRows();
}
