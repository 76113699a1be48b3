// SPDX-License-Identifier: MIT
// The steps of the tour, one function each.

#include "tour.h"

#include "magnifier.h"
#include "magnifiercontrol.h"
#include "parameterblockwidget.h"
#include "parameterwidget.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QTableView>

#include <algorithm>
#include <cstdio>
#include <set>
#include <stdexcept>
#include <utility>

namespace {

const std::string Serial = "KV00001280";
constexpr int SensorWidth = 1280;
constexpr int SensorHeight = 1024;
constexpr int Threshold = 40; // what the dialogue starts with

using Position = std::pair<int, int>;

std::set<Position> listedPositions(const QTableView *table)
{
    std::set<Position> listed;
    for (int row = 0; row < table->model()->rowCount(); ++row)
        listed.insert({WindowDriver::cell(table, row, 0).toInt(), WindowDriver::cell(table, row, 1).toInt()});
    return listed;
}

kelvosim::CameraSpec camera(const std::string &serial, const std::string &model, kelvosim::SensorKind kind,
                            int width, int height)
{
    kelvosim::CameraSpec spec;
    spec.serial = serial;
    spec.model = model;
    spec.kind = kind;
    spec.width = width;
    spec.height = height;
    return spec;
}

} // namespace

Tour::Tour(const QString &pictureFolder)
    : folder(QDir(pictureFolder).absolutePath())
{
    if (!folder.mkpath("."))
        throw std::runtime_error("cannot make the folder " + pictureFolder.toStdString());
    setUpBench(storage.path());
    QDir::setCurrent(storage.path());
    // The window remembers its layout here, not where a person's own is kept.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, storage.path());
    writeParameterFile();
    window = std::make_unique<MainWindow>();
    driver = std::make_unique<WindowDriver>(*window);
    window->show();
}

void Tour::setUpBench(const QString &storageFolder)
{
    using kelvosim::SensorKind;
    kelvosim::reset();
    kelvosim::setLogging(false);
    kelvosim::setStorageFolder(storageFolder.toStdString());
    kelvosim::addCamera(camera(Serial, "KV-1280M", SensorKind::Mono, SensorWidth, SensorHeight));
    kelvosim::addCamera(camera("KV00002592", "KV-2592C", SensorKind::RawBayer, 2592, 1944));
    kelvosim::CameraSpec plain = camera("KV00000752", "KV-752", SensorKind::Mono, 752, 480);
    plain.storesLists = false;
    kelvosim::addCamera(plain);
}

/// Settings at which the scene is well lit and ten dark frames take half a second. Without the file a camera
/// starts at one frame a second.
void Tour::writeParameterFile()
{
    QFile file("cameraparameter.xml");
    if (!file.open(QIODevice::WriteOnly))
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
    file.write("<CameraSettings>\n"
               "  <Sensor ID=\"101\">\n"
               "    <Timing pixelclock=\"40\" framerate=\"20\" exposure=\"50\"/>\n"
               "    <Gain master=\"0\" red=\"0\" green=\"0\" blue=\"0\"/>\n"
               "  </Sensor>\n"
               "</CameraSettings>\n");
}

bool Tour::play()
{
    listCameras();
    openCamera();
    turnSettings();
    detectInLight();
    coverSensor();
    detect();
    compareWithTruth();
    reviewEntry();
    lookThroughMagnifier();
    addAndDelete();
    writeList();
    keepInFiles();
    closeAndReopen();
    switchCorrection();
    loadOnAnotherCamera();
    readHelp();
    tell(failures ? QString("%1 steps did not show what they should").arg(failures)
                  : "every step showed what it should");
    return failures == 0;
}

void Tour::check(bool holds, const QString &what)
{
    std::printf("   %s %s\n", holds ? "ok " : "BAD", qPrintable(what));
    if (!holds)
        ++failures;
}

void Tour::tell(const QString &text) const
{
    std::printf("%s\n", qPrintable(text));
    std::fflush(stdout);
}

