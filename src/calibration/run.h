#pragma once

#include <calibration/destination.h>
#include <calibration/figures.h>
#include <calibration/folder.h>
#include <calibration/serving.h>
#include <calibration/verification.h>

namespace Calibration {

/// How a calibration begins in its folder.
struct RunOptions
{
    bool resume = false; ///< go on with the calibration that was begun there
    bool force = false;  ///< begin anew and replace what is there
    QStringList uses;    ///< files that were read: none of them may be written
    QStringList outputs; ///< what the host will write beside the documents
    Acceptance acceptance = {};
    int atOnce = defaultAtOnce; ///< devices served at the same time, 1..maxAtOnce; 1: one after the other
};

/// What a calibration comes to, in the order of its devices.
struct RunResult
{
    QString destination; ///< the wall's or hub's name
    Figures figures;
    std::vector<DeviceRecord> records;
    QStringList resumed; ///< devices that an earlier run had served
    QStringList files;   ///< written, with their paths
    bool isStopped = false;
    Verification verification; ///< of what the devices hold

    bool isDone() const;
    /// Those of all devices.
    std::vector<Outcome> outcomes() const;
    /// What it amounts to; nothing where the verdict is that it passed.
    std::optional<Fault> fault() const;
};

/// What a calibration is made from, as far as a resumed one must agree with it: digests and values by name.
QJsonObject inputsOf(const Content& content, const Destination& destination);

/// Sends everything to every device of a destination that the folder's journal does not have done, and writes documents
/// and journal. Devices are served as serveDevices() says: several at once, where the observer and the journal are
/// this thread's. Asked to stop, it finishes the running devices. Blocks until then; journal and documents are begun
/// when the first device is reached, before anything is sent. `inputs` are inputsOf() with what the host adds;
/// "simulated" among them says whether the devices are. Faults: before anything is sent, usage, cannot create, bad data
/// (a resume with other inputs), input/output, and unavailable where a new run can reach no device, which leaves what
/// an earlier one has made. Any other device that fails is no fault but a record.
///
/// The local model's records of a device are used on the thread that serves it meanwhile: observers of theirs run
/// there, and whoever reads them elsewhere waits for the end, or serves one device after the other.
Common::Result<RunResult> run(const Content& content, const Figures& figures, Destination& destination,
                              const QJsonObject& inputs, const Folder& folder, const RunOptions& options,
                              Observer& observer);

} // namespace Calibration
