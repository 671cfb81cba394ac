#include "support/logcapture.h"
#include <qualityutility/tool/sender4th/cabinetsender.h>
#include <simulator/simulatedwall.h>
#include <suite/action/action.h>

#include <QJsonDocument>
#include <QTest>

using namespace std::chrono_literals;
using CabinetSenderSpace::CabinetSender;
using CabinetSenderSpace::CabinetTargetMap;
using Simulator::DeviceBehaviour;
using Simulator::Fault;
using Simulator::SimulatedWall;
using CabinetList = std::vector<unsigned long long>;
using Bytes = std::vector<unsigned char>;

namespace {

Parameters grayRequest()
{
    Parameters params;
    params.insert("cids", CabinetList{1});
    params.insert("freq", 60);
    for (const char* key : {"rGrayCoeffs", "gGrayCoeffs", "bGrayCoeffs", "magnitude"})
        params.insert(key, Bytes{1, 2});
    return params;
}

} // namespace

Q_DECLARE_METATYPE(Parameters)

class SimulatedWallTest : public QObject
{
    Q_OBJECT

private:
    /// A wall of one device "a" with `cabinets` cabinets, entered into the registry and made the transport.
    std::shared_ptr<SimulatedWall> wall(const QByteArray& simulation, unsigned int seed = 1, unsigned int cabinets = 4)
    {
        Service::WallDevice device;
        device.entry.device = std::make_shared<Model::Device>();
        device.entry.device->getBase().setId("a");
        device.entry.device->getBase().setType("G4");
        for (unsigned int cid = 1; cid <= cabinets; ++cid) {
            device.entry.cabinets.push_back(std::make_shared<Model::Cabinet>(cid));
            device.entry.cabinets.back()->getDisplayEffectPara().setEffectMode(3);
        }
        device.simulation = QJsonDocument::fromJson(simulation).object();
        Service::ModelService::setDevices({device.entry});
        QString error;
        auto result = SimulatedWall::create({device}, seed, error);
        if (!result)
            qFatal("%s", qPrintable(error));
        Action::setTransport(result);
        return result;
    }

    /// Sends the action and returns the error text, or "ok".
    static QString outcomeOf(const char* action, const Parameters& params, bool post = false)
    {
        QString outcome;
        const auto onResult = [&](const Parameters&, const std::string&) { outcome = "ok"; };
        const auto onError = [&](const QString& text) { outcome = text; };
        const auto handle =
            post ? Action::post(action, "a", params, onResult, onError, {}, true, PackagePriority::Normal)
                 : Action::put(action, "a", params, onResult, onError, true, PackagePriority::Normal);
        [&] { QTRY_VERIFY(handle->isEnded()); }();
        return outcome;
    }

private Q_SLOTS:
    void init() { Action::setTimeoutUnit(1s); }
    void cleanup() { Action::setTransport(nullptr); }

    void whatWasSentCanBeReadBack()
    {
        const auto simulated = wall("{\"latencyMs\": 1}");
        Model::ColorGamutInfo gamut;
        gamut.rLxy = {1.0, 0.64, 0.33, {}};
        gamut.name = "Rec.709";
        gamut.coeff.setCoeffs({1, 2, 3, 4, 5, 6, 7, 8, 65535});
        const CabinetTargetMap targets{{"a", {2, 3}}};
        QCOMPARE(CabinetSender::setGrayScaleTable(targets, Bytes{1, 2}, Bytes{3, 4}, Bytes{5, 6}, Bytes{7, 8}, 60), 0);
        QCOMPARE(CabinetSender::uploadNiccData(targets, gamut), 0);
        QCOMPARE(CabinetSender::uploadNiccMeasure(targets, gamut), 0);
        QCOMPARE(CabinetSender::setColorManageMode(targets, gamut), 0);
        QCOMPARE(CabinetSender::gamutCorrectEffectMode(targets, true, true), 0);
        for (const unsigned long long cid : {2ULL, 3ULL}) {
            const auto state = simulated->cabinet("a", cid);
            QCOMPARE(state->mode, 11);
            QCOMPARE(state->grayTable->blue, Bytes({5, 6}));
            QCOMPARE(state->grayTable->freq, 60);
            QCOMPARE(state->targetGamut->rLxy, gamut.rLxy);
            QCOMPARE(state->targetGamut->name, gamut.name);
            QCOMPARE(state->measuredGamut->rLxy, gamut.rLxy);
            QCOMPARE(state->coefficients, gamut.coeff.getCoeffs());
            QCOMPARE(state->fullScale, 1023);
        }
        const auto untouched = simulated->cabinet("a", 1);
        QCOMPARE(untouched->mode, 3);
        QVERIFY(!untouched->grayTable && !untouched->targetGamut && untouched->coefficients.empty());
        QVERIFY(!simulated->cabinet("a", 99) && !simulated->cabinet("x", 1));
    }

