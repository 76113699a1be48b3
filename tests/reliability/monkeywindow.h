// SPDX-License-Identifier: MIT
// What the monkey does with the window itself: its actions, tables, docks, size and looks.
#pragma once

#include "monkeykind.h"

#include <QPointer>

class BadpixelListModel;
class CameraListModel;
class MainWindow;
class MonkeyInput;
class QAction;
class QDockWidget;
class QTableView;

class MonkeyWindow final
{
public:
    explicit MonkeyWindow(MonkeyInput &theInput)
        : input(theInput)
    {
    }

    /// The window changes whenever the program is started anew; null while there is none.
    void setWindow(MainWindow *mainWindow);

    MonkeyKinds kinds();

    /// The looks that the program started with.
    void keepLooks();
    void restoreLooks();

private:
    using Act = void (MonkeyWindow::*)(MonkeyRandom &);

    static MonkeyKind kind(MonkeyWindow *self, const char *name, int weight, Act act);
    static void triggerIfEnabled(QAction *action);
    void trigger(const char *name) const;
    QDockWidget *anyDock(MonkeyRandom &random) const;
    QTableView *table(const char *name) const;

    void triggerAny(MonkeyRandom &random);
    void triggerFileAction(MonkeyRandom &random);
    void zoom(MonkeyRandom &random);
    void openCamera(MonkeyRandom &random);
    void detect(MonkeyRandom &random);
    void selectRow(MonkeyRandom &random);
    void sort(MonkeyRandom &random);
    void refresh(MonkeyRandom &random);
    void updateStatistics(MonkeyRandom &random);
    void keepListShort(MonkeyRandom &random);
    void toggleDock(MonkeyRandom &random);
    void showDocks(MonkeyRandom &random);
    void resize(MonkeyRandom &random);
    void changeState(MonkeyRandom &random);
    void changeLanguage(MonkeyRandom &random);
    void changeLooks(MonkeyRandom &random);
    void close(MonkeyRandom &random);

    MonkeyInput &input;
    QPointer<MainWindow> window;
};
