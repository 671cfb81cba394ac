#include "outcomerecorder_p.h"
#include "sendloop_p.h"
#include <suite/action/action.h>
#include <suite/logging/spdlogapplication.h>

#include <QDebug>

#include <exception>

namespace CabinetSenderSpace {

namespace {

void send(const DeviceAction& action, const std::string& deviceId, const std::shared_ptr<ActionAnswer>& answer)
{
    const auto onResult = [answer](Parameters values, std::string from) {
        answer->give(ActionAnswer::Reply{std::move(values), std::move(from)});
    };
    const auto onError = [answer](const QString& text) { answer->give(ActionAnswer::Error{text}); };
    constexpr bool acknowledged = true;
    constexpr auto priority = static_cast<PackagePriority>(0);
    if (action.method == DeviceAction::Method::Post)
        Action::post(action.name, deviceId, action.parameters, onResult, onError, {}, acknowledged, priority);
    else
        Action::put(action.name, deviceId, action.parameters, onResult, onError, acknowledged, priority);
}

/// The cabinets that a reply names, without the line that Parameters writes where it names none.
CabinetList confirmedBy(const ActionAnswer::Reply& reply)
{
    const auto* cids = reply.values.arguments().find<CabinetList>("cids");
    return cids ? *cids : CabinetList();
}

void fail(const Operation& operation, const QString& text, DeviceOutcome& outcome)
{
    reportError(operation, text);
    outcome.kind = DeviceOutcome::Kind::Failed;
    outcome.error = text;
}

/// Records an answer: in the local model, or in the logs.
void applyAnswer(const Operation& operation, const CabinetList& cids, const ActionAnswer::Content& content,
                 DeviceOutcome& outcome)
{
    if (const auto* error = std::get_if<ActionAnswer::Error>(&content))
        return fail(operation, error->text, outcome);
    const auto& reply = std::get<ActionAnswer::Reply>(content);
    try {
        if (operation.applyReply)
            operation.applyReply(reply, cids);
        outcome.confirmed = confirmedBy(reply);
        outcome.kind = DeviceOutcome::Kind::Confirmed;
    } catch (...) { // by an observer of the model
        fail(operation, thrownText(), outcome);
    }
}

DeviceOutcome sendToDevice(const Operation& operation, const std::string& deviceId, const CabinetList& cids)
{
    DeviceOutcome outcome{deviceId, DeviceOutcome::Kind::Unanswered, {}, {}};
    // Before the request: a thread that Qt did not start has no timers until its first loop, and no timeout ends.
    QEventLoop loop;
    const auto answer = std::make_shared<ActionAnswer>(
        [&](const ActionAnswer::Content& content) { applyAnswer(operation, cids, content, outcome); });
    std::optional<DeviceAction> action; // lives until the answer: an action library may refer to its parameters
    try {
        action = operation.buildAction(deviceId, cids);
        if (!action) {
            outcome.kind = DeviceOutcome::Kind::Skipped;
            return outcome;
        }
        send(*action, deviceId, answer);
    } catch (...) {
        answer->give(ActionAnswer::Error{thrownText()});
    }
    answer->wait(loop);
    return outcome;
}

int resultOf(DeviceOutcome::Kind kind)
{
    switch (kind) {
    case DeviceOutcome::Kind::Confirmed:
        return ResultSuccess;
    case DeviceOutcome::Kind::Failed:
        return ResultActionError;
    case DeviceOutcome::Kind::Skipped:
    case DeviceOutcome::Kind::Unanswered:
        break;
    }
    return ResultSkipped;
}

} // namespace

int reportError(const Operation& operation, const QString& text)
{
    if (operation.logsPutError)
        qCritical() << "put error!!!";
    Xc::SpdlogApplication::instance().logger()->error(fmt::runtime(operation.errorFormat), text.toStdString());
    return ResultActionError;
}

QString thrownText()
{
    try {
        throw;
    } catch (const std::exception& fault) {
        return QString::fromUtf8(fault.what());
    } catch (...) {
        return QStringLiteral("unknown exception");
    }
}

int sendToEachDevice(const CabinetTargetMap& targets, const Operation& operation)
{
    OutcomeRecorder recorder;
    int result = ResultSkipped;
    // A copy: what runs during a wait may change the caller's map, and the model is told what was sent.
    for (const auto& [deviceId, cids] : CabinetTargetMap(targets)) {
        DeviceOutcome outcome = sendToDevice(operation, deviceId, cids);
        result = resultOf(outcome.kind);
        recorder.record(std::move(outcome));
    }
    return result;
}

} // namespace CabinetSenderSpace
