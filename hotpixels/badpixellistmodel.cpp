// SPDX-License-Identifier: MIT
// The one table of hot pixels that the whole program edits.
#include "badpixellistmodel.h"

#include "badpixelstorage.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace {

enum Column { ColumnX, ColumnY, ColumnClass };

constexpr int ExactPlace = 1; // the tolerance that only the place itself meets

bool fitsCoordinate(int value)
{
    return value >= 0 && value <= std::numeric_limits<std::uint16_t>::max();
}

bool isNear(int coordinate, int wanted, qint64 tolerance)
{
    return coordinate > wanted - tolerance && coordinate < wanted + tolerance;
}

// Kept: factory entries show as "ignore" and unknown classes as "factory", so "factory" set in the list
// reads back as "ignore".
QString classText(std::uint8_t pixelclass)
{
    switch (pixelclass) {
    case User:
        return QStringLiteral("user");
    case Factory:
        return QStringLiteral("ignore");
    default:
        return QStringLiteral("factory");
    }
}

bool setCoordinate(std::uint16_t &coordinate, const QVariant &value)
{
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    if (isNumber) {
        coordinate = static_cast<std::uint16_t>(number);
    }
    return isNumber;
}

bool setClass(std::uint8_t &pixelclass, const QString &text)
{
    if (text == QLatin1String("factory")) {
        pixelclass = Factory;
    } else if (text == QLatin1String("user")) {
        pixelclass = User;
    } else {
        return false;
    }
    return true;
}

// Has no second key: entries that are equal in the column land in any order.
struct EntryOrder
{
    bool operator()(const Badpixel &a, const Badpixel &b) const
    {
        switch (order) {
        case Qt::AscendingOrder:
            return value(a) < value(b);
        case Qt::DescendingOrder:
            return value(a) > value(b);
        default:
            throw std::runtime_error("Sort Error");
        }
    }

    unsigned value(const Badpixel &entry) const
    {
        switch (column) {
        case ColumnX:
            return entry.x;
        case ColumnY:
            return entry.y;
        case ColumnClass:
            return entry.pixelclass;
        default:
            throw std::runtime_error("Sort Error");
        }
    }

    int column = ColumnX;
    int order = Qt::AscendingOrder; // an int, because callers may pass what Qt::SortOrder does not hold
};

} // namespace

BadpixelListModel::BadpixelListModel(QObject *parent)
    : QAbstractTableModel(parent)
    , headers{tr("x"), tr("y"), tr("class")}
{
}

int BadpixelListModel::rowCount(const QModelIndex &) const
{
    return static_cast<int>(entries.size());
}

int BadpixelListModel::columnCount(const QModelIndex &) const
{
    return headers.size();
}

QVariant BadpixelListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return QVariant();
    }
    if (role != Qt::DisplayRole && role != Qt::EditRole) {
        return QVariant();
    }
    const Badpixel entry = badpixel(index.row());
    switch (index.column()) {
    case ColumnX:
        return static_cast<int>(entry.x);
    case ColumnY:
        return static_cast<int>(entry.y);
    case ColumnClass:
        return classText(entry.pixelclass);
    default:
        return QVariant();
    }
}

bool BadpixelListModel::setData(const QModelIndex &index, const QVariant &value, int)
{
    const auto row = static_cast<std::size_t>(index.row());
    bool changed = false;
    switch (index.column()) {
    case ColumnX:
        changed = setCoordinate(entries[row].x, value);
        break;
    case ColumnY:
        changed = setCoordinate(entries[row].y, value);
        break;
    case ColumnClass:
        changed = setClass(entries[row].pixelclass, value.toString());
        break;
    default:
        break;
    }
    if (changed) {
        places.forget();
        emit dataChanged(index, index);
    }
    return changed;
}

QVariant BadpixelListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole) {
        return QVariant();
    }
    if (orientation == Qt::Vertical) {
        return section; // rows are numbered from 0
    }
    return headers.value(section);
}

bool BadpixelListModel::insertRows(int row, int count, const QModelIndex &)
{
    // Qt does not allow a range that ends before it begins to be announced.
    if (count < 1) {
        return true;
    }
    Badpixel entry;
    entry.pixelclass = User;
    beginInsertRows(QModelIndex(), row, row + count - 1);
    entries.insert(static_cast<std::size_t>(qBound(0, row, rowCount())), static_cast<std::size_t>(count),
                   entry);
    places.forget();
    endInsertRows();
    return true;
}

