// SPDX-License-Identifier: MIT
// Drives the real main window.

#include "windowdriver.h"

#include "displaywidget.h"
#include "mainwindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>

namespace {

constexpr int SerialColumn = 3;
constexpr int StatusColumn = 4;

int rowOf(const QTableView *table, const QString &serial)
{
    for (int row = 0; row < table->model()->rowCount(); ++row) {
        if (WindowDriver::cell(table, row, SerialColumn) == serial)
            return row;
    }
    return -1;
}

} // namespace

WindowDriver::WindowDriver(MainWindow &mainWindow)
    : window(mainWindow)
{
}

bool WindowDriver::waitFor(const std::function<bool()> &condition, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

QAction *WindowDriver::action(const char *name) const
{
    auto *found = window.findChild<QAction *>(name);
    if (!found)
        qFatal("the window has no action %s", name);
    return found;
}

void WindowDriver::trigger(const char *name) const
{
    action(name)->trigger();
}

QTableView *WindowDriver::cameraTable() const
{
    return window.findChild<QTableView *>("cameraTable");
}

QTableView *WindowDriver::badpixelTable() const
{
    return window.findChild<QTableView *>("badpixelTable");
}

DisplayWidget *WindowDriver::display() const
{
    return window.findChild<DisplayWidget *>("display");
}

QString WindowDriver::message() const
{
    return window.statusBar()->currentMessage();
}

QImage WindowDriver::shownImage() const
{
    return display()->widget()->property("pixmap").value<QPixmap>().toImage();
}

QString WindowDriver::cell(const QTableView *table, int row, int column)
{
    return table->model()->index(row, column).data().toString();
}

bool WindowDriver::selectCamera(const QString &serial) const
{
    const int row = rowOf(cameraTable(), serial);
    if (row >= 0)
        cameraTable()->selectRow(row);
    return row >= 0;
}

QString WindowDriver::cameraStatus(const QString &serial) const
{
    const int row = rowOf(cameraTable(), serial);
    return row < 0 ? QString() : cell(cameraTable(), row, StatusColumn);
}

void WindowDriver::clickPixel(const QPoint &pixel) const
{
    const QWidget *label = display()->widget();
    const QAction *zoom = action("zoomAction");
    const QStringList ratio = zoom->text().split(':');
    const double scale = ratio.at(0).toDouble() / ratio.at(1).toDouble();
    const QPoint inLabel(static_cast<int>((pixel.x() + 0.5) * scale),
                         static_cast<int>((pixel.y() + 0.5) * scale));
    const QPoint inView = inLabel + label->pos();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool press = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, inView, Qt::LeftButton, press ? Qt::LeftButton : Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(display()->viewport(), &event);
    }
}

void WindowDriver::whenModal(const std::function<void(QWidget *)> &visit)
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [timer, visit] {
        QWidget *modal = QApplication::activeModalWidget();
        if (!modal)
            return;
        timer->stop();
        timer->deleteLater();
        visit(modal);
    });
    timer->start(5);
}

void WindowDriver::answerBox(QMessageBox::StandardButton button, QString *text)
{
    whenModal([button, text](QWidget *modal) {
        auto *box = qobject_cast<QMessageBox *>(modal);
        if (!box)
            qFatal("a %s is open instead of a message box", modal->metaObject()->className());
        if (text)
            *text = box->text();
        QAbstractButton *wanted = box->button(button);
        if (!wanted)
            qFatal("the box '%s' has no such button", qPrintable(box->text()));
        wanted->click();
    });
}

void WindowDriver::chooseFile(const QString &path, const std::function<void(const QFileDialog &)> &look)
{
    whenModal([path, look](QWidget *modal) {
        auto *dialogue = qobject_cast<QFileDialog *>(modal);
        if (!dialogue)
            qFatal("a %s is open instead of a file dialogue", modal->metaObject()->className());
        if (look)
            look(*dialogue);
        if (path.isEmpty())
            return dialogue->reject();
        dialogue->findChild<QLineEdit *>("fileNameEdit")->setText(path);
        QMetaObject::invokeMethod(dialogue, "accept");
    });
}

QPixmap WindowDriver::picture() const
{
    QPixmap all = window.grab();
    QPainter painter(&all);
    QWidgetList tops = QApplication::topLevelWidgets();
    if (QWidget *modal = QApplication::activeModalWidget()) {
        tops.removeOne(modal);
        tops.append(modal); // it stands above whatever opened it
    }
    for (QWidget *top : tops) {
        if (top == &window || !top->isVisible() || !top->isWindow())
            continue;
        const QPixmap above = top->grab();
        const QPoint at = window.rect().center() - top->rect().center();
        painter.fillRect(QRect(at, top->size()).adjusted(-3, -3, 3, 3), QColor(60, 60, 70));
        painter.drawPixmap(at, above);
    }
    return all;
}
