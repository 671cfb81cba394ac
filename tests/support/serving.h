#pragma once

#include "support/hostrun.h"

#include <QRegularExpression>

/// A program that serves a wall or stands for a hub, and says its port in the first line that it writes to `channel`.
class Serving
{
public:
    Serving(const QString& program, const QStringList& arguments, QProcess::ProcessChannel channel)
    {
        m_process.setReadChannel(channel);
        m_process.start(program, arguments);
        while (!m_process.canReadLine() && m_process.waitForReadyRead(10000)) {
        }
        const QRegularExpression port("(?:127.0.0.1:|^)(\\d+)");
        m_port = port.match(QString::fromUtf8(m_process.readLine())).captured(1);
    }
    ~Serving() { kill(); }
    Serving(const Serving&) = delete;
    Serving& operator=(const Serving&) = delete;

    /// Asks it to end, and what it left.
    Run end()
    {
        m_process.terminate();
        return finish(&m_process);
    }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    QString port() const { return m_port; }
    QString address() const { return "127.0.0.1:" + m_port; }
    QString transport() const { return "gateway:" + address(); }

private:
    QProcess m_process;
    QString m_port;
};
