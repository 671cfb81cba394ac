#include "support/walldocument.h"
#include <gateway/client.h>
#include <gateway/frame.h>
#include <gateway/server.h>
#include <simulator/recordingtransport.h>
#include <simulator/simulatedwall.h>
#include <suite/action/action.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <future>

using namespace std::chrono_literals;
using namespace Gateway;
using Cids = std::vector<unsigned long long>;
using Bytes = std::vector<unsigned char>;

namespace {

/// A peer with its bytes in its own hands.
class Peer
{
public:
    explicit Peer(quint16 port) { m_socket.connectToHost("127.0.0.1", port); }
    bool isConnected() { return m_socket.waitForConnected(10000); }
    void write(const QByteArray& bytes)
    {
        m_socket.write(bytes);
        m_socket.flush();
    }
    /// At least `size` bytes, fewer when they do not come.
    QByteArray read(int size)
    {
        while (m_socket.bytesAvailable() < size && m_socket.waitForReadyRead(10000)) {
        }
        return m_socket.readAll();
    }
    bool isClosed()
    {
        while (m_socket.state() == QAbstractSocket::ConnectedState && m_socket.waitForReadyRead(10000))
            m_socket.readAll();
        return m_socket.state() == QAbstractSocket::UnconnectedState;
    }

private:
    QTcpSocket m_socket;
};

Parameters modeRequest(int mode)
{
    Parameters entry;
    entry.insert("enable", true);
    entry.insert("switchMode", 5);
    Parameters parameters;
    parameters.insert("cids", Cids{1, 2});
    parameters.insert("mode", mode);
    parameters.insert("switches", std::vector<Parameters>{entry});
    return parameters;
}

Parameters grayTable()
{
    Parameters table;
    table.insert("cids", Cids{1, 2});
    table.insert("freq", 60);
    for (const char* key : {"rGrayCoeffs", "gGrayCoeffs", "bGrayCoeffs", "magnitude"})
        table.insert(key, Bytes(65536, static_cast<unsigned char>(*key)));
    return table;
}

QByteArray callFrame(const std::string& device, quint64 id = 1)
{
    Call call;
    call.id = id;
    call.action = "Device_CabinetsCorrect";
    call.device = device;
    call.parameters = modeRequest(3);
    return *frameOf(call);
}

/// What the request ended with: its reply's mode, or its error.
struct Ending
{
    QString error;
    int mode = -1;
};

} // namespace

class GatewayTest : public QObject
{
    Q_OBJECT

private:
    void serve(Listening listening = {})
    {
        Action::Devices devices{m_wall, m_wall, [] { return wallDocument("{}"); }, true};
        auto server = Server::start(devices, listening);
        QVERIFY2(server, qPrintable(server ? QString() : server.fault().message()));
        m_server = std::move(*server);
    }

    void connectClient()
    {
        auto client = Client::connect({"127.0.0.1", m_server->port()});
        QVERIFY2(client, qPrintable(client ? QString() : client.fault().message()));
        m_client = *client;
        Action::setTransport(m_client);
    }

    /// Asks and waits.
    Ending put(const std::string& action, const std::string& device, const Parameters& parameters)
    {
        Ending ending;
        QEventLoop loop;
        bool isEnded = false;
        Action::put(
            action, device, parameters,
            [&](const Parameters& reply, const std::string&) {
                const int* mode = reply.arguments().find<int>("mode");
                ending.mode = mode ? *mode : -1;
                isEnded = true;
                loop.quit();
            },
            [&](const QString& text) {
                ending.error = text;
                isEnded = true;
                loop.quit();
            },
            true, PackagePriority::Normal);
        if (!isEnded)
            loop.exec();
        return ending;
    }
    Ending putMode(const std::string& device, int mode)
    {
        return put("Device_CabinetsCorrect", device, modeRequest(mode));
    }

    std::shared_ptr<Simulator::SimulatedWall> m_wall;
    std::unique_ptr<Server> m_server;
    std::shared_ptr<Client> m_client;

private Q_SLOTS:
    void init()
    {
        QString error;
        m_wall =
            Simulator::SimulatedWall::create(*Service::parseWall(wallDocument(failingBy("silence")), "wall"), 1, error);
        QVERIFY2(m_wall, qPrintable(error));
    }

    void cleanup()
    {
        Action::setTransport(nullptr);
        m_client.reset();
        m_server.reset();
        m_wall.reset();
    }

