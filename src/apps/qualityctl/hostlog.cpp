#include "hostlog.h"

#include <suite/logging/spdlogapplication.h>

#include <spdlog/sinks/base_sink.h>

#include <QString>

#include <cstdio>
#include <mutex>

namespace {

bool s_isQuiet = false;

void writeLine(const char* text, size_t size)
{
    if (!s_isQuiet)
        std::fprintf(stderr, "log: %.*s\n", static_cast<int>(size), text);
}

void qtMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    if (type != QtDebugMsg && type != QtInfoMsg)
        writeLine(utf8.constData(), static_cast<size_t>(utf8.size()));
}

class HostSink : public spdlog::sinks::base_sink<std::mutex>
{
protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        writeLine(message.payload.data(), message.payload.size());
    }
    void flush_() override {}
};

} // namespace

void HostLog::install(bool quiet)
{
    s_isQuiet = quiet;
    qInstallMessageHandler(qtMessage);
    Xc::SpdlogApplication::instance().setSinks({std::make_shared<HostSink>()});
}
