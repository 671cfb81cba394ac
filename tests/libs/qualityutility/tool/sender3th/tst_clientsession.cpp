#include "support/logcapture.h"
#include <qualityutility/tool/sender3th/clientsession.h>
#include <simulator/simulatedhub.h>

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTest>

using CabinetSenderSpace::ClientSession;
using Ending = CabinetSenderSpace::ClientSession::Ending;
using Simulator::HubAnswer;
using Simulator::hubFrame;
using Simulator::SimulatedHub;

namespace {

/// So many pieces of a reply, each on its own.
HubAnswer dripping(const QByteArray& piece, int pieces)
{
    HubAnswer answer;
    for (int i = 0; i < pieces; ++i)
        answer.chunks << piece;
    answer.pauseMs = 2;
    return answer;
}

} // namespace

Q_DECLARE_METATYPE(HubAnswer)

class ClientSessionTest : public QObject
{
    Q_OBJECT

private:
    QStringList criticals() { return m_log->take().filter(QRegularExpression("^critical")); }

    std::unique_ptr<SimulatedHub> m_hub;
    std::unique_ptr<ClientSession> m_session;
    QScopedPointer<LogCapture> m_log;

private Q_SLOTS:
    void init()
    {
        m_log.reset(new LogCapture);
        QString error;
        m_hub = SimulatedHub::start(0, error);
        QVERIFY2(m_hub != nullptr, qPrintable(error));
        m_session = std::make_unique<ClientSession>();
        m_session->setWaits(2000, 5, 60);
        m_session->connectToServer("127.0.0.1", m_hub->port());
        QVERIFY(m_session->isConnected());
    }

    void cleanup()
    {
        m_session.reset();
        m_hub.reset();
        m_log.reset();
    }

