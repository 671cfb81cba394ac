#pragma once

#include "devicebehaviour.h"
#include "simulateddevice.h"
#include <suite/service/walldocument.h>

#include <condition_variable>
#include <mutex>
#include <queue>
#include <random>
#include <thread>

namespace Simulator {

/// A wall of simulated devices behind the action library. Requests are served on a worker thread, each device one after
/// the other with its latency and its faults. All functions may be called from any thread.
class SimulatedWall : public Action::Transport, public Action::CabinetReader
{
public:
    /// Builds the wall with the behaviours that the document's "simulation" members give. On failure gives null and
    /// says in `error` which device and member is wrong. Equal seeds and equal requests per device give equal faults.
    static std::shared_ptr<SimulatedWall> create(const Service::Wall& wall, unsigned int seed, QString& error);

    ~SimulatedWall() override;

    void send(const Action::Request& request, const Action::Responder& responder) override;

    /// Replaces the behaviour of a device; nothing happens for an unknown one.
    void setBehaviour(const std::string& deviceId, const DeviceBehaviour& behaviour);

    /// What a cabinet holds; nothing for an unknown one.
    std::optional<CabinetState> cabinet(const std::string& deviceId, unsigned long long cid) const override;

private:
    using Clock = std::chrono::steady_clock;

    struct Device
    {
        SimulatedDevice device;
        DeviceBehaviour behaviour;
        std::minstd_rand random; ///< a few bytes: a wall may have very many devices
        Clock::time_point freeAt;
    };

    /// A request on its way to its device, with a copy of what it carries.
    struct Job
    {
        Clock::time_point due;
        std::uint64_t number; ///< requests due at one moment are served as they came
        Action::Request::Method method;
        std::string action;
        std::string deviceId;
        Parameters parameters;
        Action::Responder responder;
        Fault fault;

        bool operator<(const Job& other) const { return std::tie(due, number) > std::tie(other.due, other.number); }
    };

    SimulatedWall() = default;
    void run();
    void serve(Job job);
    Outcome execute(const Job& job);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::unordered_map<std::string, Device> m_devices;
    std::priority_queue<Job> m_jobs;
    std::uint64_t m_lastJob = 0;
    bool m_isStopping = false;
    std::thread m_worker;
};

} // namespace Simulator
