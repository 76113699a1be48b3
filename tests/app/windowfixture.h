// SPDX-License-Identifier: MIT
// The real main window on a bench of small cameras, for the whole-window tests.
#pragma once

#include "kelvosim.h"
#include "mainwindow.h"
#include "testcamera.h"
#include "windowdriver.h"

#include <QAbstractButton>
#include <QAction>
#include <QItemSelectionModel>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>

#include <memory>

/// One window at a time, on a bench that was just reset.
class WindowFixture
{
    QTemporaryDir settings; // a store of the tests' own; outlives the window, which writes into it

public:
    WindowFixture() { QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path()); }

    /// Serial numbers of the bench's cameras; the first two can store lists, the third cannot.
    const QString mono = "KVMONO";
    const QString bayer = "KVBAYER";
    const QString plain = "KVPLAIN";

    /// An empty bench with the three cameras, whose frames come from pushFrame() alone; no settings are
    /// stored.
    void resetBench()
    {
        window.reset();
        QSettings("Kelvo", "Kelvo").clear();
        kelvosim::reset();
        addCamera(mono, kelvosim::SensorKind::Mono, true);
        addCamera(bayer, kelvosim::SensorKind::RawBayer, true);
        addCamera(plain, kelvosim::SensorKind::Mono, false);
    }

    /// Ends the window that is there and shows a new one, as a restart does.
    void showWindow()
    {
        window.reset();
        window = std::make_unique<MainWindow>();
        driver = std::make_unique<WindowDriver>(*window);
        window->show();
    }

    /// Resets the bench, shows the window and opens a camera.
    void openOnFreshBench(const QString &serial)
    {
        resetBench();
        showWindow();
        open(serial);
    }

    void open(const QString &serial)
    {
        driver->selectCamera(serial);
        driver->trigger("openCameraAction");
    }

    /// Calls a slot of the window; a slot that does not exist ends the test program.
    template<typename... Arguments>
    void invoke(const char *slot, Arguments... arguments)
    {
        if (!QMetaObject::invokeMethod(window.get(), slot, Qt::DirectConnection, arguments...))
            qFatal("the window has no slot %s that takes these arguments", slot);
    }

    /// Pushes a frame of one grey value; it is handled in a later turn of the event loop.
    bool pushFlat(const QString &serial, std::uint8_t grey) { return push(serial, flatFrame(grey)); }

    bool push(const QString &serial, const std::vector<std::uint8_t> &frame)
    {
        return kelvosim::pushFrame(serial.toStdString(), frame);
    }

    static std::vector<std::uint8_t> flatFrame(std::uint8_t grey)
    {
        return testcamera::flatFrame(spec(), grey);
    }

    void moveTo(const QPoint &position) { invoke("setMagnifierPosition", Q_ARG(QPoint, position)); }

    static kelvosim::CameraSpec spec()
    {
        kelvosim::CameraSpec small = testcamera::small();
        small.width = 96;
        small.height = 80;
        small.deviceId = 0;
        small.factoryList = {{10, 10}, {20, 30}};
        return small;
    }

    int rows() const { return driver->badpixelTable()->model()->rowCount(); }
    QString cell(int row, int column) const
    {
        return WindowDriver::cell(driver->badpixelTable(), row, column);
    }
    bool enabled(const char *action) const { return driver->action(action)->isEnabled(); }

    /// Whether the view shows green, the colour of user entries, round a pixel. The zoom is 1:1.
    bool isCircledAsUsers(const QPoint &pixel) const
    {
        const QImage shown = driver->shownImage();
        for (int y = pixel.y() - 5; y <= pixel.y() + 5; ++y) {
            for (int x = pixel.x() - 5; x <= pixel.x() + 5; ++x) {
                const QRgb colour = shown.pixel(x, y);
                if (qGreen(colour) > qRed(colour) + 60 && qGreen(colour) > qBlue(colour) + 60)
                    return true;
            }
        }
        return false;
    }

    std::unique_ptr<MainWindow> window;
    std::unique_ptr<WindowDriver> driver;

private:
    static void addCamera(const QString &serial, kelvosim::SensorKind kind, bool storesLists)
    {
        kelvosim::CameraSpec camera = spec();
        camera.serial = serial.toStdString();
        camera.kind = kind;
        camera.storesLists = storesLists;
        kelvosim::addCamera(camera);
    }
};
