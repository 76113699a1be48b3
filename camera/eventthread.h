// SPDX-License-Identifier: MIT
// A thread that waits for events of the camera library and emits each one as a signal.
#pragma once

#include "kelvocodes.h"

#include <QThread>
#include <QTimer>
#include <QVector>

#include <atomic>
#include <cstddef>

/// Waits in the camera library for a list of events and emits eventhappen() for each.
///
/// Every thread owns one private wake-up code of the process-wide pool; stopping signals it, so that a wait
/// without limit returns. All operations belong to the GUI thread; only run() is this thread's own.
class EventThread final : public QThread
{
    Q_OBJECT

public:
    /// @throws std::runtime_error "Too many events :D" when no wake-up code is left
    explicit EventThread(QObject *parent = nullptr);
    ~EventThread() override;

    /// Registers and enables `codes` and the wake-up code for the camera (0: system-wide device events), then
    /// starts the thread. A thread that still runs is ended first.
    /// @return 0, -1 when an event could not be registered, or the library's status when enabling failed;
    ///         the thread runs only after 0
    kelvo::Status start(kelvo::Handle camera, const QVector<std::uint32_t> &codes);

    /// Wakes the thread for its end. Does nothing when it is not running; does not wait for the end.
    void stop();

    /// From now on at most one undelivered eventhappen(event) is on its way; what is signalled meanwhile
    /// counts as one further event. Call it before the first start().
    void holdBack(std::uint32_t event);

    /// The receiver has got one eventhappen(event), and says so for each: a hundred undelivered ones make
    /// the thread wait. A held-back one follows as soon as the event loop has nothing else to do, so that
    /// input, timers and other events get their turn between two of them.
    void delivered(int event);

    /// Forgets what is held back. For the time after the thread's end.
    /// @return number of emitted events that the receiver has not got yet
    int abandon();

signals:
    /// Emitted in this thread; a held-back event in the GUI thread.
    void eventhappen(int event);

protected:
    void run() override;

private:
    enum Flight { Landed, InFlight, InFlightAndOneMore };

    kelvo::Status registerEvents();
    kelvo::Status callLibrary(kelvo::EventCommand command, void *data, std::size_t size);
    bool mayTakeOff(std::uint32_t event);
    void takeOff(std::uint32_t event);
    void land();
    void letReceiverCatchUp();

    kelvo::Handle handle = kelvo::NoCamera;
    QVector<std::uint32_t> events; // those asked for, then the wake-up code
    std::atomic<bool> running{false};
    std::uint32_t wakeCode = 0;
    std::uint32_t heldBackEvent = 0; // 0: every event is emitted at once
    std::atomic<int> flight{Landed};
    std::atomic<int> undelivered{0};
    QTimer landing;
};
