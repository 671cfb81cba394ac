#include "spdlogapplication.h"

#include <spdlog/sinks/dist_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

namespace Xc {

namespace {

using SharedSinks = spdlog::sinks::dist_sink_mt;

} // namespace

// The sinks stand behind one that locks, because a logger's own list of sinks may not change while others log.
SpdlogBase::SpdlogBase(const std::string& name)
    : m_logger(std::make_shared<spdlog::logger>(name, std::make_shared<SharedSinks>()))
{}

SpdlogBase::~SpdlogBase() = default;

SpdlogApplication::SpdlogApplication() : SpdlogBase("suite")
{
    m_logger->set_level(spdlog::level::warn);
    setSinks({std::make_shared<spdlog::sinks::stderr_sink_mt>()});
}

SpdlogApplication& SpdlogApplication::instance()
{
    // Never destroyed: libraries may still log while the process's statics are taken down.
    static auto* application = new SpdlogApplication;
    return *application;
}

void SpdlogApplication::setSinks(std::vector<spdlog::sink_ptr> sinks)
{
    static_cast<SharedSinks&>(*m_logger->sinks().front()).set_sinks(std::move(sinks));
}

} // namespace Xc
