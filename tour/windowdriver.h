// SPDX-License-Identifier: MIT
// Drives the real main window as a person does: actions, table rows, clicks on the image, dialogue answers.
#pragma once

#include <QImage>
#include <QMessageBox>
#include <QPixmap>
#include <QString>

#include <functional>

class DisplayWidget;
class MainWindow;
class QAbstractItemModel;
class QAction;
class QFileDialog;
class QTableView;

/// Used by the tour and by the whole-window tests. GUI thread only.
class WindowDriver final
{
public:
    explicit WindowDriver(MainWindow &mainWindow);

    /// Runs the event loop until `condition` holds. @return whether it held in time
    static bool waitFor(const std::function<bool()> &condition, int milliseconds = 10000);

    QAction *action(const char *name) const;
    void trigger(const char *name) const;
    QTableView *cameraTable() const;
    QTableView *badpixelTable() const;
    DisplayWidget *display() const;
    QString message() const;   ///< of the status bar
    QImage shownImage() const; ///< what the view shows, in view pixels; null when it shows nothing

    /// The text of a cell of the camera table or of the hot pixel table.
    static QString cell(const QTableView *table, int row, int column);

    /// Selects the camera's row. @return whether it is listed
    bool selectCamera(const QString &serial) const;

    /// The status that the camera list shows for a camera; empty when it is not listed.
    QString cameraStatus(const QString &serial) const;

    /// Clicks an image pixel in the view with the left button.
    void clickPixel(const QPoint &pixel) const;

    /// Runs `visit` as soon as a modal widget has opened, inside of its event loop. Call it before whatever
    /// opens the widget.
    static void whenModal(const std::function<void(QWidget *)> &visit);

    /// Answers the next message box. @param text, when given, receives what the box says
    static void answerBox(QMessageBox::StandardButton button, QString *text = nullptr);

    /// Chooses a file in the next file dialogue, as if its path was typed; an empty one cancels the dialogue.
    /// @param look, when given, sees the dialogue before it is answered
    static void chooseFile(const QString &path, const std::function<void(const QFileDialog &)> &look = {});

    /// The window with everything that is open above it.
    QPixmap picture() const;

private:
    MainWindow &window;
};
