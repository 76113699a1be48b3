// SPDX-License-Identifier: MIT
// Starts the program, acts, ends it, and looks at what is left.

#include "monkeylife.h"

#include "application.h"
#include "cameralistmodel.h"
#include "mainwindow.h"
#include "monkeydiary.h"
#include "monkeyinvariants.h"
#include "savedlayout.h"
#include "windowdriver.h"

#include <QAction>
#include <QApplication>
#include <QSettings>
#include <QTableView>
#include <QTimer>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

const char *const HealthyName = "KVHEALTHY";

kelvosim::CameraSpec healthyCamera()
{
    kelvosim::CameraSpec spec;
    spec.serial = HealthyName;
    spec.width = 48;
    spec.height = 36;
    spec.factoryList = {{1, 1}};
    spec.freeRunning = false;
    return spec;
}

void require(bool holds, const char *what)
{
    if (!holds)
        monkeydiary::finding(what);
}

/// Qt's dock layout, once in many drags, forgets an item that it made when the window was built: what is made
/// here does not count as leaked. Windows that nobody drags at are looked at by all other tests.
std::unique_ptr<MainWindow> makeWindow()
{
#if defined(__SANITIZE_ADDRESS__)
    const __lsan::ScopedDisabler disabler;
#endif
    return std::make_unique<MainWindow>();
}

int weightOf(const MonkeyKinds &kinds)
{
    int sum = 0;
    for (const MonkeyKind &kind : kinds)
        sum += kind.weight;
    return sum;
}

const MonkeyKind &weighed(const MonkeyKinds &kinds, int place)
{
    for (const MonkeyKind &kind : kinds) {
        place -= kind.weight;
        if (place < 0)
            return kind;
    }
    return kinds.last();
}

} // namespace

MonkeyLife::MonkeyLife(quint64 lifeSeed, quint64 actionCount, const QString &folder)
    : seed(lifeSeed)
    , actions(actionCount)
    , answers(bench, input, folder)
    , hands(input)
{
    for (const MonkeyKind &kind : bench.kinds() + input.kinds() + answers.kinds() + hands.kinds()) {
        if (kind.place != MonkeyKind::InDialogue)
            inWindow << kind;
        if (kind.place != MonkeyKind::InWindow)
            inDialogue << kind;
    }
    windowWeight = weightOf(inWindow);
    dialogueWeight = weightOf(inDialogue);
}

MonkeyLife::~MonkeyLife() = default;

void MonkeyLife::live()
{
    MonkeyRandom random(seed, actions);
    QSettings("Kelvo", "Kelvo").clear();
    hands.keepLooks();
    bench.reset(random.oneIn(4), random);
    while (done < actions) {
        start();
        play();
        end();
    }
    hands.restoreLooks();
    kelvosim::reset();
}

/// As the program does; a window that cannot be built ends it with a text.
void MonkeyLife::start()
{
    spoilSettings();
    try {
        window = makeWindow();
    } catch (const std::exception &) {
        monkeydiary::count("windows that could not be built");
        bench.behave();
        window = makeWindow();
    }
    monkeydiary::count("windows");
    // The list is refreshed when the seed says so instead of once a second.
    window->findChild<QTableView *>("cameraTable")->model()->findChild<QTimer *>()->stop();
    invariants = std::make_unique<MonkeyInvariants>(*window, bench, answers);
    input.setWindow(window.get());
    hands.setWindow(window.get());
    window->resize(520, 420);
    window->show();
}

void MonkeyLife::play()
{
    depth = 0;
    turn.start(0, this);
    Application::exec();
    turn.stop();
}

void MonkeyLife::end()
{
    input.releaseAll();
    if (done == actions)
        checkHealth();
    input.setWindow(nullptr);
    hands.setWindow(nullptr);
    invariants.reset();
    window.reset();
    require(isSavedLayout(QSettings("Kelvo", "Kelvo").value("Speckmend/mainWindow/state").toByteArray()),
            "the window has saved what it would not read");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    checkNothingHeld();
}

/// A timer does not fire inside of its own event, but a new one does: in loops that the action opens.
void MonkeyLife::timerEvent(QTimerEvent *)
{
    turn.stop();
    if (done == actions)
        return QCoreApplication::quit(); // ends the loops of dialogues, too
    turn.start(0, this);
    ++done;
    act();
}

void MonkeyLife::act()
{
    MonkeyRandom random(seed, done);
    const MonkeyKind &kind = choose(random);
    monkeydiary::beginAction(done, depth, kind.name);
    const int here = depth++;
    kind.act(random);
    depth = here;
    invariants->check(depth);
}

/// Draws for both places, so that what is open does not shift what is drawn afterwards.
const MonkeyKind &MonkeyLife::choose(MonkeyRandom &random) const
{
    const int windowPlace = random.below(windowWeight);
    const int dialoguePlace = random.below(dialogueWeight);
    QWidget *top = input.receiver();
    if (top == window.get())
        return weighed(inWindow, windowPlace);
    const_cast<MonkeyAnswers &>(answers).meet(top);
    return weighed(inDialogue, dialoguePlace);
}

/// Some programs start with settings that are none, or of which a byte has changed.
void MonkeyLife::spoilSettings()
{
    MonkeyRandom random(seed, actions + done + 1);
    if (!random.oneIn(4))
        return;
    QSettings settings("Kelvo", "Kelvo");
    for (const char *key : {"Speckmend/mainWindow/geometry", "Speckmend/mainWindow/state"}) {
        QByteArray bytes = settings.value(key).toByteArray();
        if (bytes.isEmpty() || random.oneIn(4))
            bytes = QByteArray::number(random.number());
        else
            bytes[random.below(bytes.size())] = static_cast<char>(random.below(256));
        settings.setValue(key, bytes);
    }
}

/// Whatever was done to it: the program opens a camera, shows its frame, and takes an entry.
void MonkeyLife::checkHealth()
{
    bench.behave();
    kelvosim::addCamera(healthyCamera());
    const WindowDriver driver(*window);
    const auto *entries = driver.badpixelTable()->model();
    qobject_cast<CameraListModel *>(driver.cameraTable()->model())->refresh();
    require(driver.selectCamera(HealthyName), "the healthy camera is not listed");
    driver.trigger("openCameraAction");
    driver.trigger("zoom1to1Action");
    require(entries->rowCount() == 1, "the healthy camera's list is not read");
    require(kelvosim::pushFrame(HealthyName, std::vector<std::uint8_t>(48 * 36, 7)),
            "the healthy camera does not capture");
    require(WindowDriver::waitFor([&] { return driver.shownImage().size() == QSize(48, 36); }),
            "the healthy camera's frame is not shown");
    QMetaObject::invokeMethod(window.get(), "setMagnifierPosition", Q_ARG(QPoint, QPoint(47, 35)));
    driver.trigger("addBadpixelAction");
    require(entries->rowCount() == 2, "no entry is added any more");
}

void MonkeyLife::checkNothingHeld()
{
    for (const QWidget *top : QApplication::topLevelWidgets()) {
        const QString name = top->metaObject()->className();
        if (name != "QTipLabel" && !name.startsWith("QDesktop"))
            monkeydiary::finding("a window is left when the program has ended: " + name);
    }
    if (bench.releaseFailed())
        return;
    require(kelvosim::openHandles() == 0, "a camera stays open");
    require(kelvosim::allocatedBuffers() == 0, "image memory stays allocated");
    require(kelvosim::lockedBuffers() == 0, "a buffer stays locked at the end");
    require(kelvosim::waitingThreads() == 0, "a thread goes on waiting");
}