    void whatARealDeviceWouldRefuseIsRefused_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("post");
        QTest::addColumn<Parameters>("params");
        QTest::addColumn<QString>("outcome");
        const auto row = [](const char* name, const char* action, const Parameters& params, const char* outcome,
                            bool post = false) { QTest::newRow(name) << action << post << params << outcome; };
        constexpr auto gray = "Device_CorrectionGrayCoeff";
        row("good", gray, grayRequest(), "ok");
        row("unknown action", "Device_Dance", grayRequest(), "unknown action \"Device_Dance\"");
        row("wrong method", gray, grayRequest(), "action \"Device_CorrectionGrayCoeff\" came by the wrong method",
            true);
        Parameters params;
        params.insert("cids", CabinetList{1});
        row("missing key", gray, params, "missing key \"freq\"");
        row("no cabinets", gray, {}, "missing key \"cids\"");
        params.insert("freq", 60.0);
        row("wrong type", gray, params, "key \"freq\" is not an int");
        params = Parameters();
        params.insert("cids", CabinetList{1, 9});
        params.insert("freq", 60);
        params.insert("rGrayCoeffs", Bytes{1, 2});
        params.insert("gGrayCoeffs", Bytes{1});
        params.insert("bGrayCoeffs", Bytes{});
        params.insert("magnitude", Bytes{1, 2});
        row("lengths differ", gray, params, "gray tables differ in length: red 2, green 1, blue 0, magnitude 2");
        params = Parameters();
        params.insert("cids", CabinetList{1});
        params.insert("mode", 8);
        params.insert("switches", std::vector<Parameters>{{}});
        row("switch without members", "Device_CabinetsCorrect", params, "in \"switches\": missing key \"enable\"");
        params = Parameters();
        params.insert("idList", CabinetList{9});
        params.insert("bin", std::string("QUJD"));
        row("unknown cabinet", "Device_M_RvCardBin", params, "no cabinet 9 here");
        params = Parameters();
        params.insert("idList", CabinetList{1});
        params.insert("bin", std::string("Q?JD"));
        row("not Base64", "Device_M_RvCardBin", params, "key \"bin\" is not Base64");
        params = Parameters();
        params.insert("cids", CabinetList{1});
        params.insert("niccData.coeffs", std::vector<unsigned short>{1, 2});
        for (const char* key : {"niccData.r", "niccData.g", "niccData.b"})
            params.insert(key, 255);
        row("two coefficients", "Device_CabinetsColorSpaceCoeff", params, "expected 9 coefficients, found 2");
    }

    void whatARealDeviceWouldRefuseIsRefused()
    {
        QFETCH(QString, action);
        QFETCH(bool, post);
        QFETCH(Parameters, params);
        wall("{\"latencyMs\": 0}");
        QTEST(outcomeOf(action.toUtf8().constData(), params, post), "outcome");
    }

    void faultsEndAsTheyShould_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("arrived");
        QTest::newRow("error") << "error" << 15 << 0;
        QTest::newRow("silence") << "silence" << 15 << 4;
        QTest::newRow("slow") << "slow" << 0 << 4;
        QTest::newRow("double answer") << "double-answer" << 0 << 4;
        QTest::newRow("late") << "late" << 15 << 4;
        QTest::newRow("no cids") << "no-cids" << 0 << 4;
        QTest::newRow("partial") << "partial" << 0 << -1;
        QTest::newRow("other thread") << "other-thread" << 0 << 4;
    }

    void faultsEndAsTheyShould()
    {
        QFETCH(QString, kind);
        QFETCH(int, result);
        QFETCH(int, arrived);
        Action::setTimeoutUnit(10ms); // four cabinets, four units each: 160 ms
        LogCapture log;
        const auto simulated =
            wall(R"({"latencyMs": 0, "faults": [{"kind": ")" + kind.toUtf8() + R"(", "delayMs": 30}]})");
        QCOMPARE(CabinetSender::setGrayScaleTable({{"a", {1, 2, 3, 4}}}, Bytes{1}, Bytes{1}, Bytes{1}, Bytes{1}, 60),
                 result);
        const auto count = [&] {
            int holding = 0;
            for (unsigned long long cid = 1; cid <= 4; ++cid)
                holding += simulated->cabinet("a", cid)->grayTable ? 1 : 0;
            return holding;
        };
        int confirmed = 0;
        for (unsigned long long cid = 1; cid <= 4; ++cid) {
            const auto cabinet = Service::ModelService::getCabByCid("a", cid, true);
            confirmed += cabinet->getDisplayEffectPara().getFineGrayValid() ? 1 : 0;
        }
        if (arrived < 0) { // some, and exactly those are confirmed
            QVERIFY(count() > 0 && count() < 4);
            QCOMPARE(confirmed, count());
        } else {
            QTRY_COMPARE(count(), arrived); // a late device does its work after the request has ended
            QCOMPARE(confirmed, result == 0 && kind != "no-cids" ? 4 : 0);
        }
    }

    void equalSeedsGiveEqualFaults()
    {
        const auto run = [&](unsigned int seed) {
            wall(R"({"latencyMs": 0, "faults": [{"kind": "error", "chance": 0.5}]})", seed);
            QStringList outcomes;
            for (int i = 0; i < 40; ++i)
                outcomes << outcomeOf("Device_CorrectionGrayCoeff", grayRequest());
            return outcomes;
        };
        const QStringList first = run(7);
        QCOMPARE(run(7), first);
        QVERIFY(run(8) != first);
        QVERIFY(first.contains("ok") && first.count("ok") < first.size());
    }

    void aWrongBehaviourIsRefused_data()
    {
        QTest::addColumn<QByteArray>("simulation");
        QTest::addColumn<QString>("error");
        QTest::newRow("latency") << QByteArray("{\"latencyMs\": -1}")
                                 << "latencyMs: expected a number from 0 to 86400000, found -1";
        QTest::newRow("faults") << QByteArray("{\"faults\": \"late\"}") << "faults: expected an array, found \"late\"";
        QTest::newRow("kind") << QByteArray("{\"faults\": [{\"kind\": \"fire\"}]}")
                              << "faults[0].kind: expected one of error, silence, slow, double-answer, late, no-cids, "
                                 "partial, other-thread, found \"fire\"";
        QTest::newRow("chances") << QByteArray(
                                        "{\"faults\": [{\"kind\": \"late\"}, {\"kind\": \"slow\", \"chance\": 0.5}]}")
                                 << "faults: expected chances that add up to 1 or less, found 1.5";
    }

    void aWrongBehaviourIsRefused()
    {
        QFETCH(QByteArray, simulation);
        QString error;
        QVERIFY(!Simulator::readBehaviour(QJsonDocument::fromJson(simulation).object(), error));
        QTEST(error, "error");
    }

    void tenThousandRequestsEndOnceEach()
    {
        Action::setTimeoutUnit(1ms);
        const auto simulated = wall(R"({"latencyMs": 0, "faults": [
            {"kind": "late", "chance": 0.1}, {"kind": "double-answer", "chance": 0.2},
            {"kind": "silence", "chance": 0.1}, {"kind": "other-thread", "chance": 0.2}]})");
        constexpr int total = 10000;
        constexpr int atOnce = 500;
        std::vector<int> endings(total, 0);
        int ended = 0;
        Parameters params = grayRequest();
        params.options().insert("timeout", 20);
        for (int first = 0; first < total; first += atOnce) {
            for (int i = first; i < first + atOnce; ++i) {
                const auto end = [&, i] {
                    ++endings[static_cast<size_t>(i)];
                    ++ended;
                };
                Action::put(
                    "Device_CorrectionGrayCoeff", "a", params, [end](const Parameters&, const std::string&) { end(); },
                    [end](const QString&) { end(); }, true, PackagePriority::Normal);
            }
            QTRY_COMPARE_WITH_TIMEOUT(ended, first + atOnce, 20000);
        }
        QTest::qWait(100); // late answers come to requests that have ended
        QCOMPARE(endings, std::vector<int>(total, 1));
    }

    void operationsReturnWhateverTheTransportDoes()
    {
        Action::setTimeoutUnit(1ms);
        LogCapture log;
        wall(R"({"latencyMs": 0, "faults": [
            {"kind": "late", "chance": 0.1}, {"kind": "double-answer", "chance": 0.2}, {"kind": "error", "chance": 0.1},
            {"kind": "silence", "chance": 0.1}, {"kind": "other-thread", "chance": 0.2}]})");
        int succeeded = 0;
        int failed = 0;
        for (int i = 0; i < 500; ++i) {
            const int result =
                CabinetSender::setGrayScaleTable({{"a", {1}}}, Bytes{1}, Bytes{1}, Bytes{1}, Bytes{1}, i);
            QVERIFY2(result == 0 || result == 15, qPrintable(QString::number(result)));
            ++(result == 0 ? succeeded : failed);
        }
        QVERIFY2(succeeded > 0 && failed > 0, "the faults did not happen");
    }
};

QTEST_GUILESS_MAIN(SimulatedWallTest)
#include "tst_simulatedwall.moc"
