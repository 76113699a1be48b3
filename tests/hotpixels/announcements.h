// SPDX-License-Identifier: MIT
// Looks at what the hot pixel table tells its views.
#pragma once

#include <QIdentityProxyModel>
#include <QSignalSpy>
#include <QStringList>

/// "first-last" of each announcement of rows.
inline QStringList ranges(const QSignalSpy &spy)
{
    QStringList list;
    for (const QList<QVariant> &arguments : spy) {
        list << QString("%1-%2").arg(arguments.at(1).toInt()).arg(arguments.at(2).toInt());
    }
    return list;
}

/// A QSignalSpy on layoutChanged() wants to know the types of its parameters.
inline void registerLayoutTypes()
{
    qRegisterMetaType<QList<QPersistentModelIndex>>();
    qRegisterMetaType<QAbstractItemModel::LayoutChangeHint>();
}

/// The model's rows have no children and its root no flags here, as a model tester wants it. The model itself
/// counts its rows for any parent and flags any index.
class FlatProxy final : public QIdentityProxyModel
{
public:
    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : QIdentityProxyModel::rowCount(parent);
    }
    int columnCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : QIdentityProxyModel::columnCount(parent);
    }
    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        return index.isValid() ? QIdentityProxyModel::flags(index) : Qt::ItemFlags();
    }
};
