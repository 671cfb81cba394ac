#pragma once

#include <array>
#include <atomic>
#include <set>
#include <thread>
#include <vector>

/// What sixteen threads get that call `getInstance` at the same moment.
template <typename GetInstance>
auto threadedInstances(const GetInstance& getInstance)
{
    std::atomic<bool> go{false};
    std::array<decltype(getInstance()), 16> found{};
    std::vector<std::thread> threads;
    for (auto& slot : found) {
        threads.emplace_back([&] {
            while (!go)
                std::this_thread::yield();
            slot = getInstance();
        });
    }
    go = true;
    for (std::thread& thread : threads)
        thread.join();
    return std::set(found.begin(), found.end());
}
