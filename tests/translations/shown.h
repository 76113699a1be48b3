// SPDX-License-Identifier: MIT
// Collects the texts that a person can see, hear or hover in a window.
#pragma once

#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QString>
#include <QTabBar>
#include <QTableView>
#include <QVector>
#include <QWidget>

/// A text and the place that it stands in: "CameraListDock.windowTitle".
struct Shown
{
    QString where;
    QString text;
};

using Texts = QVector<Shown>;

namespace shown {

inline QString nameOf(const QObject &object)
{
    return object.objectName().isEmpty() ? QString(object.metaObject()->className()) : object.objectName();
}

inline void add(Texts &texts, const QString &where, const QString &text)
{
    if (!text.isEmpty())
        texts.append({where, text});
}

inline void addProperties(Texts &texts, const QObject &object)
{
    for (const char *property :
         {"windowTitle", "title", "text", "informativeText", "toolTip", "statusTip", "whatsThis",
          "accessibleName", "accessibleDescription", "placeholderText", "prefix", "suffix"})
        add(texts, nameOf(object) + '.' + property, object.property(property).toString());
}

inline void addTable(Texts &texts, const QTableView &table)
{
    const QAbstractItemModel *model = table.model();
    for (int column = 0; column < model->columnCount(); ++column) {
        add(texts, nameOf(table) + ".header", model->headerData(column, Qt::Horizontal).toString());
        for (int row = 0; row < model->rowCount(); ++row)
            add(texts, nameOf(table) + ".cell", model->index(row, column).data().toString());
    }
}

inline void addItems(Texts &texts, const QComboBox &box)
{
    for (int i = 0; i < box.count(); ++i)
        add(texts, nameOf(box) + ".item", box.itemText(i));
}

inline void addTabs(Texts &texts, const QTabBar &bar)
{
    for (int i = 0; i < bar.count(); ++i)
        add(texts, nameOf(bar) + ".tab", bar.tabText(i));
}

/// The object's texts and its children's; of a file dialogue only what its user gives it.
inline void collect(Texts &texts, const QObject &object)
{
    addProperties(texts, object);
    if (const auto *dialogue = qobject_cast<const QFileDialog *>(&object))
        return add(texts, "QFileDialog.filter", dialogue->nameFilters().join(";;"));
    if (const auto *box = qobject_cast<const QComboBox *>(&object))
        return addItems(texts, *box);
    if (const auto *bar = qobject_cast<const QTabBar *>(&object))
        return addTabs(texts, *bar);
    if (const auto *table = qobject_cast<const QTableView *>(&object))
        return addTable(texts, *table);
    for (const QObject *child : object.children()) {
        if (!child->objectName().startsWith("qt_")) // parts of Qt's own widgets
            collect(texts, *child);
    }
}

} // namespace shown