    void aLimitInTimeIsNotCountedInLooks()
    {
        m_session->setWaits(2000, 5, 1);
        m_session->setTimeLimit(60000);
        m_hub->setScript([](const QByteArray&, const QByteArray& frame) {
            return HubAnswer{{frame.left(2), frame.mid(2, 3), frame.mid(5)}};
        });
        QByteArray reply;
        QVERIFY(m_session->sendToServerSync("{}", reply, false));
        QCOMPARE(m_session->ending(), Ending::Answered);
        m_hub->setScript([](const QByteArray&, const QByteArray& frame) { return HubAnswer{{frame.left(6)}, true}; });
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!m_session->sendToServerSync("{}", reply, false));
        QCOMPARE(m_session->ending(), Ending::Closed);
        QVERIFY(timer.elapsed() < 30000);
        m_hub->setScript([](const QByteArray&, const QByteArray&) { return HubAnswer(); });
        m_session->disServerConnect();
        m_session->connectToServer("127.0.0.1", m_hub->port());
        m_session->setTimeLimit(20);
        timer.start();
        QVERIFY(!m_session->sendToServerSync("{}", reply, false));
        QCOMPARE(m_session->ending(), Ending::TimeOver);
        QVERIFY(timer.elapsed() >= 20);
    }

    void aWaitWithATimeLimitIsLoggedOnceASecond_data()
    {
        QTest::addColumn<HubAnswer>("answer");
        QTest::newRow("silence") << HubAnswer();
        QTest::newRow("a byte at a time") << dripping("\x01", 1000);
        QTest::newRow("frames without payload") << dripping(QByteArray(4, '\0'), 1000);
        HubAnswer closing = dripping("\x01", 20);
        closing.closes = true;
        QTest::newRow("some bytes and the end") << closing;
    }

    void aWaitWithATimeLimitIsLoggedOnceASecond()
    {
        QFETCH(HubAnswer, answer);
        m_hub->setScript([answer](const QByteArray&, const QByteArray&) { return answer; });
        m_session->setTimeLimit(300);
        m_log->take();
        QElapsedTimer timer;
        timer.start();
        QByteArray reply;
        QVERIFY(!m_session->sendToServerSync("{}", reply, false));
        const auto seconds = static_cast<int>(timer.elapsed() / 1000);
        const QStringList lines = m_log->take();
        const int waits = lines.filter("wait for ").size();
        QVERIFY2(waits >= 1 && waits <= 1 + seconds, qPrintable(lines.join('\n')));
        const int others = answer.closes ? 4 : 3; // sent, failed, received nothing; that the hub has closed
        QVERIFY2(lines.size() <= waits + others, qPrintable(lines.join('\n')));
    }

    void aWaitBoundedByLooksLogsEach()
    {
        m_hub->setScript([](const QByteArray&, const QByteArray&) { return HubAnswer(); });
        m_session->setWaits(2000, 5, 3);
        m_log->take();
        QByteArray reply;
        QVERIFY(!m_session->sendToServerSync("{}", reply, false));
        QCOMPARE(m_log->take().filter("wait for ").size(), 3);
    }

    void aRequestMeanwhileIsRefused()
    {
        bool isSent = true;
        m_hub->setScript([&](const QByteArray&, const QByteArray& frame) { // on the hub's thread
            QByteArray none;
            isSent = m_session->sendToServerSync("me too", none, false);
            return HubAnswer{{frame}};
        });
        QByteArray reply;
        QVERIFY(m_session->sendToServerSync("{}", reply, false));
        m_hub->setScript(nullptr); // after which what the script has written may be read
        QVERIFY(!isSent);
        QCOMPARE(criticals().filter("[ClientSession] another request is waiting for its reply").size(), 1);
    }

    void whatIsNotSentDoesNotHoldUpTheNextConnection()
    {
        QTcpServer deaf;
        QVERIFY(deaf.listen(QHostAddress::LocalHost));
        ClientSession session;
        session.setWaits(2000, 5, 1);
        session.connectToServer("127.0.0.1", deaf.serverPort());
        QByteArray reply;
        QVERIFY(!session.sendToServerSync(QByteArray(16 * 1024 * 1024, 'x'), reply, false));
        session.disServerConnect();
        session.setWaits(2000, 5, 60);
        session.connectToServer("127.0.0.1", m_hub->port());
        QVERIFY(session.isConnected() && session.sendToServerSync("{}", reply, false));
    }

    void aLateReplyAnswersTheNextRequest()
    {
        // A hub that is one reply behind: every request but the first gets the reply to the one before it.
        m_hub->setScript([before = QByteArray()](const QByteArray& request, const QByteArray&) mutable {
            const QByteArray late = std::exchange(before, "reply to " + request);
            return late.isEmpty() ? HubAnswer() : HubAnswer{{hubFrame(late)}};
        });
        QByteArray reply = "untouched";
        QVERIFY(!m_session->sendToServerSync("1", reply, false));
        QCOMPARE(reply, QByteArray("untouched"));
        for (const char* late : {"reply to 1", "reply to 2"}) {
            QVERIFY(m_session->sendToServerSync("2", reply, false));
            QCOMPARE(reply, QByteArray(late));
        }
    }

    void aWaitIsBoundedAndARefusedConnectionIsToldInTheLog()
    {
        const quint16 port = m_hub->port();
        m_hub->setScript([](const QByteArray&, const QByteArray&) { return HubAnswer(); });
        QElapsedTimer timer;
        timer.start();
        QByteArray reply;
        QVERIFY(!m_session->sendToServerSync("x", reply, false));
        QVERIFY2(timer.elapsed() >= 190 && timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
        m_hub.reset();
        ClientSession other;
        QVERIFY(other.connectToServer("127.0.0.1", port));
        QVERIFY(!other.isConnected());
        QVERIFY(criticals().last().contains("socket error, errcode "));
    }
};

QTEST_GUILESS_MAIN(ClientSessionTest)
#include "tst_clientsession.moc"
