#include "support/testfiles.h"
#include <gateway/frame.h>

#include <recording/difference.h>
#include <recording/gatewayreplay.h>
#include <recording/recorder.h>

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

using Common::Fault;
using Recording::Kind;

namespace {

const QByteArray head = R"({"recording":"hub","version":1,"begun":"2026-11-22T03:50:00Z"})"
                        "\n";

/// What a replay answers one request with.
class Answered : public Action::AnswerSink
{
public:
    void deliver(Action::Answer answer) override { m_content = std::move(answer.content); }
    QString error() const { return std::holds_alternative<QString>(m_content) ? std::get<QString>(m_content) : ""; }
    Parameters reply() const { return std::get<Parameters>(m_content); }

private:
    std::variant<Parameters, QString> m_content;
};

/// A request, with what it refers to.
struct Asked
{
    Asked(const char* to, int mode) : device(to) { parameters.insert("mode", mode); }
    Action::Request request() const
    {
        return {Action::Request::Method::Put, action, device, parameters, headers, true, PackagePriority::Normal,
                std::chrono::seconds(1)};
    }

    const std::string action = "switch";
    const std::string device;
    Parameters parameters;
    const QMap<QString, QString> headers;
};

Recording::Message message(bool isReceived, const Common::Result<QByteArray>& frame)
{
    return {0.0, "gateway", isReceived, frame->mid(Gateway::headerLength)};
}

Gateway::Return replyOf(quint64 id, int result)
{
    Parameters reply;
    reply.insert("result", result);
    return {id, reply};
}

} // namespace

class RecordingTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString in(const char* name) const { return m_folder.filePath(name); }