// Kept: all rows asked for are announced, those behind the end of the list included.
bool BadpixelListModel::removeRows(int row, int count, const QModelIndex &)
{
    // As for inserting: an inverted range must not be announced.
    if (count < 1) {
        return true;
    }
    beginRemoveRows(QModelIndex(), row, row + count - 1);
    if (row >= 0 && row < rowCount()) {
        entries.erase(static_cast<std::size_t>(row), static_cast<std::size_t>(qMin(count, rowCount() - row)));
        places.forget();
    }
    endRemoveRows();
    return true;
}

Qt::ItemFlags BadpixelListModel::flags(const QModelIndex &) const
{
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled;
}

Badpixel BadpixelListModel::badpixel(int row) const
{
    return entries[static_cast<std::size_t>(row)];
}

QModelIndex BadpixelListModel::findBadpixel(int x, int y, int tolerance) const
{
    return tolerance == ExactPlace ? entryAt(x, y) : entryNear(x, y, tolerance);
}

bool BadpixelListModel::addBadpixel(const QPoint &position)
{
    const Badpixel entry{static_cast<std::uint16_t>(position.x()), static_cast<std::uint16_t>(position.y()),
                         User};
    places.follow(entries.joined());
    if (places.isTaken(entry.x, entry.y)) {
        return false;
    }
    beginInsertRows(QModelIndex(), rowCount(), rowCount());
    entries.append(entry);
    endInsertRows();
    emit pixelAdded(1);
    return true;
}

bool BadpixelListModel::removeUserBadpixel(int row)
{
    if (row < 0 || row >= rowCount() || badpixel(row).pixelclass != User) {
        return false;
    }
    return removeRows(row, 1);
}

void BadpixelListModel::getBadpixelList(Camera *cam)
{
    clearBadpixelList();
    if (!cam) {
        return;
    }
    const BadpixelStorage storage(cam);
    storage.readMaximumUserEntries(maxUserEntries);
    storage.readFactoryCount(factoryCount);
    appendFromCamera(storage.factoryList(factoryCount));
    appendFromCamera(storage.userList());
}

void BadpixelListModel::writeBadpixelList(Camera *cam)
{
    // Kept: a list that fills the camera's memory exactly is refused too.
    if (static_cast<qint64>(rowCount()) - factoryCount >= maxUserEntries) {
        const QString text = QStringLiteral("Can't write more than %1 hot pixel entries.");
        throw std::runtime_error(text.arg(maxUserEntries).toStdString());
    }
    BadpixelStorage(cam).writeUserList(userEntries());
}

void BadpixelListModel::clearUserBadpixelList()
{
    int row = 0;
    while (row < rowCount()) {
        if (!removeUserBadpixel(row)) {
            ++row;
        }
    }
}

void BadpixelListModel::clearBadpixelList()
{
    if (entries.empty()) {
        return;
    }
    beginRemoveRows(QModelIndex(), 0, rowCount() - 1);
    entries.clear();
    places.forget();
    endRemoveRows();
}

void BadpixelListModel::sort(int column, Qt::SortOrder order)
{
    if (entries.empty()) {
        return;
    }
    places.forget();
    std::vector<Badpixel> &list = entries.joined();
    std::sort(list.begin(), list.end(), EntryOrder{column, static_cast<int>(order)});
    emit layoutChanged();
}

QModelIndex BadpixelListModel::entryAt(int x, int y) const
{
    if (!fitsCoordinate(x) || !fitsCoordinate(y)) {
        return QModelIndex();
    }
    places.follow(entries.joined());
    const int row = places.firstRow(static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y));
    return row < 0 ? QModelIndex() : index(row, 0);
}

QModelIndex BadpixelListModel::entryNear(int x, int y, int tolerance) const
{
    const auto isMatch = [=](const Badpixel &entry) {
        return isNear(entry.x, x, tolerance) && isNear(entry.y, y, tolerance);
    };
    const std::vector<Badpixel> &list = entries.joined();
    const auto found = std::find_if(list.begin(), list.end(), isMatch);
    return found == list.end() ? QModelIndex() : index(static_cast<int>(found - list.begin()), 0);
}

// Kept: the announced rows begin at 0 even where the list goes behind factory entries. The list was cleared
// just before, so this is harmless as long as nobody takes a row up while the factory list is announced.
void BadpixelListModel::appendFromCamera(const std::vector<Badpixel> &list)
{
    if (list.empty()) {
        return;
    }
    beginInsertRows(QModelIndex(), 0, static_cast<int>(list.size()) - 1);
    entries.append(list);
    endInsertRows();
}

std::vector<Badpixel> BadpixelListModel::userEntries() const
{
    const std::vector<Badpixel> &all = entries.joined();
    std::vector<Badpixel> list;
    std::copy_if(all.begin(), all.end(), std::back_inserter(list),
                 [](const Badpixel &entry) { return entry.pixelclass == User; });
    return list;
}