void Tour::takePicture(const QString &name)
{
    const QString file = QString("%1-%2.png").arg(++pictures, 2, 10, QLatin1Char('0')).arg(name);
    check(driver->picture().save(folder.filePath(file)), "picture " + file);
}

bool Tour::waitForFrames(int count) const
{
    const std::uint64_t wanted = kelvosim::completedFrames(Serial) + static_cast<std::uint64_t>(count);
    return WindowDriver::waitFor([=] { return kelvosim::completedFrames(Serial) >= wanted; });
}

QString Tour::status(const char *label) const
{
    return window->findChild<QLabel *>(label)->text();
}

/// The grey value that the view shows for an image pixel at 1:1.
int Tour::greyAt(const kelvosim::Pixel &pixel) const
{
    return qGray(driver->shownImage().pixel(pixel.x, pixel.y));
}

void Tour::listCameras()
{
    tell("The camera list shows the attached cameras.");
    check(WindowDriver::waitFor([this] { return driver->cameraTable()->model()->rowCount() == 3; }),
          "three cameras are listed");
    takePicture("camera-list");
}

void Tour::openCamera()
{
    tell("Opening the mono camera.");
    check(driver->selectCamera(QString::fromStdString(Serial)), "the camera is listed");
    driver->trigger("openCameraAction");
    check(waitForFrames(5), "live frames arrive");
    check(WindowDriver::waitFor([this] { return !driver->shownImage().isNull(); }), "they are shown");
    check(WindowDriver::waitFor(
              [this] { return driver->cameraStatus(QString::fromStdString(Serial)) == "opened"; }),
          "the list shows it as opened");
    check(WindowDriver::waitFor([this] { return !status("framesLabel").isEmpty(); }),
          "the frames are counted");
    takePicture("live");
}

void Tour::turnSettings()
{
    tell("Turning the master gain.");
    auto *gain = window->findChild<ParameterBlockWidget *>()->mastergain()->spinBox();
    const kelvosim::Pixel pixel{100, 100};
    const int before = greyAt(pixel);
    gain->setValue(30);
    check(WindowDriver::waitFor([&] { return greyAt(pixel) > before + 20; }), "the image gets brighter");
    takePicture("brighter");
    gain->setValue(0);
    check(WindowDriver::waitFor([&] { return greyAt(pixel) < before + 20; }), "and as it was");
}

void Tour::detectInLight()
{
    tell("Starting a detection without the lens cap.");
    const int before = driver->badpixelTable()->model()->rowCount();
    WindowDriver::whenModal([this](QWidget *dialogue) {
        const auto *buttons = dialogue->findChild<QDialogButtonBox *>();
        closeBoxAbove(dialogue);
        buttons->button(QDialogButtonBox::Ok)->click();
        check(WindowDriver::waitFor([=] { return buttons->isEnabled(); }),
              "the window says that there is light");
        qobject_cast<QDialog *>(dialogue)->reject();
    });
    driver->trigger("detectAction");
    check(driver->badpixelTable()->model()->rowCount() == before, "nothing is listed");
}

void Tour::closeBoxAbove(QWidget *dialogue)
{
    WindowDriver::whenModal([=](QWidget *modal) {
        if (modal == dialogue)
            return closeBoxAbove(dialogue); // no box yet: look again
        takePicture("light");
        modal->close();
    });
}

void Tour::coverSensor()
{
    tell("The lens cap goes on.");
    kelvosim::setLensCap(Serial, true);
    check(waitForFrames(4), "dark frames arrive");
    takePicture("covered");
}

void Tour::detect()
{
    tell("Running a detection.");
    if (auto *dock = window->findChild<QDockWidget *>("BadpixelListDock"))
        dock->raise();
    WindowDriver::whenModal([this](QWidget *dialogue) { watchDetection(dialogue); });
    driver->trigger("detectAction");
}

