// Gateway reception: the bytes come in pieces, whose sizes the first bytes give; what is understood comes back the same
// from its own frame.

#include "fuzzing.h"
#include <gateway/cabinetparameters.h>
#include <gateway/frame.h>
#include <gateway/message.h>

#include <cstdlib>

namespace {

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

/// What is read can be written, and is read again.
void writeAgain(const Gateway::Message& message)
{
    Common::Result<QByteArray> frame = QByteArray();
    if (const auto* call = std::get_if<Gateway::Call>(&message))
        frame = frameOf(*call);
    else if (const auto* answer = std::get_if<Gateway::Return>(&message))
        frame = frameOf(*answer);
    else
        frame = frameOf(std::get<Gateway::Hello>(message));
    require(bool(frame));
    const auto again = Gateway::parseMessage(frame->mid(Gateway::headerLength));
    require(again && again->index() == message.index());
    const auto* call = std::get_if<Gateway::Call>(&message);
    if (call)
        Gateway::toCabinet(call->parameters, {});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzzing::instance();
    constexpr std::size_t pieceCount = 4;
    if (size < pieceCount)
        return 0;
    const auto bytes = QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
    Gateway::FrameReader reader;
    int start = pieceCount;
    for (std::size_t piece = 0; start < bytes.size(); ++piece) {
        const int length = 1 + (piece < pieceCount ? data[piece] : bytes.size());
        reader.append(bytes.mid(start, length));
        while (const auto payload = reader.next()) {
            if (const auto message = Gateway::parseMessage(*payload))
                writeAgain(*message);
        }
        start += length;
    }
    if (const auto message = Gateway::parseMessage(bytes.mid(pieceCount)))
        writeAgain(*message);
    return 0;
}
