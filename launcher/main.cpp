// SPDX-License-Identifier: MIT
// Starts the installed program, or says why that cannot be: the program itself, linked to the camera library,
// would end in the dynamic loader where that library is missing, with a line that nobody sees who started it
// from the desktop.

#include "loadercheck.h"
#include "startfailure.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace {

QString installedProgram()
{
    const QDir ownFolder = QFileInfo(QFile::symLinkTarget("/proc/self/exe")).dir();
    return QDir::cleanPath(ownFolder.filePath(PROGRAM_FROM_LAUNCHER));
}

// Comes back, with the reason, only when the program cannot be started.
QString start(const QString &program, char **argv)
{
    const QStringList complaints = loaderComplaints(program);
    if (!complaints.isEmpty())
        return explained(complaints);
    execv(QFile::encodeName(program).constData(), argv);
    return QString("Speckmend cannot start: %1: %2")
        .arg(program, QString::fromLocal8Bit(std::strerror(errno)));
}

} // namespace

int main(int argc, char **argv)
{
    const QString failure = start(installedProgram(), argv);
    printStartFailure(failure);
    if (isSeenOnScreenAlone()) {
        QApplication application(argc, argv);
        showStartFailure(failure);
    }
    return 1;
}