private Q_SLOTS:
    void keepsEveryByteOfEveryThread()
    {
        const auto recorder = Recording::Recorder::begin(in("threads"), Kind::Hub);
        QVERIFY(recorder);
        const QByteArrayList payloads{"{\"cmd\": 17}\n", "", QByteArray("\0\xff{", 3), "\xc3\xa4\"\\", "\xef\xbb\xbf"};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&, tap = (*recorder)->tap(QString::number(i))] {
                for (const QByteArray& payload : payloads)
                    tap(payload, &payload == &payloads.last());
            });
        for (std::thread& thread : threads)
            thread.join();
        QVERIFY((*recorder)->state());
        const auto session = Recording::readSession(in("threads"), Kind::Hub);
        QVERIFY(session);
        QMap<QString, QByteArrayList> heard;
        double seconds = 0.0;
        for (const Recording::Message& heardMessage : session->messages) {
            heard[heardMessage.peer] << heardMessage.payload;
            QCOMPARE(heardMessage.isReceived, heard[heardMessage.peer].size() == payloads.size());
            QVERIFY(heardMessage.seconds >= seconds);
            seconds = heardMessage.seconds;
        }
        QCOMPARE(heard.size(), 4);
        for (const QByteArrayList& list : qAsConst(heard))
            QCOMPARE(list, payloads);
    }

    void neverTakesAFileThatIsThere()
    {
        writeFile(in("taken"), "mine");
        const auto recorder = Recording::Recorder::begin(in("taken"), Kind::Hub);
        QVERIFY(!recorder && recorder.fault().kind == Fault::Kind::CannotCreate);
        QCOMPARE(readFile(in("taken")), QByteArray("mine"));
    }

    void badRecordings_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("fault");
        const QByteArray line = R"({"seconds":0.5,"peer":"hub a:1","direction":"sent","text":"{}"})";
        QTest::newRow("empty") << QByteArray() << "recording R: expected messages, found none";
        QTest::newRow("no message") << head << "recording R: expected messages, found none";
        QTest::newRow("only half a message") << head + line << "recording R: expected messages, found none";
        QTest::newRow("another kind") << R"({"recording":"gateway","version":1})"
                                         "\n" +
                                             line + "\n"
                                      << "recording R, line 1: expected the recording of a hub, version 1, found "
                                         "gateway, version 1";
        QTest::newRow("not JSON") << head + "{\n"
                                  << "recording R, line 2: expected a JSON object, found unterminated object";
        QTest::newRow("a list") << head + "[]\n"
                                << "recording R, line 2: expected a JSON object, found another value";
        QTest::newRow("direction") << head + QByteArray(line).replace("sent", "lost") + "\n"
                                   << "recording R, line 2: direction: expected \"sent\" or \"received\", found "
                                      "\"lost\"";
        QTest::newRow("payload") << head + QByteArray(line).replace("\"text\":\"{}\"", "\"payload\":\"?\"") + "\n"
                                 << "recording R, line 2: payload: expected Base64, found \"?\"";
        QTest::newRow("nothing said") << head + QByteArray(line).replace(",\"text\":\"{}\"", "") + "\n"
                                      << "recording R, line 2: payload: expected a string, found nothing";
    }
    void badRecordings()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, fault);
        const auto session = Recording::readSession(writeFile(in("bad"), content), Kind::Hub);
        QVERIFY(!session && session.fault().kind == Fault::Kind::BadData);
        QCOMPARE(session.fault().message().replace(in("bad"), "R"), fault);
    }

    void differences_data()
    {
        QTest::addColumn<QByteArray>("expected");
        QTest::addColumn<QByteArray>("found");
        QTest::addColumn<QString>("difference");
        QTest::newRow("order and form") << QByteArray(R"({"a":1,"b":[2]})") << QByteArray(R"({"b":[2.0],"a":1})") << "";
        QTest::newRow("deep") << QByteArray(R"({"a":{"b":[1,2]}})") << QByteArray(R"({"a":{"b":[1,3]}})")
                              << "a.b[1]: expected 2, found 3";
        QTest::newRow("one less") << QByteArray(R"({"a":[1,2]})") << QByteArray(R"({"a":[1]})")
                                  << "a[1]: expected 2, found nothing";
        QTest::newRow("one more") << QByteArray(R"({})") << QByteArray(R"({"x":null})")
                                  << "x: expected nothing, found null";
        QTest::newRow("long") << "{\"t\":\"" + QByteArray(80, 'a') + "\"}"
                              << "{\"t\":\"" + QByteArray(70, 'a') + "b\"}"
                              << "t: 71 characters, expected 80, different from character 71 on";
    }
    void differences()
    {
        QFETCH(QByteArray, expected);
        QFETCH(QByteArray, found);
        const auto value = [](const QByteArray& json) { return QJsonValue(QJsonDocument::fromJson(json).object()); };
        QTEST(Recording::firstDifference(value(expected), value(found)), "difference");
    }

    void aGatewayAnswersInAnyOrder()
    {
        Recording::Session session;
        session.name = "recording R";
        quint64 id = 0;
        for (const auto& [device, mode] : {std::pair("a", 1), std::pair("a", 2), std::pair("b", 1)})
            session.messages.push_back(message(false, Gateway::frameOf(++id, Asked(device, mode).request())));
        session.messages.push_back(message(true, Gateway::frameOf(replyOf(2, 12))));
        session.messages.push_back(message(true, Gateway::frameOf(replyOf(1, 11))));
        QStringList told;
        const auto replay = Recording::GatewayReplay::create(session, [&](const QString& text) { told << text; });
        QVERIFY(replay);
        const auto ask = [&](const char* device, int mode) {
            const auto answered = std::make_shared<Answered>();
            (*replay)->send(Asked(device, mode).request(), Action::Responder(answered, 1));
            return answered;
        };
        QCOMPARE(ask("a", 2)->reply().get<int>("result"), 12);
        QCOMPARE(ask("a", 7)->reply().get<int>("result"), 11);
        QCOMPARE(ask("a", 1)->error(), "the recording has no such request any more");
        QCOMPARE(ask("b", 1)->error(), "no answer was recorded");
        QCOMPARE(told, QStringList({"put switch of a: arguments.mode: expected 1, found 7",
                                    "put switch of a: not in the recording, or asked there less often"}));
        const auto state = (*replay)->state();
        QVERIFY(state.recorded == 3 && state.asked == 3 && state.differing == 2);
    }
};

QTEST_GUILESS_MAIN(RecordingTest)
#include "tst_recording.moc"
