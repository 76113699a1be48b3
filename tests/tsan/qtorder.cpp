// SPDX-License-Identifier: MIT
// Preloaded into thread sanitizer runs: tells the sanitizer which calls into Qt put two threads in order.
//
// Debian's Qt is not instrumented, so the sanitizer sees neither its futex locks nor its event queues, and
// would report every queued signal as a race. Each function here stands in front of Qt's own, adds the edge
// and passes on. QThreadPool and blocking queued signals are not covered; the program uses neither.

#include <QtCore>

#include <dlfcn.h>
#include <pthread.h>

extern "C" {
void __tsan_acquire(void *) __attribute__((weak));
void __tsan_release(void *) __attribute__((weak));
}

namespace {

char queues; // one key for all event queues: coarse, but edges run only from posting to delivery

void acquire(void *key)
{
    if (__tsan_acquire)
        __tsan_acquire(key);
}

void release(void *key)
{
    if (__tsan_release)
        __tsan_release(key);
}

template<typename Function>
Function behind(const char *symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

// Events and signals.

bool QObject::event(QEvent *e)
{
    static const auto own = behind<bool (*)(QObject *, QEvent *)>("_ZN7QObject5eventEP6QEvent");
    acquire(&queues);
    const bool handled = own(this, e); // the object may be gone afterwards
    release(&queues);
    return handled;
}

void QMetaObject::activate(QObject *sender, int offset, int index, void **arguments)
{
    static const auto own =
        behind<void (*)(QObject *, int, int, void **)>("_ZN11QMetaObject8activateEP7QObjectiiPPv");
    release(&queues);
    own(sender, offset, index, arguments);
}

void QMetaObject::activate(QObject *sender, const QMetaObject *meta, int index, void **arguments)
{
    static const auto own = behind<void (*)(QObject *, const QMetaObject *, int, void **)>(
        "_ZN11QMetaObject8activateEP7QObjectPKS_iPPv");
    release(&queues);
    own(sender, meta, index, arguments);
}

void QCoreApplication::postEvent(QObject *receiver, QEvent *e, int priority)
{
    static const auto own =
        behind<void (*)(QObject *, QEvent *, int)>("_ZN16QCoreApplication9postEventEP7QObjectP6QEventi");
    release(&queues);
    own(receiver, e, priority);
}

// The end of a thread: QThread wakes its waiters with a broadcast.

extern "C" int pthread_cond_broadcast(pthread_cond_t *condition) noexcept
{
    static const auto own = behind<int (*)(pthread_cond_t *)>("pthread_cond_broadcast");
    release(&queues);
    return own(condition);
}

bool QThread::wait(QDeadlineTimer deadline)
{
    static const auto own = behind<bool (*)(QThread *, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    const bool ended = own(this, deadline);
    acquire(&queues);
    return ended;
}

bool QThread::wait(unsigned long milliseconds)
{
    static const auto own = behind<bool (*)(QThread *, unsigned long)>("_ZN7QThread4waitEm");
    const bool ended = own(this, milliseconds);
    acquire(&queues);
    return ended;
}

// Locks.

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto own = behind<void (*)(QMutex *)>("_ZN6QMutex4lockEv");
    own(this);
    acquire(this);
}

void QMutex::unlock() noexcept
{
    static const auto own = behind<void (*)(QMutex *)>("_ZN6QMutex6unlockEv");
    release(this);
    own(this);
}
