#pragma once

#include <QByteArray>

/// A wall document of devices a, b and c, each with cabinet 1 in mode 3 and cabinet 2 in mode 4, and with the
/// behaviours ("simulation") of b and of the others.
inline QByteArray wallDocument(const QByteArray& b, const QByteArray& others = R"({"latencyMs": 0})")
{
    QByteArray devices;
    for (const QByteArray id : {"a", "b", "c"})
        devices += (devices.isEmpty() ? "" : ", ") + (R"({"id": ")" + id + R"(", "type": "G4", "simulation": )") +
                   (id == "b" ? b : others) +
                   R"(, "cabinets": [{"cid": 1, "effectMode": 3}, {"cid": 2, "effectMode": 4}]})";
    return "{\"devices\": [" + devices + "]}";
}

/// The behaviour of a device that always fails so: "error", "silence", "partial".
inline QByteArray failingBy(const QByteArray& kind)
{
    return R"({"latencyMs": 0, "faults": [{"kind": ")" + kind + "\"}]}";
}