void Tour::watchDetection(QWidget *dialogue)
{
    takePicture("detection-dialogue");
    const auto *buttons = dialogue->findChild<QDialogButtonBox *>();
    const auto *progress = dialogue->findChild<QProgressBar *>();
    buttons->button(QDialogButtonBox::Ok)->click();
    check(WindowDriver::waitFor([=] { return progress->value() >= 50; }), "the progress bar moves");
    takePicture("capturing");
    check(WindowDriver::waitFor([=] { return buttons->isEnabled(); }), "the run ends");
    check(dialogue->isVisible(), "the dialogue stays open");
    takePicture("detected");
    if (QWidget *box = QApplication::activeModalWidget(); box && box != dialogue)
        box->close(); // the run failed and says so
    qobject_cast<QDialog *>(dialogue)->reject();
}

/// What the sensor model planted against what the list shows. Pixels close to the threshold count neither
/// way, nor do the last rows, which the detector's walk does not reach.
void Tour::compareWithTruth()
{
    const std::set<Position> listed = listedPositions(driver->badpixelTable());
    const double exposure = kelvosim::exposureTime(Serial);
    std::set<Position> planted;
    int found = 0;
    int missed = 0;
    for (const kelvosim::HotPixel &hot : kelvosim::plantedHotPixels(Serial)) {
        const Position position(hot.at.x, hot.at.y);
        planted.insert(position);
        const bool isListed = listed.count(position) > 0;
        found += isListed;
        missed += !isListed && hot.rate * exposure > Threshold + 3 && hot.at.y < SensorHeight - 2;
    }
    const auto wrong = std::count_if(listed.begin(), listed.end(),
                                     [&](const Position &position) { return !planted.count(position); });
    tell(QString("   planted %1, found %2, missed above the threshold %3, false %4")
             .arg(planted.size())
             .arg(found)
             .arg(missed)
             .arg(wrong));
    check(found > 0, "hot pixels are found");
    check(missed == 0, "none above the threshold is missed");
    check(wrong == 0, "none is false");
    takePicture("circles");
}

void Tour::reviewEntry()
{
    tell("Looking at one entry at 2:1.");
    driver->trigger("zoom2to1Action");
    waitForFrames(2);
    selectOwnEntry();
    check(driver->action("deleteBadpixelAction")->isEnabled(), "the user's own entry can be deleted");
    check(WindowDriver::waitFor([this] { return status("userCountLabel") != "U: 0"; }),
          "the user's entries are counted");
    waitForFrames(2);
    takePicture("entry");
}

/// An entry that was selected already is gone to again, which brings it into view.
void Tour::selectOwnEntry()
{
    driver->badpixelTable()->clearSelection();
    driver->badpixelTable()->selectRow(static_cast<int>(kelvosim::factoryList(Serial).size()) + 1);
}

/// Walks the focus away from the entry and back with the arrow keys.
void Tour::lookThroughMagnifier()
{
    tell("Walking the focus in the magnifier.");
    QPoint focus;
    const auto following = QObject::connect(window.get(), &MainWindow::magnifierPositionChanged,
                                            [&focus](QPoint position) { focus = position; });
    pressOnMagnifier(Qt::Key_Right);
    const QPoint beside = focus;
    pressOnMagnifier(Qt::Key_Left);
    check(focus == beside - QPoint(1, 0), "arrow keys move the focus pixel by pixel");
    QObject::disconnect(following);
    driver->trigger("zoom4to1Action");
    waitForFrames(2);
    selectOwnEntry();
    waitForFrames(2);
    takePicture("magnifier");
    driver->trigger("zoom1to1Action");
    waitForFrames(2);
}

void Tour::pressOnMagnifier(int key) const
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(window->findChild<MagnifierControl *>()->magnifier(), &press);
}

void Tour::addAndDelete()
{
    tell("Adding an entry by hand and deleting another.");
    const QAbstractItemModel *list = driver->badpixelTable()->model();
    const int before = list->rowCount();
    driver->clickPixel(QPoint(300, 200));
    driver->trigger("addBadpixelAction");
    check(list->rowCount() == before + 1, "an entry is added by hand");
    check(listedPositions(driver->badpixelTable()).count({300, 200}) == 1, "it stands where the click was");
    driver->badpixelTable()->selectRow(before - 1);
    driver->trigger("deleteBadpixelAction");
    check(list->rowCount() == before, "another one is deleted");
    waitForFrames(2);
    takePicture("added-and-deleted");
}

