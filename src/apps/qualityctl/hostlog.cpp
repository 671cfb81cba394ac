#include "hostlog.h"

#include <spdlog/sinks/base_sink.h>
#include <suite/logging/spdlogapplication.h>

#include <cstdio>
#include <mutex>

namespace {

bool s_isQuiet = false;
QString s_criticalLine;

void writeLine(const char* text, size_t size)
{
    if (!s_isQuiet)
        std::fprintf(stderr, "log: %.*s\n", static_cast<int>(size), text);
}

void qtMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtCriticalMsg)
        s_criticalLine = text;
    const QByteArray utf8 = text.toUtf8();
    if (type != QtDebugMsg && type != QtInfoMsg)
        writeLine(utf8.constData(), static_cast<size_t>(utf8.size()));
}

class ErrorSink : public spdlog::sinks::base_sink<std::mutex>
{
public:
    QString takeErrorText()
    {
        const std::lock_guard lock(mutex_);
        return std::exchange(m_errorText, {});
    }

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        writeLine(message.payload.data(), message.payload.size());
        const std::string payload(message.payload.data(), message.payload.size());
        constexpr char mark[] = " error:";
        const size_t at = payload.find(mark);
        if (message.level == spdlog::level::err && at != std::string::npos)
            m_errorText = QString::fromStdString(payload.substr(at + sizeof(mark) - 1));
    }
    void flush_() override {}

private:
    QString m_errorText;
};

const std::shared_ptr<ErrorSink>& errorSink()
{
    static const auto sink = std::make_shared<ErrorSink>();
    return sink;
}

} // namespace

void HostLog::install(bool quiet)
{
    s_isQuiet = quiet;
    qInstallMessageHandler(qtMessage);
    Xc::SpdlogApplication::instance().setSinks({errorSink()});
}

QString HostLog::takeErrorText()
{
    return errorSink()->takeErrorText();
}

QString HostLog::takeCriticalLine()
{
    return std::exchange(s_criticalLine, {});
}
