#pragma once

#include "actionanswer_p.h"
#include <qualityutility/tool/sender4th/cabinetsenderbase.h>

#include <functional>
#include <optional>

namespace CabinetSenderSpace {

using CabinetList = std::vector<unsigned long long>;

/// One device action, ready to be sent.
struct DeviceAction
{
    enum class Method { Put, Post };

    const char* name;
    Parameters parameters;
    Method method = Method::Put;
};

/// What tells one operation from another.
struct Operation
{
    const char* errorFormat;
    /// Builds the action for one device; none skips the device.
    std::function<std::optional<DeviceAction>(const std::string& deviceId, const CabinetList& cids)> buildAction =
        nullptr;
    /// Records what the reply means for the local model; empty when it means nothing.
    std::function<void(const ActionAnswer::Reply& reply, const CabinetList& sentCids)> applyReply = nullptr;
    bool logsPutError = true;
};

/// Writes an operation's error lines. Gives ResultActionError.
int reportError(const Operation& operation, const QString& text);

/// What is being thrown, for a log line. In a catch block only.
QString thrownText();

/// The one loop of all sending operations: serves the devices one after the other, whatever became of those before.
/// Blocks until each has answered; gives the last one's result.
int sendToEachDevice(const CabinetTargetMap& targets, const Operation& operation);

} // namespace CabinetSenderSpace
