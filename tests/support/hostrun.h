#pragma once

#include <sys/resource.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

#ifdef __linux__
#include <linux/capability.h>
#include <sys/prctl.h>
#endif

// Runs of qualityctl, in the folder of the examples.

/// What a run left.
struct Run
{
    int exitCode = -1; ///< -1 for one that was ended by a signal
    QString out;
    QString err;

    QJsonObject json() const { return QJsonDocument::fromJson(out.toUtf8()).object(); }
};

/// What keeps a process from writing.
struct Hindrance
{
    rlim_t fileBytes = RLIM_INFINITY; ///< files end there, as on a full disk
    bool obeysPermissions = false;    ///< also when it runs as root
};

class HinderedProcess : public QProcess
{
public:
    HinderedProcess(const Hindrance& hindrance, QObject* parent) : QProcess(parent), m_hindrance(hindrance) {}

protected:
    void setupChildProcess() override
    {
        const rlimit limit{m_hindrance.fileBytes, RLIM_INFINITY};
        if (m_hindrance.fileBytes != RLIM_INFINITY)
            setrlimit(RLIMIT_FSIZE, &limit);
#ifdef __linux__
        if (m_hindrance.obeysPermissions)
            prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
#endif
    }

private:
    Hindrance m_hindrance;
};

inline QProcess* start(const QStringList& arguments, QObject* parent, const Hindrance& hindrance = {})
{
    auto* process = new HinderedProcess(hindrance, parent);
    process->setWorkingDirectory(EXAMPLES);
    process->start(QUALITYCTL, arguments);
    return process;
}

inline Run finish(QProcess* process)
{
    if (process->state() != QProcess::NotRunning && !process->waitForFinished(60000))
        qFatal("qualityctl does not end");
    return {process->exitStatus() == QProcess::NormalExit ? process->exitCode() : -1,
            QString::fromUtf8(process->readAllStandardOutput()), QString::fromUtf8(process->readAllStandardError())};
}

inline Run run(const QStringList& arguments, const Hindrance& hindrance = {})
{
    QObject owner;
    return finish(start(arguments, &owner, hindrance));
}
