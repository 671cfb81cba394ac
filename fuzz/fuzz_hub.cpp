// Hub reception: the bytes come in pieces, whose sizes the first bytes give; replies are then judged.

#include "fuzzing.h"
#include <qualityutility/tool/sender3th/cabinetsender3th.h>
#include <qualityutility/tool/sender3th/hubframe_p.h>

#include <QBuffer>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzzing::instance();
    static CabinetSenderSpace::CabinetSender3th& sender = *CabinetSenderSpace::CabinetSender3th::getInstance();
    constexpr std::size_t pieceCount = 4;
    if (size < pieceCount)
        return 0;
    const auto bytes = QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
    HubFrame::Receiver receiver;
    int start = pieceCount;
    for (std::size_t piece = 0; start < bytes.size(); ++piece) {
        const int length = 1 + (piece < pieceCount ? data[piece] : bytes.size());
        QByteArray content = bytes.mid(start, length);
        QBuffer device(&content);
        device.open(QIODevice::ReadOnly);
        receiver.receive(device, [](const QByteArray& payload) { sender.judgeResult(payload); });
        start += length;
    }
    sender.judgeResult(bytes.mid(pieceCount));
    return 0;
}
