// SPDX-License-Identifier: MIT
// Asks the dynamic loader whether it finds all that the program is linked to.

#include "loadercheck.h"

#include <QFile>
#include <QProcess>
#include <QSysInfo>

namespace {

// What the loader writes when it is told to list the libraries of a program instead of starting it, and to
// look up every function at once.
QStringList loaderReport(const QString &program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C");
    environment.insert("LD_TRACE_LOADED_OBJECTS", "1");
    environment.insert("LD_WARN", "yes");
    environment.insert("LD_BIND_NOW", "yes");
    QProcess loader;
    loader.setProcessEnvironment(environment);
    loader.setProcessChannelMode(QProcess::MergedChannels);
    loader.start(program, QStringList());
    loader.waitForFinished();
    return QString::fromLocal8Bit(loader.readAll()).split('\n');
}

// A function that only some other library lacks may never be called.
bool lacksFunction(const QString &line, const QString &program)
{
    return line.startsWith("undefined symbol: ") && line.endsWith('(' + program + ')');
}

bool isComplaint(const QString &line, const QString &program)
{
    return line.contains("not found") || line.contains("error while loading") || lacksFunction(line, program);
}

QString namedFolders()
{
    const QString folders = QFile::decodeName(qgetenv("LD_LIBRARY_PATH"));
    return folders.isEmpty() ? QString("in the folders named in LD_LIBRARY_PATH, which is not set")
                             : "in the folders named in LD_LIBRARY_PATH: " + folders;
}

QString systemFolders()
{
    const QString architecture = LIBRARY_ARCHITECTURE;
    const QString own =
        architecture.isEmpty() ? QString() : QString("/lib/%1, /usr/lib/%1, ").arg(architecture);
    return "in the folders of the system: " + own + "/lib and /usr/lib";
}

QString missingCameraLibrary()
{
    return QString("Speckmend cannot start: the camera library libkelvo_api.so.1 was not found.\n\n"
                   "It belongs to the software of the camera's maker. One for %1 was looked for\n"
                   "- %2\n"
                   "- in the folders named in /etc/ld.so.conf and /etc/ld.so.conf.d, as ldconfig found them "
                   "last\n"
                   "- %3\n\n"
                   "Install the software of the camera's maker, or name the folder of the library in "
                   "LD_LIBRARY_PATH. Without a camera, try Speckmend on simulated ones: install the package "
                   "speckmend-simulator and start \"Speckmend with simulated cameras\".")
        .arg(QSysInfo::buildCpuArchitecture(), namedFolders(), systemFolders());
}

} // namespace

QStringList loaderComplaints(const QString &program)
{
    QStringList complaints;
    for (const QString &line : loaderReport(program)) {
        if (isComplaint(line, program))
            complaints.append(line.simplified());
    }
    return complaints;
}

QString explained(const QStringList &complaints)
{
    if (complaints.contains("libkelvo_api.so.1 => not found"))
        return missingCameraLibrary();
    return "Speckmend cannot start with the libraries that were found:\n\n" + complaints.join('\n');
}
