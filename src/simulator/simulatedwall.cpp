#include "simulatedwall.h"

namespace Simulator {

namespace {

/// How much later than its timeout a request with Fault::Late is answered.
constexpr std::chrono::milliseconds lateBy{250}; // more than a busy machine keeps a thread waiting

FaultChance drawFault(const DeviceBehaviour& behaviour, std::minstd_rand& random)
{
    double roll = std::uniform_real_distribution<double>(0.0, 1.0)(random);
    for (const FaultChance& entry : behaviour.faults) {
        if (roll < entry.chance)
            return entry;
        roll -= entry.chance;
    }
    return {};
}

Parameters withoutCids(const Parameters& reply)
{
    Parameters bare;
    bare.insert("mode", reply.get<int>("mode"));
    return bare;
}

void answer(const Action::Responder& responder, const Outcome& outcome)
{
    if (const auto* reply = std::get_if<Parameters>(&outcome))
        responder.reply(*reply);
    else
        responder.fail(std::get<QString>(outcome));
}

} // namespace

std::shared_ptr<SimulatedWall> SimulatedWall::create(const Service::Wall& wall, unsigned int seed, QString& error)
{
    std::shared_ptr<SimulatedWall> result(new SimulatedWall);
    unsigned int index = 0;
    for (const Service::WallDevice& device : wall) {
        const std::string& id = device.entry.device->getBase().getId();
        QString fault;
        const auto behaviour = readBehaviour(device.simulation, fault);
        if (!behaviour) {
            error = QStringLiteral("device \"%1\": simulation.%2").arg(QString::fromStdString(id), fault);
            return nullptr;
        }
        std::seed_seq deviceSeed{seed, index++};
        result->m_devices.emplace(id,
                                  Device{SimulatedDevice(device.entry), *behaviour, std::minstd_rand(deviceSeed), {}});
    }
    result->m_worker = std::thread([wall = result.get()] { wall->run(); });
    return result;
}

SimulatedWall::~SimulatedWall()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_one();
    if (m_worker.joinable())
        m_worker.join();
}

void SimulatedWall::send(const Action::Request& request, const Action::Responder& responder)
{
    std::unique_lock lock(m_mutex);
    const auto found = m_devices.find(request.deviceId);
    if (found == m_devices.end()) {
        lock.unlock();
        responder.fail(QStringLiteral("no device \"%1\" on this wall").arg(QString::fromStdString(request.deviceId)));
        return;
    }
    Device& device = found->second;
    const FaultChance fault = drawFault(device.behaviour, device.random);
    const auto now = Clock::now();
    device.freeAt = std::max(device.freeAt, now) + device.behaviour.latency;
    auto due = device.freeAt;
    if (fault.fault == Fault::Slow)
        due += fault.delay;
    else if (fault.fault == Fault::Late)
        due = std::max(due, now + request.timeout + lateBy);
    m_jobs.push({due, ++m_lastJob, request.method, request.action, request.deviceId, request.parameters, responder,
                 fault.fault});
    lock.unlock();
    m_changed.notify_one();
}

void SimulatedWall::run()
{
    std::unique_lock lock(m_mutex);
    while (!m_isStopping) {
        if (m_jobs.empty()) {
            m_changed.wait(lock);
        } else if (const auto due = m_jobs.top().due; Clock::now() < due) {
            m_changed.wait_until(lock, due);
        } else {
            Job job = m_jobs.top();
            m_jobs.pop();
            lock.unlock();
            serve(std::move(job));
            lock.lock();
        }
    }
}

Outcome SimulatedWall::execute(const Job& job)
{
    const std::lock_guard lock(m_mutex);
    Device& device = m_devices.at(job.deviceId);
    if (job.fault == Fault::Error)
        return QStringLiteral("device \"%1\" reports an error (simulated)").arg(QString::fromStdString(job.deviceId));
    const auto takesPart = [isPartial = job.fault == Fault::Partial, index = 0](unsigned long long) mutable {
        return !isPartial || index++ % 2 == 0;
    };
    return device.device.execute(job.method, job.action, job.parameters, takesPart);
}

void SimulatedWall::serve(Job job)
{
    const Outcome outcome = execute(job);
    const auto* reply = std::get_if<Parameters>(&outcome);
    switch (job.fault) {
    case Fault::Silence:
        break;
    case Fault::DoubleAnswer:
        answer(job.responder, outcome);
        answer(job.responder, outcome);
        break;
    case Fault::NoCids:
        answer(job.responder, reply ? withoutCids(*reply) : outcome);
        break;
    case Fault::OtherThread:
        std::thread([&] { answer(job.responder, outcome); }).join();
        break;
    default:
        answer(job.responder, outcome);
    }
}

void SimulatedWall::setBehaviour(const std::string& deviceId, const DeviceBehaviour& behaviour)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_devices.find(deviceId);
    if (found != m_devices.end())
        found->second.behaviour = behaviour;
}

std::optional<CabinetState> SimulatedWall::cabinet(const std::string& deviceId, unsigned long long cid) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_devices.find(deviceId);
    return found == m_devices.end() ? std::nullopt : found->second.device.cabinet(cid);
}

} // namespace Simulator
