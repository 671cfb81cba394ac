#pragma once

#include <qualityutility/tool/sender3th/clientsession.h>
#include <qualityutility/tool/sender4th/cabinetsenderbase.h>
#include <suite/model/lxy.h>

#include <QJsonObject>
#include <QMutex>
#include <QPointer>

#include <atomic>
#include <memory>

namespace CabinetSenderSpace {

/// Why an operation of the third generation failed.
struct HubFailure
{
    /// Where on the way to the hub and back.
    enum class Kind {
        None,          ///< it did not
        NotConnected,  ///< there was no session or no connection, or it was lost before a reply came
        NoReply,       ///< none came in the session's time
        NotUnderstood, ///< the reply is no JSON object with an "error"
        Refused,       ///< the hub answered with an error number
    };

    Kind kind = Kind::None; ///< of the last exchange with the hub
    double number = 0.0;    ///< Refused: the error number
};

/// Sends to third-generation cabinets: each operation becomes one numbered JSON command to the message hub, which
/// serves whatever cabinets it has. Targets, device and cabinet identifiers and the frequency are accepted and ignored.
/// Results are 0 or ResultNotDelivered (105) for every failure: no session, no delivery, no reply in time, a reply that
/// is not understood, or an error number in it; lastFailure() and the log say which.
///
/// The other four operations of the interface are not implemented here. create() and getInstance() give a ready sender
/// in which they fail. The local model is left as it is.
///
/// Each operation blocks its thread until the session's wait is over. One at a time: a second one meanwhile, also from
/// another thread, fails with a critical line and changes nothing. All else belongs to the thread that runs the
/// operations, which is the one that made the session.
///
/// For several hubs, or to wait beside a window, a thread makes a session and a sender of its own, uses them and
/// destroys them; Qt need not have started it, and needs no event loop there. Any number of such threads may be at work
/// at once, beside the process's sender too: they share nothing but the log.
///
/// An attached session stays its owner's, who may delete it between calls; but a sender that is destroyed deletes a
/// session that is then connected, and leaves one that is not. (That asymmetry is relied on: a connected session is
/// handed over with the sender.)
class QUALITYUTILITY_EXPORT CabinetSender3th : public CabinetSenderBase
{
    Q_OBJECT

public:
    /// Without a session. The four operations that are not implemented here stay abstract: create() has them.
    explicit CabinetSender3th(QObject* parent = nullptr);
    /// Deletes an attached session that is connected.
    ~CabinetSender3th() override;

    /// A ready sender of the caller's own, without a session. Any thread; the process's sender is left alone.
    static std::unique_ptr<CabinetSender3th> create();
    /// The process's ready sender, made at the first call by any thread, without a session.
    static CabinetSender3th* getInstance();
    /// Deletes it, as the destructor says; the next getInstance() makes a new one.
    static void releaseInstance();

    /// From now on, and not while an operation waits, commands go through `session`; null detaches. An earlier session
    /// is left alone.
    void attachSession(ClientSession* session);

    int getFineGrayConfig(const std::string& deviceId, unsigned long long cid, int& grayScaleSeries,
                          int& chipEffectFlag) override;
    int setGrayScaleTable(const CabinetTargetMap& targets, const QList<unsigned char>& rGrayCoeffs,
                          const QList<unsigned char>& gGrayCoeffs, const QList<unsigned char>& bGrayCoeffs,
                          const QList<unsigned char>& magnitude, int freq) override;
    int uploadNiccData(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) override;
    /// Sends nothing and returns 0: the hub corrects from the gamuts.
    int setColorManageMode(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) override;
    int uploadNiccMeasure(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) override;

    /// Sends request bytes and checks the reply. 0 or 105. `reply` is emptied without a session, and stays as it was
    /// when the session fails or another operation waits.
    int sendData(const QByteArray& request, QByteArray& reply, bool waitWithoutLimit);
    /// Whether a reply is a JSON object whose "error" is 0; a value that is not a number counts as 0. Any other number
    /// is an error, also 0.5 or one that no int holds.
    bool judgeResult(const QByteArray& reply);
    /// Why the last sendData(), and so the last operation, failed; one that was refused because another waited is not
    /// told. For the thread that runs the operations, between them.
    const HubFailure& lastFailure() const { return m_lastFailure; }
    /// The point on the wire: {"lum", "cx", "cy"}, cd/m2 and CIE 1931 xy as given. The name is left out.
    QJsonObject getLXYOb(const Model::LXY& point);

private:
    int exchange(const QByteArray& request, QByteArray& reply, bool waitWithoutLimit);
    int sendCommand(int number, const QJsonObject& data);

    QPointer<ClientSession> m_session;
    QMutex m_mutex; ///< held by the destructor
    HubFailure m_lastFailure;
    std::atomic<bool> m_isBusy{false};
    static std::atomic<CabinetSender3th*> m_instance;
};

} // namespace CabinetSenderSpace
