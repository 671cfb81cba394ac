#pragma once

#include <suite/action/transport.h>
#include <suite/common/result.h>

#include <variant>

namespace Gateway {

/// The version of the protocol that this library speaks.
inline constexpr int protocolVersion = 1;

/// The first message of each side. A client's says only which protocol it speaks.
struct Hello
{
    int protocol = protocolVersion;
    bool isSimulated = false; ///< the devices are
    bool isReadable = false;  ///< what cabinets hold can be asked
};

/// What a client asks.
struct Call
{
    enum class Method {
        Put,  ///< Action::put
        Post, ///< Action::post
        Read, ///< what the cabinets of the argument "cids" hold
        List, ///< the wall document of what is there
    };

    quint64 id = 0; ///< the client's; the answer bears it
    Method method = Method::Put;
    std::string action;    ///< of Put and Post
    std::string device;    ///< of all but List
    Parameters parameters; ///< arguments, options, attributes
    QMap<QString, QString> headers;
    bool isAcknowledged = true;
    PackagePriority priority = PackagePriority::Normal;
    std::chrono::milliseconds timeout{30'000}; ///< what the client waits; 1 or more
};

/// How a call ended.
struct Return
{
    quint64 id = 0;
    std::variant<Parameters, QString> content; ///< the reply, or an error text for people
};

using Message = std::variant<Hello, Call, Return>;

// The frames of messages, header included. Any thread. Fault: bad data, where a value is of a type that does not travel
// or a frame would be too long.

QByteArray frameOf(const Hello& hello);
Common::Result<QByteArray> frameOf(quint64 id, const Action::Request& request);
Common::Result<QByteArray> frameOf(const Call& call);
Common::Result<QByteArray> frameOf(const Return& answer);

/// Reads a frame's payload, whoever it comes from. Members that it does not know are passed over. Fault: protocol, with
/// the place. Any thread.
Common::Result<Message> parseMessage(const QByteArray& payload);

} // namespace Gateway
