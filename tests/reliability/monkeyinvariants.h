// SPDX-License-Identifier: MIT
// What holds after each action, whatever it was.
#pragma once

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVector>

#include <string>
#include <vector>

class BadpixelListModel;
class CameraListModel;
class MainWindow;
class MonkeyAnswers;
class MonkeyBench;
class QAction;
class QLabel;
class QTableView;

/// Watches one window. A thing that does not hold is a finding, which ends the program.
class MonkeyInvariants final : public QObject
{
    Q_OBJECT

public:
    MonkeyInvariants(MainWindow &mainWindow, MonkeyBench &theBench, MonkeyAnswers &theAnswers);

    /// @param depth the number of event loops that dialogues and menus have open below the action
    void check(int depth);

private:
    struct Counts
    {
        int users = 0;
        int others = 0;
    };

    void followWindow();
    void followLists();
    void require(bool holds, const char *what) const;
    QVector<QAction *> actionsNamed(const QStringList &names) const;
    Counts countEntries() const;

    void checkNesting(int depth);
    void checkCameraActions() const;
    void checkCamera(int depth) const;
    void checkZoom() const;
    void checkLabels() const;
    void checkTable(const QTableView *table) const;
    void checkDeletion() const;
    void checkEntries(int depth);
    void checkStoredLists(int depth);

    MainWindow &window;
    MonkeyBench &bench;
    MonkeyAnswers &answers;
    QPointer<QTableView> cameraTable;
    QPointer<QTableView> badpixelTable;
    CameraListModel *cameraList = nullptr;
    BadpixelListModel *badpixelList = nullptr;
    QAction *openAction = nullptr;
    QAction *writeAction = nullptr;
    QAction *deleteAction = nullptr;
    QAction *zoomAction = nullptr;
    QVector<QAction *> cameraActions; // enabled while the open camera is selected
    QVector<QAction *> lateActions;   // likewise, from the first update on; they start enabled
    QVector<QAction *> zooms;
    QMap<QString, QLabel *> labels;
    int checks = 0;
    Counts counts;
    bool cameraOpen = false;
    bool actionsUpdated = false; // at least once since the start
    int deletions = 0;           // since the last check: each may take one user entry
    bool listReplaced = false;   // opening and closing replace all entries
    bool usersMayGo = false;     // clearing, loading and importing take all of the user's
};
