#pragma once

#include <sys/resource.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

// Runs of qualityctl, in the folder of the examples.

/// What a run left.
struct Run
{
    int exitCode = -1; ///< -1 for one that was ended by a signal
    QString out;
    QString err;

    QJsonObject json() const { return QJsonDocument::fromJson(out.toUtf8()).object(); }
};

/// A run whose files end at a size, as on a full disk.
class LimitedProcess : public QProcess
{
public:
    LimitedProcess(rlim_t fileBytes, QObject* parent) : QProcess(parent), m_limit{fileBytes, RLIM_INFINITY} {}

protected:
    void setupChildProcess() override { setrlimit(RLIMIT_FSIZE, &m_limit); }

private:
    const rlimit m_limit;
};

inline QProcess* start(const QStringList& arguments, QObject* parent, rlim_t fileBytes = RLIM_INFINITY)
{
    auto* process = new LimitedProcess(fileBytes, parent);
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

inline Run run(const QStringList& arguments, rlim_t fileBytes = RLIM_INFINITY)
{
    QObject owner;
    return finish(start(arguments, &owner, fileBytes));
}
