#include <simulator/simulatedhub.h>

#include <QTcpSocket>
#include <QTest>

#include <chrono>
#include <future>

using namespace std::chrono_literals;
using Simulator::HubAnswer;
using Simulator::hubFrame;
using Simulator::SimulatedHub;

namespace {

/// A client with its bytes in its own hands: what it writes has left it when write() returns.
class Client
{
public:
    explicit Client(quint16 port) { m_socket.connectToHost("127.0.0.1", port); }
    bool isConnected() { return m_socket.waitForConnected(10000); }
    void write(const QByteArray& bytes)
    {
        m_socket.write(bytes);
        while (m_socket.bytesToWrite() > 0 && m_socket.waitForBytesWritten(10000)) {
        }
    }
    /// Exactly `size` bytes, fewer when they do not come.
    QByteArray read(int size)
    {
        while (m_socket.bytesAvailable() < size && m_socket.waitForReadyRead(10000)) {
        }
        return m_socket.read(size);
    }

private:
    QTcpSocket m_socket;
};

const QByteArray question = hubFrame("{\"cmd\":17}");
const QByteArray reply = hubFrame("{\"data\":{\"level\":14,\"mode\":1},\"error\":0}");

} // namespace

class SimulatedHubTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SimulatedHub> m_hub;

private Q_SLOTS:
    void init()
    {
        QString error;
        m_hub = SimulatedHub::start(0, error);
        QVERIFY2(m_hub != nullptr, qPrintable(error));
    }

    void requestsThatComeWhileAnAnswerIsWrittenAreAnswered_data()
    {
        QTest::addColumn<int>("cut");
        for (const int cut : {2, question.size() + 3, 2 * question.size()})
            QTest::newRow(qPrintable(QString::number(cut))) << cut;
    }

    void requestsThatComeWhileAnAnswerIsWrittenAreAnswered()
    {
        QFETCH(int, cut);
        std::promise<void> asked;
        std::promise<void> released;
        m_hub->setScript([&, isFirst = true](const QByteArray&, const QByteArray& frame) mutable {
            if (std::exchange(isFirst, false)) {
                asked.set_value();
                released.get_future().wait_for(10s);
            }
            return HubAnswer{{frame.left(3), frame.mid(3)}};
        });
        Client client(m_hub->port());
        QVERIFY(client.isConnected());
        const QByteArray others = question + question;
        client.write(question);
        QVERIFY(asked.get_future().wait_for(10s) == std::future_status::ready);
        client.write(others.left(cut));
        released.set_value();
        QCOMPARE(client.read(reply.size()), reply);
        client.write(others.mid(cut));
        QCOMPARE(client.read(2 * reply.size()), reply + reply);
        QCOMPARE(m_hub->requestCount(), 3);
    }

    void aClientThatTakesNoAnswersHoldsUpNobody()
    {
        constexpr int count = 200;
        const QByteArray large(1024 * 1024, 'x');
        std::promise<void> asked;
        m_hub->setScript([&, isFirst = true](const QByteArray& request, const QByteArray& frame) mutable {
            if (request == "large" && std::exchange(isFirst, false))
                asked.set_value();
            return HubAnswer{{request == "large" ? large : frame}};
        });
        Client flooding(m_hub->port());
        Client other(m_hub->port());
        QVERIFY(flooding.isConnected() && other.isConnected());
        flooding.write(hubFrame("large").repeated(count));
        QVERIFY(asked.get_future().wait_for(10s) == std::future_status::ready);
        other.write(question);
        QCOMPARE(other.read(reply.size()), reply);
        QVERIFY(m_hub->requestCount() < count / 2); // what is not answered is not read either
        for (int i = 0; i < count; ++i)
            QCOMPARE(flooding.read(large.size()), large); // and is, as soon as the answers are taken
    }
};

QTEST_GUILESS_MAIN(SimulatedHubTest)
#include "tst_simulatedhub.moc"
