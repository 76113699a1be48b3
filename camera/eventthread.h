// SPDX-License-Identifier: MIT
// A thread that waits for events of the camera library and emits each one as a signal.
#pragma once

#include "kelvocodes.h"

#include <QThread>
#include <QVector>

#include <atomic>

/// Waits in the camera library for a list of events and emits eventhappen() for each.
///
/// Every thread owns one private wake-up code of the process-wide pool; stopping signals it, so that a wait
/// without limit returns. Construction, start(), stop() and destruction belong to the GUI thread.
class EventThread final : public QThread
{
    Q_OBJECT

public:
    /// @throws std::runtime_error "Too many events :D" when no wake-up code is left
    explicit EventThread(QObject *parent = nullptr);
    ~EventThread() override;

    /// Registers and enables `events` and the wake-up code for the camera (0: system-wide device events),
    /// then starts the thread.
    /// @return 0, -1 when an event could not be registered, or the library's status when enabling failed;
    ///         the thread runs only after 0
    kelvo::Status start(kelvo::Handle handle, const QVector<std::uint32_t> &events);

    /// Wakes the thread for its end. Does nothing when it is not running; does not wait for the end.
    void stop();

    /// From now on at most one undelivered `event` is on its way; what is signalled meanwhile counts as one
    /// further event. A receiver that uses this answers each eventhappen() with delivered(). Call it before
    /// start().
    void holdBack(std::uint32_t event);

    /// The receiver has handled one eventhappen(event). A held-back event follows through the event loop, so
    /// that input and timers get their turn first.
    void delivered(int event);

    /// Number of emitted events that the receiver has not yet answered with delivered().
    int undelivered() const { return undeliveredCount; }

signals:
    /// Emitted in this thread (a held-back event: in the GUI thread).
    void eventhappen(int event);

protected:
    void run() override;

private:
    enum Flight { Landed, InFlight, InFlightAndOneMore };

    bool mayTakeOff(std::uint32_t event);
    Q_INVOKABLE void emitHeldBack();

    kelvo::Handle handle = kelvo::NoCamera;
    QVector<std::uint32_t> events;
    std::atomic<bool> running{false};
    std::uint32_t wakeCode = 0;
    std::uint32_t heldBackEvent = 0; // 0: none
    std::atomic<int> flight{Landed};
    std::atomic<int> undeliveredCount{0};
};