    void whatIsSentIsReadBack()
    {
        serve();
        connectClient();
        QVERIFY(m_client->hello().isSimulated && m_client->hello().isReadable);
        QCOMPARE(*m_client->wall(), wallDocument("{}"));
        QCOMPARE(putMode("a", 11).mode, 11);
        QCOMPARE(put("Device_CorrectionGrayCoeff", "a", grayTable()).error, QString());
        const auto read = m_client->cabinet("a", 1);
        QVERIFY(read && read->mode == 11 && *read->grayTable == *m_wall->cabinet("a", 1)->grayTable);
        QVERIFY(m_client->cabinet("a", 2)->grayTable == read->grayTable); // shared
        QVERIFY(!m_client->cabinet("a", 3) && !m_client->cabinet("x", 1));
        QVERIFY(putMode("x", 1).error.contains("no device \"x\""));
        QVERIFY(put("Device_Nothing", "a", {}).error.contains("unknown action"));
    }

    void manyRequestsEndOnceEach_data()
    {
        QTest::addColumn<int>("threads");
        QTest::newRow("of one thread") << 1;
        QTest::newRow("of four threads") << 4;
    }

    void manyRequestsEndOnceEach()
    {
        QFETCH(int, threads);
        serve();
        connectClient();
        constexpr int count = 2500;
        std::vector<std::future<int>> endings;
        for (int thread = 0; thread < threads; ++thread) {
            endings.push_back(std::async(std::launch::async, [] {
                QEventLoop loop;
                int replies = 0;
                int ended = 0;
                const auto end = [&] {
                    if (++ended == count)
                        loop.quit();
                };
                for (int i = 0; i < count; ++i)
                    Action::put(
                        "Device_CabinetsCorrect", i % 2 == 0 ? "a" : "c", modeRequest(i),
                        [&, i](const Parameters& reply, const std::string&) {
                            replies += reply.get<int>("mode") == i ? 1 : 0;
                            end();
                        },
                        [&](const QString&) { end(); }, true, PackagePriority::Normal);
                loop.exec();
                return replies;
            }));
        }
        for (auto& ending : endings)
            QCOMPARE(ending.get(), count);
        QCOMPARE(m_server->requestCount(), qint64{count} * threads);
    }

    void aLostConnectionEndsItsRequestsAndIsTakenUpAgain()
    {
        serve();
        const quint16 port = m_server->port();
        connectClient();
        QTimer::singleShot(0, this, [&] { m_server.reset(); });
        const QString name = QStringLiteral("gateway 127.0.0.1:%1: ").arg(port);
        const QString lost = putMode("b", 1).error; // b is silent
        QVERIFY2(lost.startsWith(name), qPrintable(lost));
        const QString gone = putMode("a", 1).error;
        QVERIFY2(gone.startsWith(name) && gone.contains("refused"), qPrintable(gone));
        QVERIFY(!m_client->cabinet("a", 1) && !m_client->wall());
        Listening again;
        again.port = port;
        serve(again);
        QCOMPARE(putMode("a", 5).mode, 5);
    }

    void aSilentDeviceHoldsUpNobodyAndEndsByItsTimeout()
    {
        serve();
        connectClient();
        Action::setTimeoutUnit(10ms);
        Parameters request = modeRequest(1);
        request.options().insert("timeout", 20);
        const auto silent = put("Device_CabinetsCorrect", "b", request);
        Action::setTimeoutUnit(1s);
        QVERIFY2(silent.error.startsWith("timeout: "), qPrintable(silent.error));
        QCOMPARE(putMode("a", 2).mode, 2);
    }

