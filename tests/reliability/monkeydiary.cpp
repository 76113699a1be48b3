// SPDX-License-Identifier: MIT
// Keeps the last actions and prints them when the program goes wrong in any way.

#include "monkeydiary.h"

#include <QMap>
#include <QtGlobal>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

#include <unistd.h>

extern "C" {
// There in a build under sanitizers only, under these names. NOLINTBEGIN(bugprone-reserved-identifier)
__attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());
__attribute__((weak)) void __sanitizer_print_stack_trace();
__attribute__((weak)) int __lsan_do_recoverable_leak_check();
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

constexpr std::size_t LinesKept = 50;
constexpr unsigned SecondsForAnAction = 180;
constexpr unsigned ActionsAnAlarm = 32; // setting the alarm costs a call of the system

/// Warnings that mean nothing, by what they begin with.
const char *const Harmless[] = {
    "This plugin does not support", // offscreen: no native window has size hints, can be raised or grabs
};

struct Diary
{
    std::string life;
    std::array<std::string, LinesKept> lines;
    std::size_t written = 0;
    bool printEverything = false;
    QMap<QString, quint64> counts;
};

// Handlers of signals reach it; it is never destroyed, since threads may still warn at the end.
Diary &diary()
{
    static auto *const kept = new Diary;
    return *kept;
}

std::string &currentLine()
{
    return diary().lines[(diary().written - 1) % LinesKept];
}

void printLastActions()
{
    const std::size_t end = diary().written;
    std::fprintf(stderr, "The last actions:\n");
    for (std::size_t i = end > LinesKept ? end - LinesKept : 0; i < end; ++i)
        std::fprintf(stderr, "  %s\n", diary().lines[i % LinesKept].c_str());
    std::fprintf(stderr, "Replay: speckmend-monkey --seed %s\n", diary().life.c_str());
    std::fflush(stderr);
}

/// The program is lost at this point: printing may fail, but mostly does not.
void onSignal(int number)
{
    std::signal(number, SIG_DFL);
    std::fprintf(stderr, "FINDING: signal %d%s\n", number,
                 number == SIGALRM ? ", an action takes minutes" : "");
    printLastActions();
    if (__sanitizer_print_stack_trace)
        __sanitizer_print_stack_trace();
    std::raise(number == SIGALRM ? SIGABRT : number);
}

bool isHarmless(const QString &text)
{
    for (const char *start : Harmless) {
        if (text.startsWith(QLatin1String(start)))
            return true;
    }
    return false;
}

/// Warnings come from any thread.
void onMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    if (type == QtDebugMsg || type == QtInfoMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
    else if (!isHarmless(text))
        monkeydiary::finding("Qt warns: " + text);
}

} // namespace

void monkeydiary::open(bool printEverything)
{
    diary().printEverything = printEverything;
    qInstallMessageHandler(onMessage);
    std::signal(SIGABRT, onSignal);
    std::signal(SIGALRM, onSignal);
    if (__sanitizer_set_death_callback) {
        __sanitizer_set_death_callback(printLastActions);
        return; // reports crashes itself
    }
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        std::signal(number, onSignal);
}

void monkeydiary::beginLife(const QString &name)
{
    diary().life = name.toStdString();
    diary().written = 0;
}

void monkeydiary::beginAction(quint64 number, int depth, const char *kind)
{
    if (number % ActionsAnAlarm == 0)
        alarm(SecondsForAnAction);
    if (diary().printEverything && diary().written > 0)
        std::fprintf(stderr, "%s\n", currentLine().c_str());
    ++diary().written;
    currentLine() = std::to_string(number) + std::string(1 + 2 * static_cast<std::size_t>(depth), ' ') + kind;
}

void monkeydiary::note(const QString &text)
{
    if (diary().written > 0)
        currentLine() += ' ' + text.toStdString();
}

void monkeydiary::count(const char *what, int times)
{
    diary().counts[QLatin1String(what)] += static_cast<quint64>(times);
}

QString monkeydiary::figures()
{
    QString text;
    for (auto i = diary().counts.constBegin(); i != diary().counts.constEnd(); ++i)
        text += QString("  %1 %2\n").arg(i.value(), 9).arg(i.key());
    return text;
}

void monkeydiary::checkLeaks()
{
    if (__lsan_do_recoverable_leak_check && __lsan_do_recoverable_leak_check() != 0)
        finding("memory leaks");
}

void monkeydiary::close()
{
    alarm(0);
    std::fflush(nullptr);
    if (__lsan_do_recoverable_leak_check)
        _exit(0);
}

void monkeydiary::finding(const QString &text)
{
    std::fprintf(stderr, "FINDING: %s\n", qPrintable(text));
    printLastActions();
    if (std::getenv("SPECKMEND_MONKEY_STACK") && __sanitizer_print_stack_trace)
        __sanitizer_print_stack_trace();
    std::fflush(stdout);
    _exit(1);
}
