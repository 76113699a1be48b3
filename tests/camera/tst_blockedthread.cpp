// SPDX-License-Identifier: MIT
// An event thread that hangs in the library is ended by force, and has ended before anything of it is freed.
// A program of its own: it stands between the camera and the library's vx_Event.

#include "camera.h"
#include "testcamera.h"

#include <QSemaphore>
#include <QtTest>

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>

namespace {

constexpr int LongestEnd = 300; // milliseconds

QSemaphore closed;
std::atomic<int> buffersAtEnd{-1};

/// A thread that is cancelled while one of these lives ends late: when the camera is closed, or after
/// LongestEnd.
class LateEnd
{
public:
    ~LateEnd()
    {
        if (hasReturned)
            return;
        closed.tryAcquire(1, LongestEnd);
        buffersAtEnd = kelvosim::allocatedBuffers();
    }

    bool hasReturned = false;
};

constexpr std::uint32_t DisableEvents = 2;
std::atomic<bool> isDeaf{false};

/// A thread that is cancelled while one of these lives goes on until it is gone.
class Deaf
{
public:
    Deaf() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before); }
    ~Deaf() { pthread_setcancelstate(before, nullptr); }

private:
    int before = PTHREAD_CANCEL_ENABLE;
};

} // namespace

extern "C" std::int32_t vx_Event(std::uint32_t h, std::uint32_t command, void *data, std::uint32_t size)
{
    static const auto own = reinterpret_cast<decltype(&vx_Event)>(dlsym(RTLD_NEXT, "vx_Event"));
    if (isDeaf && command == DisableEvents) {
        const Deaf deaf;
        return own(h, command, data, size);
    }
    LateEnd end;
    const std::int32_t status = own(h, command, data, size);
    end.hasReturned = true;
    return status;
}

class TestBlockedThread : public QObject
{
    Q_OBJECT

private slots:
    void init() { testcamera::resetTo(testcamera::small()); }

    void aBlockedEventThreadIsEndedBeforeBuffersAreFreed();
    void anEventThreadThatEndsLateByItselfMayDoSo();
};

void TestBlockedThread::aBlockedEventThreadIsEndedBeforeBuffersAreFreed()
{
    Camera camera;
    QTRY_COMPARE(kelvosim::waitingThreads(), 1); // the device events' thread is past the block
    kelvosim::blockCall("vx_Event", 7);
    camera.open(testcamera::Device);
    QTRY_COMPARE(kelvosim::blockedCalls(), 1);
    int seen = -1;
    const auto connection = connect(&camera, &Camera::newImage, [&] {
        seen = buffersAtEnd;
        closed.release();
    });
    QElapsedTimer timer;
    timer.start();
    camera.close();
    QVERIFY(timer.elapsed() >= 450); // it had its time
    QCOMPARE(seen, 3);
    QVERIFY(testcamera::nothingHeld());

    disconnect(connection);
    kelvosim::releaseCalls();
    kelvosim::clearFaults();
    camera.open(testcamera::Device);
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(camera.frameCount(), 1);
}

/// The order to end by force comes while the thread makes its last call, and meets it when it has returned.
void TestBlockedThread::anEventThreadThatEndsLateByItselfMayDoSo()
{
    Camera camera;
    camera.open(testcamera::Device);
    QTRY_COMPARE(kelvosim::waitingThreads(), 2);
    isDeaf = true;
    kelvosim::delayCall("vx_Event", 700, DisableEvents);
    QElapsedTimer timer;
    timer.start();
    camera.close();
    QVERIFY(timer.elapsed() >= 650); // longer than the camera waits before it uses force
    QVERIFY(testcamera::nothingHeld());

    kelvosim::clearFaults();
    isDeaf = false;
    camera.open(testcamera::Device);
    kelvosim::pushFrame(testcamera::Serial, {});
    QTRY_COMPARE(camera.frameCount(), 1);
}

QTEST_GUILESS_MAIN(TestBlockedThread)
#include "tst_blockedthread.moc"