    void aBadPeerIsClosedAndHarmsNobody_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray hello = frameOf(Hello{});
        QTest::newRow("says nothing") << QByteArray();
        QTest::newRow("half a hello") << hello.left(7);
        QTest::newRow("half a call") << hello + callFrame("a").left(30);
        QTest::newRow("calls without hello") << callFrame("a");
        QTest::newRow("garbage") << QByteArray("GET / HTTP/1.1\r\n\r\n");
        QTest::newRow("garbage in a frame") << hello + QByteArray("\x02\x00\x00\x00\xff\xff", 6);
        QTest::newRow("answers") << hello + *frameOf(Return{1, QString("no")});
        QTest::newRow("a frame too long") << hello + QByteArray("\x01\x00\x00\x04", 4);
    }

    void aBadPeerIsClosedAndHarmsNobody()
    {
        QFETCH(QByteArray, bytes);
        Listening listening;
        listening.patience = 300ms;
        serve(listening);
        connectClient();
        Peer peer(m_server->port());
        QVERIFY(peer.isConnected());
        peer.write(bytes);
        QCOMPARE(putMode("a", 2).mode, 2);
        QVERIFY(peer.isClosed());
        QCOMPARE(putMode("a", 3).mode, 3);
    }

    void aReadThatWouldNotFitIsRefused_data()
    {
        QTest::addColumn<int>("cabinets");
        QTest::newRow("too many") << 1'000'000;
        QTest::newRow("too large") << 1000; // of 256 KiB
    }

    void aReadThatWouldNotFitIsRefused()
    {
        QFETCH(int, cabinets);
        serve();
        connectClient();
        QCOMPARE(put("Device_CorrectionGrayCoeff", "a", grayTable()).error, QString());
        Call read;
        read.method = Call::Method::Read;
        read.device = "a";
        read.parameters.insert("cids", Cids(static_cast<std::size_t>(cabinets), 1));
        Peer peer(m_server->port());
        QVERIFY(peer.isConnected());
        peer.write(frameOf(Hello{}) + *frameOf(read));
        const QByteArray answer = peer.read(frameOf(Hello{1, true, true}).size() + 40);
        QVERIFY2(answer.contains("error"), answer.constData());
    }

    void whoTakesNoAnswersIsNotReadFrom()
    {
        serve();
        connectClient();
        Peer flooding(m_server->port());
        QVERIFY(flooding.isConnected());
        Call read;
        read.method = Call::Method::List;
        constexpr int count = 100'000;
        flooding.write(frameOf(Hello{}) + frameOf(read)->repeated(count));
        for (int mode = 0; mode < 100; ++mode)
            QCOMPARE(putMode("a", mode).mode, mode);
        QVERIFY(m_server->requestCount() < count / 2);
    }

    void twoThousandConnectionsLeaveRoom()
    {
        Listening listening;
        listening.maxConnections = 20;
        serve(listening);
        std::vector<std::unique_ptr<Peer>> peers;
        for (int i = 0; i < 2000; ++i) {
            peers.push_back(std::make_unique<Peer>(m_server->port()));
            QVERIFY(peers.back()->isConnected());
            peers.back()->write(frameOf(Hello{}));
            if (peers.size() > 100) // no more sockets than a system gives; the server has closed the oldest long ago
                peers.erase(peers.begin());
            if (i % 500 == 0)
                connectClient();
            if (i % 100 == 0)
                QCOMPARE(putMode("a", i).error, QString());
        }
        QVERIFY(peers.front()->isClosed());
    }

    void whatIsNoGatewayIsSaid_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("fault");
        QTest::newRow("another protocol") << QByteArray("HTTP/1.1 400 Bad Request\r\n\r\n") << "frame that is too long";
        QTest::newRow("another version") << frameOf(Hello{2, false, false}) << "version 2";
        QTest::newRow("a client") << callFrame("a") << "asks instead";
        QTest::newRow("no answer") << QByteArray() << "closed";
    }

    void whatIsNoGatewayIsSaid()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, fault);
        QTcpServer peer;
        QVERIFY(peer.listen(QHostAddress::LocalHost));
        auto client = std::async(std::launch::async, [port = peer.serverPort()] {
            return Client::connect({"127.0.0.1", port});
        });
        QVERIFY(peer.waitForNewConnection(10000));
        QTcpSocket* socket = peer.nextPendingConnection();
        QVERIFY(socket->waitForReadyRead(10000));
        socket->write(answer);
        socket->flush();
        if (answer.isEmpty())
            socket->close();
        const auto result = client.get();
        QVERIFY(!result);
        QVERIFY2(result.fault().message().contains(fault), qPrintable(result.fault().message()));
    }

    void devicesWithoutAWallDocumentSaySo_data()
    {
        QTest::addColumn<bool>("isAsked");
        QTest::addColumn<QString>("error");
        QTest::newRow("nobody knows it") << false << "these devices have no wall document";
        QTest::newRow("who knows it fails") << true << "bus: down";
    }
    void devicesWithoutAWallDocumentSaySo()
    {
        QFETCH(bool, isAsked);
        Action::Devices devices{m_wall, nullptr, nullptr, true};
        if (isAsked)
            devices.wall = [] { return Common::Fault{Common::Fault::Kind::Unavailable, "bus", {}, "down"}; };
        m_server = *Server::start(devices, {});
        connectClient();
        QTEST(m_client->wall().fault().found, "error");
        QVERIFY(!m_client->hello().isReadable);
    }

    void aDeviceThatCannotBeReadIsNotAskedAgain()
    {
        m_server = *Server::start({m_wall, nullptr, nullptr, true}, {});
        std::atomic<int> reads{0};
        const auto client = *Client::connect({"127.0.0.1", m_server->port()}, [&](const QByteArray& payload, bool) {
            reads += payload.contains("read") && payload.contains("cids") ? 1 : 0;
        });
        for (const unsigned long long cid : {1U, 2U})
            QVERIFY(!client->cabinet("a", cid) && !client->cabinet("b", cid));
        QCOMPARE(reads, 2);
    }
};

QTEST_GUILESS_MAIN(GatewayTest)
#include "tst_gateway.moc"
