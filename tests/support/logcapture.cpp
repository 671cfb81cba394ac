#include "support/logcapture.h"

#include <suite/logging/spdlogapplication.h>

#include <spdlog/sinks/base_sink.h>

#include <mutex>

namespace {

std::mutex s_mutex;
QList<LogCapture::Line> s_lines;
QtMessageHandler s_earlierHandler = nullptr;

void keep(const LogCapture::Line& line)
{
    const std::lock_guard lock(s_mutex);
    s_lines.append(line);
}

void onQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    keep({text, type, QString::fromLatin1(context.category), spdlog::level::off, {}, {}});
}

class CaptureSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex>
{
protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        keep({QString::fromUtf8(message.payload.data(), static_cast<int>(message.payload.size())),
              QtDebugMsg,
              {},
              message.level,
              QString::fromLatin1(message.source.filename),
              QString::fromLatin1(message.source.funcname)});
    }
    void flush_() override {}
};

QString nameOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("debug");
    case QtInfoMsg:
        return QStringLiteral("info");
    case QtWarningMsg:
        return QStringLiteral("warning");
    case QtCriticalMsg:
        return QStringLiteral("critical");
    case QtFatalMsg:
        break;
    }
    return QStringLiteral("fatal");
}

} // namespace

LogCapture::LogCapture()
{
    takeLines();
    s_earlierHandler = qInstallMessageHandler(onQtMessage);
    auto& application = Xc::SpdlogApplication::instance();
    application.setSinks({std::make_shared<CaptureSink>()});
    application.logger()->set_level(spdlog::level::trace);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(s_earlierHandler);
    Xc::SpdlogApplication::instance().setSinks({});
}

QList<LogCapture::Line> LogCapture::takeLines()
{
    const std::lock_guard lock(s_mutex);
    return std::exchange(s_lines, {});
}

QStringList LogCapture::take()
{
    QStringList texts;
    for (const Line& line : takeLines()) {
        if (!line.category.isEmpty())
            texts << QStringLiteral("%1 %2: %3").arg(nameOf(line.qtType), line.category, line.text);
        else if (line.level != spdlog::level::trace)
            texts << QStringLiteral("spdlog %1: %2")
                         .arg(QString::fromUtf8(spdlog::level::to_string_view(line.level).data()), line.text);
    }
    return texts;
}
