#include "cabinetsender3th.h"

#include "decimaltext_p.h"
#include <qualityutility/support/gamutpoints_p.h>
#include <qualityutility/support/publishedinstance_p.h>

#include <QDebug>
#include <QJsonDocument>

namespace CabinetSenderSpace {

namespace {

enum Command { GetFineGray = 17, SetNicc = 23, SetMeasure = 25, SetGrayTable = 55 };

QMutex s_createMutex;

/// What create() and getInstance() give: what third-generation cabinets cannot do fails with a line that names it.
class ReadySender : public CabinetSender3th
{
public:
    int getCorrectEffectMode(const std::string&, unsigned long long, int&) override
    {
        return refuse("getCorrectEffectMode");
    }
    int setCorrectEffectMode(const CabinetTargetMap&, int, bool) override { return refuse("setCorrectEffectMode"); }
    int gamutCorrectEffectMode(const CabinetTargetMap&, bool, bool) override
    {
        return refuse("gamutCorrectEffectMode");
    }
    int sendRvcardBin(const CabinetTargetMap&, const QString&) override { return refuse("sendRvcardBin"); }

private:
    static int refuse(const char* operation)
    {
        qCritical() << "third-generation cabinets have no operation" << operation;
        return ResultNotDelivered;
    }
};

/// The reply's root object, and how parsing it went; only the bytes before the first zero count.
QJsonDocument parse(const QByteArray& reply, QJsonParseError& error)
{
    // By size too: a reply made of raw data ends without a zero.
    const auto length = static_cast<int>(qstrnlen(reply.constData(), static_cast<uint>(reply.size())));
    return QJsonDocument::fromJson(reply.left(length), &error);
}

/// What is wrong with a reply.
HubFailure judge(const QByteArray& reply, QJsonParseError& error)
{
    const QJsonValue code = parse(reply, error).object().value(QLatin1String("error"));
    if (error.error != QJsonParseError::NoError || code.isUndefined())
        return {HubFailure::Kind::NotUnderstood};
    const double number = code.toDouble(); // toInt() would give 0 for what no int holds
    return number == 0.0 ? HubFailure() : HubFailure{HubFailure::Kind::Refused, number};
}

QByteArray commandText(const QJsonObject& command)
{
    return QJsonDocument(command).toJson(QJsonDocument::Indented);
}

QJsonObject pointsOf(const Model::ColorGamutInfo& info, CabinetSender3th& sender)
{
    QJsonObject points;
    for (const Support::GamutPoint& entry : Support::gamutPoints)
        points.insert(QLatin1String(entry.key), sender.getLXYOb(info.*entry.point));
    return points;
}

} // namespace

std::atomic<CabinetSender3th*> CabinetSender3th::m_instance{nullptr};

CabinetSender3th::CabinetSender3th(QObject* parent) : CabinetSenderBase(parent) {}

CabinetSender3th::~CabinetSender3th()
{
    const QMutexLocker lock(&m_mutex);
    if (m_session && m_session->isConnected())
        delete m_session;
}

CabinetSender3th* CabinetSender3th::getInstance()
{
    return Support::publishedInstance(m_instance, s_createMutex, [] { return create().release(); });
}

std::unique_ptr<CabinetSender3th> CabinetSender3th::create()
{
    return std::make_unique<ReadySender>();
}

void CabinetSender3th::releaseInstance()
{
    Support::releasePublishedInstance(m_instance);
}

void CabinetSender3th::attachSession(ClientSession* session)
{
    m_session = session;
}

int CabinetSender3th::sendData(const QByteArray& request, QByteArray& reply, bool waitWithoutLimit)
{
    // The session too would refuse it, but what is asked and noted around that belongs to the call that waits.
    if (m_isBusy.exchange(true)) {
        qCritical() << "another operation is waiting for its reply";
        return ResultNotDelivered;
    }
    const int result = exchange(request, reply, waitWithoutLimit);
    m_isBusy = false;
    return result;
}

int CabinetSender3th::exchange(const QByteArray& request, QByteArray& reply, bool waitWithoutLimit)
{
    if (!m_session) {
        reply.clear(); // which then fails, whatever an earlier call has left there
    } else if (!m_session->sendToServerSync(request, reply, waitWithoutLimit)) {
        qCritical() << "send to server error!";
        const bool isLate = m_session->ending() == ClientSession::Ending::TimeOver;
        m_lastFailure = {isLate ? HubFailure::Kind::NoReply : HubFailure::Kind::NotConnected};
        return ResultNotDelivered;
    }
    QJsonParseError error;
    m_lastFailure = m_session ? judge(reply, error) : HubFailure{HubFailure::Kind::NotConnected};
    return judgeResult(reply) ? ResultSuccess : ResultNotDelivered;
}

bool CabinetSender3th::judgeResult(const QByteArray& reply)
{
    QJsonParseError error;
    const HubFailure failure = judge(reply, error);
    if (failure.kind == HubFailure::Kind::NotUnderstood)
        qCritical() << "result parse failed!" << reply << "jsonError.error" << error.error;
    else if (failure.kind == HubFailure::Kind::Refused)
        qCritical() << "result error!"
                    << "resultCode" << qUtf8Printable(QString::number(failure.number, 'g', 17));
    return failure.kind == HubFailure::Kind::None;
}

QJsonObject CabinetSender3th::getLXYOb(const Model::LXY& point)
{
    return {{QStringLiteral("lum"), point.lum}, {QStringLiteral("cx"), point.x}, {QStringLiteral("cy"), point.y}};
}

int CabinetSender3th::sendCommand(int number, const QJsonObject& data)
{
    QByteArray reply;
    return sendData(commandText({{QStringLiteral("cmd"), number}, {QStringLiteral("data"), data}}), reply, false);
}

int CabinetSender3th::getFineGrayConfig(const std::string&, unsigned long long, int& grayScaleSeries,
                                        int& chipEffectFlag)
{
    QByteArray reply;
    const int result = sendData(commandText({{QStringLiteral("cmd"), GetFineGray}}), reply, false);
    if (result != ResultSuccess)
        return result;
    QJsonParseError error;
    const QJsonObject data = parse(reply, error).object().value(QLatin1String("data")).toObject();
    const QJsonValue level = data.value(QLatin1String("level"));
    const QJsonValue mode = data.value(QLatin1String("mode"));
    if (!level.isUndefined())
        grayScaleSeries = level.toInt();
    if (!mode.isUndefined())
        chipEffectFlag = mode.toInt();
    return ResultSuccess;
}

int CabinetSender3th::setGrayScaleTable(const CabinetTargetMap&, const QList<unsigned char>& rGrayCoeffs,
                                        const QList<unsigned char>& gGrayCoeffs,
                                        const QList<unsigned char>& bGrayCoeffs, const QList<unsigned char>& magnitude,
                                        int)
{
    return sendCommand(SetGrayTable, {{QStringLiteral("rGrayCoeffs"), listToString(rGrayCoeffs)},
                                      {QStringLiteral("gGrayCoeffs"), listToString(gGrayCoeffs)},
                                      {QStringLiteral("bGrayCoeffs"), listToString(bGrayCoeffs)},
                                      {QStringLiteral("magnitude"), listToString(magnitude)}});
}

int CabinetSender3th::uploadNiccData(const CabinetTargetMap&, const Model::ColorGamutInfo& info)
{
    QJsonObject data = pointsOf(info, *this);
    data.insert(QStringLiteral("name"), QString::fromStdString(info.name));
    return sendCommand(SetNicc, data);
}

int CabinetSender3th::setColorManageMode(const CabinetTargetMap&, const Model::ColorGamutInfo&)
{
    return ResultSuccess;
}

int CabinetSender3th::uploadNiccMeasure(const CabinetTargetMap&, const Model::ColorGamutInfo& info)
{
    return sendCommand(SetMeasure, pointsOf(info, *this));
}

} // namespace CabinetSenderSpace
