// SPDX-License-Identifier: MIT
// The window that shows the simulated cameras and switches their states.
#pragma once

#include "bencheditor.h"

#include <QHash>
#include <QStringList>
#include <QWidget>

#include <array>

class QCheckBox;
class QGridLayout;
class QLabel;

/// A row of check boxes and buttons for each camera of the bench file. While the file cannot be understood,
/// the window says why and its controls rest.
class BenchPanel final : public QWidget
{
    Q_OBJECT

public:
    /// Shows the cameras of this bench file.
    explicit BenchPanel(const QString &path, QWidget *parent = nullptr);

private slots:
    void showState();

private:
    struct Row
    {
        std::array<QCheckBox *, 3> boxes{}; // in the order of BenchSwitch
    };

    QWidget *createHead();
    QWidget *createTable();
    void rebuildRows();
    void addHeadings(QGridLayout *grid);
    void addRow(QGridLayout *grid, const benchfile::Camera &camera);
    QCheckBox *createBox(const std::string &serial, BenchSwitch which, const QString &name);
    QWidget *createButtons(const std::string &serial);
    void updateRow(const benchfile::Camera &camera);

    BenchEditor editor;
    QLabel *problem = nullptr;
    QWidget *table = nullptr;
    QWidget *rows = nullptr;   // child of the table, replaced when the cameras are others
    QStringList shownCameras;  // what the rows say of each camera
    QHash<QString, Row> rowOf; // by serial number
};
