// SPDX-License-Identifier: MIT
// The build, installed into a folder of its own.
#pragma once

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

class InstalledTree final
{
public:
    InstalledTree()
    {
        QProcess cmake;
        cmake.start(CMAKE_PROGRAM, {"--install", BUILD_FOLDER, "--prefix", m_folder.path()});
        m_complete = cmake.waitForFinished(60000) && cmake.exitStatus() == QProcess::NormalExit &&
                     cmake.exitCode() == 0;
    }

    bool isComplete() const { return m_complete; }

    QString path(const QString &file) const { return m_folder.filePath(file); }

    /// All files and links, sorted, as seen from the folder.
    QStringList files() const
    {
        QStringList found;
        QDirIterator walk(m_folder.path(), QDir::Files | QDir::System | QDir::Hidden,
                          QDirIterator::Subdirectories);
        while (walk.hasNext())
            found.append(QDir(m_folder.path()).relativeFilePath(walk.next()));
        found.sort();
        return found;
    }

private:
    QTemporaryDir m_folder;
    bool m_complete = false;
};

/// Whether this machine has a camera library of its own, which every installed program finds.
inline bool machineHasCameraLibrary()
{
    QProcess ldconfig;
    ldconfig.start("/sbin/ldconfig", {"-p"});
    ldconfig.waitForFinished();
    return ldconfig.readAllStandardOutput().contains("libkelvo_api.so.1 ");
}
