// SPDX-License-Identifier: MIT
// What the program is held against at rest: the least that Qt takes for as much on the screen.
//   speckmend-atrest-plain MODE SECONDS SERIAL [empty]
// A main window with the kinds of widgets that the program's has, without a camera, a model or an icon; an
// empty one with the last argument. At rest a timer ticks once a second; live, a grey image is shown 30 times
// a second.

#include <QApplication>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QScrollArea>
#include <QSlider>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

constexpr int Interval = 1000; // milliseconds
constexpr int FrameInterval = 33;
const QSize Frame(752, 480);       // of the smallest of the simulated cameras
const QSize WindowSize(1180, 760); // of the program's window

QWidget *column(const QList<QWidget *> &widgets)
{
    auto *all = new QWidget;
    auto *layout = new QVBoxLayout(all);
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    return all;
}

QWidget *control()
{
    auto *slider = new QSlider(Qt::Horizontal);
    auto *box = new QDoubleSpinBox;
    QObject::connect(slider, &QSlider::valueChanged, box, &QDoubleSpinBox::setValue);
    return column({slider, box});
}

QWidget *table(int columns)
{
    auto *view = new QTableView;
    view->setModel(new QStandardItemModel(3, columns, view));
    return view;
}

QDockWidget *addDock(QMainWindow &window, QWidget *inner)
{
    auto *dock = new QDockWidget("Dock", &window);
    dock->setWidget(inner);
    window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    return dock;
}

void addDocks(QMainWindow &window)
{
    QDockWidget *first = addDock(window, table(5));
    window.tabifyDockWidget(first, addDock(window, table(3)));
    auto *picture = new QLabel;
    picture->setMinimumSize(160, 120);
    addDock(window, column({picture, new QSlider(Qt::Horizontal), new QLabel("Value")}));
    addDock(window, column({control(), control(), control()}));
    first->raise();
}

void addBars(QMainWindow &window)
{
    for (const char *title : {"One", "Two", "Three"}) {
        QMenu *menu = window.menuBar()->addMenu(title);
        for (int i = 0; i < 6; ++i)
            menu->addAction(title);
    }
    QToolBar *bar = window.addToolBar("Toolbar");
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    for (int i = 0; i < 9; ++i)
        bar->addAction("An action");
    for (int i = 0; i < 7; ++i)
        window.statusBar()->addPermanentWidget(new QLabel("Label"));
}

/// The least that a frame takes: it becomes a picture, and the picture is shown.
void showFrame(QMainWindow &window, QLabel *label)
{
    static QImage frame(Frame, QImage::Format_Grayscale8);
    const int count = window.property("frames").toInt() + 1;
    window.setProperty("frames", count);
    frame.fill(count % 256);
    label->setPixmap(QPixmap::fromImage(frame));
}

void fill(QMainWindow &window)
{
    addDocks(window);
    addBars(window);
    auto *area = new QScrollArea;
    auto *label = new QLabel;
    label->resize(Frame);
    area->setWidget(label);
    window.setCentralWidget(area);
    if (QApplication::arguments().value(1) != "live")
        return;
    auto *frames = new QTimer(&window);
    frames->setTimerType(Qt::PreciseTimer);
    QObject::connect(frames, &QTimer::timeout, label, [&window, label] { showFrame(window, label); });
    frames->start(FrameInterval);
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QMainWindow window;
    window.resize(WindowSize);
    if (!QApplication::arguments().contains("empty"))
        fill(window);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &window, [] {});
    timer.start(Interval);
    window.show();
    return QApplication::exec();
}
