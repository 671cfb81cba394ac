#pragma once

#include <suite/logging/suite_logging_export.h>

#include <spdlog/logger.h>

#include <memory>
#include <vector>

/// The log of the suite's libraries.
namespace Xc {

/// Owner of one spdlog logger, which is not entered into spdlog's own registry, so neither the process's default logger
/// nor a logger of the same name is touched.
class SUITE_LOGGING_EXPORT SpdlogBase
{
public:
    /// A logger of this name without sinks, which drops everything until an heir gives it some.
    explicit SpdlogBase(const std::string& name);
    /// Lets go of the logger; who has copied its pointer keeps it.
    virtual ~SpdlogBase();
    SpdlogBase(const SpdlogBase&) = delete;
    SpdlogBase& operator=(const SpdlogBase&) = delete;

    /// The logger, never null. Its calls are thread-safe and do not throw; its level is the host's to set.
    const std::shared_ptr<spdlog::logger>& logger() const { return m_logger; }

protected:
    std::shared_ptr<spdlog::logger> m_logger; ///< for heirs; its first sink hands on to the others, locked
};

/// The logger that the suite's libraries share in a process, named "suite". Until the host gives its own sinks,
/// warnings and errors go to stderr and everything below is dropped.
class SUITE_LOGGING_EXPORT SpdlogApplication : public SpdlogBase
{
public:
    /// The process's instance; created on first use, by any thread.
    static SpdlogApplication& instance();

    /// Replaces all sinks; none at all silences the logger. Sinks must be of spdlog's thread-safe (`_mt`) kind. May be
    /// called by any thread, while others log.
    void setSinks(std::vector<spdlog::sink_ptr> sinks);

private:
    SpdlogApplication();
};

} // namespace Xc
