#include "message.h"

#include "wirereader_p.h"
#include "wirewriter_p.h"

#include <array>
#include <unordered_map>

namespace Gateway {

namespace {

using Common::Fault;
using Common::Result;

constexpr std::array<const char*, 4> methodNames{"put", "post", "read", "list"}; ///< in the order of Call::Method
constexpr qint64 maxTimeoutMs = std::numeric_limits<int>::max();

Result<QByteArray> finish(WireWriter& writer)
{
    QByteArray frame = writer.take();
    if (writer.fault().isEmpty())
        return frame;
    return Fault{Fault::Kind::BadData, QStringLiteral("message to a gateway"), {}, writer.fault()};
}

/// What a call carries, wherever its parts are kept.
struct CallView
{
    quint64 id;
    Call::Method method;
    const std::string& action;
    const std::string& device;
    const Parameters& parameters;
    const QMap<QString, QString>& headers;
    bool isAcknowledged;
    PackagePriority priority;
    std::chrono::milliseconds timeout;
};

void writeParameters(WireWriter& writer, const char* name, const Parameters& parameters)
{
    writer.key(name);
    writer.map(parameters.arguments());
    writer.key("options");
    writer.map(parameters.options());
    writer.key("attributes");
    writer.map(parameters.attributes());
}

Result<QByteArray> write(const CallView& call)
{
    ParameterMap headers;
    for (auto it = call.headers.begin(); it != call.headers.end(); ++it)
        headers.insert(it.key().toStdString(), it.value().toStdString());
    WireWriter writer(11);
    writer.key("id");
    writer.integer(static_cast<qint64>(call.id));
    writer.key("method");
    writer.text(methodNames.at(static_cast<std::size_t>(call.method)));
    writer.key("action");
    writer.text(call.action);
    writer.key("device");
    writer.text(call.device);
    writeParameters(writer, "arguments", call.parameters);
    writer.key("headers");
    writer.map(headers);
    writer.key("acknowledged");
    writer.flag(call.isAcknowledged);
    writer.key("priority");
    writer.integer(static_cast<qint64>(call.priority));
    writer.key("timeout_ms");
    writer.integer(call.timeout.count());
    return finish(writer);
}

/// A message while it is read: which kind it is shows at its end.
class MessageReader
{
public:
    explicit MessageReader(const QByteArray& payload) : m_reader(payload) {}

    Result<Message> read()
    {
        m_reader.map([this](const std::string& key) {
            const auto found = members().find(key);
            if (found != members().end())
                found->second(*this);
            else
                m_reader.skip();
        });
        const QString fault = m_reader.fault();
        if (!fault.isEmpty())
            return faultOf(fault);
        Message message = m_hello;
        if (m_isHello)
            return message;
        if (m_isReply || !m_error.empty()) {
            fill(message.emplace<Return>());
            return message;
        }
        if (m_method.empty())
            return faultOf(QStringLiteral("neither hello nor call nor answer"));
        return toCall();
    }

private:
    using Member = void (*)(MessageReader&);
    static const std::unordered_map<std::string, Member>& members();

    static Fault faultOf(const QString& found)
    {
        return {Fault::Kind::Protocol, QStringLiteral("message of a gateway"), {}, found};
    }

    void fill(Return& answer)
    {
        answer.id = m_call.id;
        if (m_isReply)
            answer.content = std::move(m_call.parameters);
        else
            answer.content = QString::fromStdString(m_error);
    }

    Result<Message> toCall()
    {
        const auto found = std::find(methodNames.begin(), methodNames.end(), m_method);
        if (found == methodNames.end())
            return faultOf(QStringLiteral("unknown method \"%1\"").arg(QString::fromStdString(m_method)));
        m_call.method = static_cast<Call::Method>(found - methodNames.begin());
        return Message(std::move(m_call));
    }

    void readHeaders()
    {
        m_reader.map([this](const std::string& key) {
            m_call.headers.insert(QString::fromStdString(key), QString::fromStdString(m_reader.text()));
        });
    }

    WireReader m_reader;
    Hello m_hello;
    Call m_call;
    std::string m_method;
    std::string m_error;
    bool m_isHello = false;
    bool m_isReply = false;
};

const std::unordered_map<std::string, MessageReader::Member>& MessageReader::members()
{
    using This = MessageReader;
    static const std::unordered_map<std::string, Member> table{
        {"hello",
         [](This& m) {
             m.m_isHello = true;
             m.m_hello.protocol = static_cast<int>(m.m_reader.integer(1, std::numeric_limits<int>::max()));
         }},
        {"simulated", [](This& m) { m.m_hello.isSimulated = m.m_reader.flag(); }},
        {"reads", [](This& m) { m.m_hello.isReadable = m.m_reader.flag(); }},
        {"id", [](This& m) { m.m_call.id = static_cast<quint64>(m.m_reader.integer(0)); }},
        {"method", [](This& m) { m.m_method = m.m_reader.text(); }},
        {"action", [](This& m) { m.m_call.action = m.m_reader.text(); }},
        {"device", [](This& m) { m.m_call.device = m.m_reader.text(); }},
        {"arguments", [](This& m) { m.m_reader.map(m.m_call.parameters.arguments()); }},
        {"options", [](This& m) { m.m_reader.map(m.m_call.parameters.options()); }},
        {"attributes", [](This& m) { m.m_reader.map(m.m_call.parameters.attributes()); }},
        {"headers", [](This& m) { m.readHeaders(); }},
        {"acknowledged", [](This& m) { m.m_call.isAcknowledged = m.m_reader.flag(); }},
        {"priority", [](This& m) { m.m_call.priority = static_cast<PackagePriority>(m.m_reader.integer(0, 2)); }},
        {"timeout_ms",
         [](This& m) { m.m_call.timeout = std::chrono::milliseconds(m.m_reader.integer(1, maxTimeoutMs)); }},
        {"reply",
         [](This& m) {
             m.m_isReply = true;
             m.m_reader.map(m.m_call.parameters.arguments());
         }},
        {"error",
         [](This& m) {
             m.m_error = m.m_reader.text();
             if (m.m_error.empty())
                 m.m_error = "an error without a text";
         }},
    };
    return table;
}

} // namespace

QByteArray frameOf(const Hello& hello)
{
    WireWriter writer(3);
    writer.key("hello");
    writer.integer(hello.protocol);
    writer.key("simulated");
    writer.flag(hello.isSimulated);
    writer.key("reads");
    writer.flag(hello.isReadable);
    return writer.take();
}

Result<QByteArray> frameOf(quint64 id, const Action::Request& request)
{
    const bool isPut = request.method == Action::Request::Method::Put;
    return write({id, isPut ? Call::Method::Put : Call::Method::Post, request.action, request.deviceId,
                  request.parameters, request.headers, request.acknowledged, request.priority, request.timeout});
}

Result<QByteArray> frameOf(const Call& call)
{
    return write({call.id, call.method, call.action, call.device, call.parameters, call.headers, call.isAcknowledged,
                  call.priority, call.timeout});
}

Result<QByteArray> frameOf(const Return& answer)
{
    const auto* reply = std::get_if<Parameters>(&answer.content);
    WireWriter writer(reply ? 4 : 2);
    writer.key("id");
    writer.integer(static_cast<qint64>(answer.id));
    if (reply) {
        writeParameters(writer, "reply", *reply);
    } else {
        writer.key("error");
        writer.text(std::get<QString>(answer.content).toStdString());
    }
    return finish(writer);
}

Result<Message> parseMessage(const QByteArray& payload)
{
    return MessageReader(payload).read();
}

} // namespace Gateway