void Tour::writeList()
{
    tell("Writing the list into the camera.");
    WindowDriver::whenModal([this](QWidget *modal) {
        takePicture("confirmation");
        QAbstractButton *yes = qobject_cast<QMessageBox *>(modal)->button(QMessageBox::Yes);
        check(yes, "the window asks before it writes");
        if (yes)
            yes->click();
        else
            modal->close();
    });
    driver->trigger("writeListAction");
    check(!kelvosim::storedUserList(Serial).empty(), "the camera holds the list");
    tell(QString("   the camera holds %1 user entries").arg(kelvosim::storedUserList(Serial).size()));
}

void Tour::keepInFiles()
{
    tell("Keeping the user entries in files.");
    WindowDriver::chooseFile(storage.filePath("list.bin"));
    driver->trigger("saveListAction");
    check(QFileInfo(storage.filePath("list.bin")).size() > 0, "the camera library saved a binary file");

    const std::set<Position> listed = listedPositions(driver->badpixelTable());
    WindowDriver::chooseFile(storage.filePath("list.txt"),
                             [this](const QFileDialog &) { takePicture("export"); });
    driver->trigger("exportListAction");
    WindowDriver::chooseFile(storage.filePath("list.txt"));
    driver->trigger("importListAction");
    check(listedPositions(driver->badpixelTable()) == listed,
          "what was exported is found again by importing");
}

void Tour::closeAndReopen()
{
    tell("Closing the camera and opening it again.");
    const std::set<Position> written = listedPositions(driver->badpixelTable());
    driver->trigger("closeCameraAction");
    check(driver->badpixelTable()->model()->rowCount() == 0, "closing empties the list");
    takePicture("closed");
    WindowDriver::waitFor([this] { return driver->cameraStatus(QString::fromStdString(Serial)) == "free"; });
    driver->trigger("openCameraAction");
    check(waitForFrames(3), "live frames arrive again");
    check(listedPositions(driver->badpixelTable()) == written, "the written list is found in the camera");
    takePicture("reopened");
}

void Tour::switchCorrection()
{
    tell("Switching the camera's own correction on.");
    WindowDriver::waitFor([this] { return driver->action("correctionAction")->isEnabled(); });
    driver->action("highlightAction")->setChecked(false);
    const kelvosim::Pixel pixel = kelvosim::storedUserList(Serial).front();
    waitForFrames(3);
    const int before = greyAt(pixel);
    takePicture("uncorrected");
    driver->trigger("correctionAction");
    waitForFrames(4);
    WindowDriver::waitFor([&] { return greyAt(pixel) < before / 2; }, 3000);
    const int after = greyAt(pixel);
    tell(QString("   pixel (%1, %2) reads %3 before and %4 after")
             .arg(pixel.x)
             .arg(pixel.y)
             .arg(before)
             .arg(after));
    check(after < before / 2, "a listed pixel vanishes from the image");
    kelvosim::setLensCap(Serial, false);
    waitForFrames(4);
    takePicture("corrected");
    driver->trigger("closeCameraAction");
}

void Tour::loadOnAnotherCamera()
{
    tell("Loading the saved entries on another camera.");
    driver->selectCamera("KV00002592");
    driver->trigger("openCameraAction");
    WindowDriver::chooseFile(storage.filePath("list.bin"));
    driver->trigger("loadListAction");
    const QString users = QString("U: %1").arg(kelvosim::storedUserList(Serial).size());
    check(WindowDriver::waitFor([&] { return status("userCountLabel") == users; }),
          "the status bar counts the entries: " + users);
    check(WindowDriver::waitFor([this] { return status("framesLabel") != "Frames: 0"; }), "and the frames");
    takePicture("loaded");
    driver->trigger("closeCameraAction");
}

void Tour::readHelp()
{
    tell("Reading usage and about.");
    for (const char *action : {"usageAction", "aboutAction"}) {
        WindowDriver::whenModal([=](QWidget *modal) {
            takePicture(QString(action).remove("Action"));
            modal->close();
        });
        driver->trigger(action);
    }
}
