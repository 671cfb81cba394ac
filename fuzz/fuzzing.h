#pragma once

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

/// What every target needs: an application, a folder of its own, and logs that go nowhere.
class Fuzzing
{
public:
    static Fuzzing& instance()
    {
        static Fuzzing fuzzing;
        return fuzzing;
    }

    /// A file with this content; the one of the call before is replaced.
    QString file(const char* name, const std::uint8_t* data, std::size_t size) const
    {
        QFile out(m_folder.filePath(QString::fromLatin1(name)));
        if (!out.open(QIODevice::WriteOnly) ||
            out.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) != static_cast<qint64>(size))
            qFatal("cannot write the input");
        return out.fileName();
    }

private:
    Fuzzing()
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        qputenv("SUITE_COMPANY_DIR", m_folder.path().toLocal8Bit());
        qputenv("TMPDIR", m_folder.path().toLocal8Bit());
    }

    int m_argumentCount = 1;
    char m_name[5] = "fuzz";
    char* m_arguments[2] = {m_name, nullptr};
    QTemporaryDir m_folder;
    QCoreApplication m_application{m_argumentCount, m_arguments};
};
