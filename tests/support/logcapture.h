#pragma once

#include <spdlog/common.h>

#include <QStringList>

/// Catches both logs while it lives, in the order in which lines were written: Qt's, and the suite's spdlog logger at
/// every level. One at a time. Lines may come from any thread.
class LogCapture
{
public:
    struct Line
    {
        QString text;
        QtMsgType qtType;                ///< of a Qt line
        QString category;                ///< of a Qt line; empty marks an spdlog line
        spdlog::level::level_enum level; ///< of an spdlog line
        QString file;                    ///< source location of an spdlog line
        QString function;
    };

    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Everything since the last call.
    QList<Line> takeLines();
    /// As short texts such as "critical default: put error!!!" and "spdlog error: setGrayScaleTable error:x", without
    /// the trace lines.
    QStringList take();
};
