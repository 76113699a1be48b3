// SPDX-License-Identifier: MIT
// A monkey at the real window: random actions, none of which may do harm.
//
//   speckmend-monkey [--seed NUMBER[:LIFE]] [--actions COUNT] [--verbose]

#include "application.h"
#include "monkeydiary.h"
#include "monkeylife.h"

#include <QCommandLineParser>
#include <QDesktopServices>
#include <QDir>
#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdio>
#include <random>

namespace {

constexpr quint64 ActionsOfALife = 2000;
constexpr quint64 LivesAReport = 10;

struct Plan
{
    quint64 seed = 0;
    quint64 firstLife = 0;
    quint64 lives = 0;
    bool verbose = false;
};

/// Swallows what a click on a link would open in a browser, as long as it lives.
class NoBrowser : public QObject
{
    Q_OBJECT

public:
    NoBrowser()
    {
        for (const char *scheme : Schemes)
            QDesktopServices::setUrlHandler(scheme, this, "open");
    }
    ~NoBrowser() override
    {
        for (const char *scheme : Schemes)
            QDesktopServices::unsetUrlHandler(scheme);
    }

public slots:
    void open(const QUrl &) { monkeydiary::count("links opened"); }

private:
    static constexpr const char *Schemes[] = {"http", "https", "file", "mailto"};
};

Plan readPlan(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{"seed", "Plays this seed, or one life of it alone.", "number[:life]"},
                       {"actions", "How many actions to perform, in lives of 2000.", "count", "100000"},
                       {"verbose", "Prints every action."}});
    parser.process(application);
    const QString seed = parser.value("seed");
    Plan plan;
    plan.seed = seed.isEmpty() ? std::random_device()() : seed.section(':', 0, 0).toULongLong();
    plan.firstLife = seed.section(':', 1, 1).toULongLong();
    plan.lives = seed.contains(':')
                     ? 1
                     : (parser.value("actions").toULongLong() + ActionsOfALife - 1) / ActionsOfALife;
    plan.verbose = parser.isSet("verbose");
    return plan;
}

void playLife(const Plan &plan, quint64 life)
{
    const QTemporaryDir files;
    QDir::setCurrent(files.path());
    QDir().mkdir("folder");
    monkeydiary::beginLife(QString("%1:%2").arg(plan.seed).arg(life));
    MonkeyLife(MonkeyRandom::mixed(plan.seed) + life, ActionsOfALife, files.path()).live();
    QDir::setCurrent(QDir::rootPath());
}

void report(quint64 actions, qint64 seconds)
{
    monkeydiary::checkLeaks();
    std::printf("%llu actions, %lld s\n", actions, seconds);
    std::fflush(stdout);
}

void play(const Plan &plan)
{
    QElapsedTimer timer;
    timer.start();
    for (quint64 life = 0; life < plan.lives; ++life) {
        playLife(plan, plan.firstLife + life);
        if ((life + 1) % LivesAReport == 0)
            report((life + 1) * ActionsOfALife, timer.elapsed() / 1000);
    }
    monkeydiary::checkLeaks();
    std::printf("%llu actions in %llu lives, %.1f s, no finding:\n%s", plan.lives * ActionsOfALife,
                plan.lives, static_cast<double>(timer.elapsed()) / 1000.0,
                qPrintable(monkeydiary::figures()));
}

} // namespace

int main(int argc, char **argv)
{
    // Settings and everything else that is kept in a home stay in a folder that goes with the program.
    const QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Application application(argc, argv);
    const Plan plan = readPlan(application);
    const NoBrowser browser;
    std::printf("speckmend-monkey --seed %llu\n", plan.seed);
    std::fflush(stdout);
    monkeydiary::open(plan.verbose);
    play(plan);
    monkeydiary::close();
    return 0;
}

#include "monkey.moc"
