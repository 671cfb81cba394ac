#include "support/calibrationsetup.h"
#include <calibration/verification.h>

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

using namespace Calibration;

Q_DECLARE_METATYPE(Colour::Coefficients)
Q_DECLARE_METATYPE(std::vector<DeviceRecord>)

class VerificationTest : public QObject
{
    Q_OBJECT

private:
    /// The journal of a calibration of the devices a and b, both simulated; what was served is recorded.
    Journal journal(const std::vector<DeviceRecord>& records)
    {
        auto journal = good(Journal::begin(m_folder.filePath("journal"), {{"measured", gamutToJson(m_content.measured)},
                                                                          {"target", gamutToJson(m_content.target)},
                                                                          {"simulated", true},
                                                                          {"devices", QJsonArray{"a", "b"}}}));
        for (const DeviceRecord& record : records)
            if (!journal.append(record))
                qFatal("the journal cannot be written");
        return good(Journal::read(m_folder.filePath("journal")));
    }

    static DeviceRecord record(const QString& device, const HeldCorrection& held, Known known = Known::ReadBack)
    {
        DeviceRecord record;
        record.device = device;
        record.outcomes.resize(1);
        record.outcomes[0].kind = Outcome::Kind::Answered;
        record.outcomes[0].result = CabinetSenderSpace::ResultSuccess;
        record.outcomes[0].cabinets = held.cabinets;
        record.outcomes[0].arrived = held.cabinets;
        record.held << held;
        record.known = known;
        return record;
    }

    DeviceRecord unserved(const QString& device, int cabinets) const
    {
        DeviceRecord failed = record(device, {2, {}, false});
        failed.outcomes[0].cabinets = cabinets;
        failed.outcomes[0].arrived = 0;
        return failed;
    }

    QTemporaryDir m_folder;
    const Content m_content = exampleContent();
    const Colour::Coefficients m_right{10264, 5297, 823, 960, 16216, -1006, 99, 365, 11230};

private Q_SLOTS:
    void whatCabinetsHoldIsJudged_data()
    {
        QTest::addColumn<Colour::Coefficients>("coefficients");
        QTest::addColumn<bool>("isOn");
        QTest::addColumn<bool>("isStrict");
        QTest::addColumn<QString>("sentence");
        QTest::addColumn<QString>("fault"); ///< of the cabinets of a
        auto other = m_right;
        other[4] = 8216;
        QTest::newRow("as computed, the LEDs reach no blue")
            << m_right << true << false
            << "PASSED: 2 of 2 devices acknowledged the correction, CIEDE2000 at most 0.01 of 1.0 (acknowledged, "
               "simulated, from the journal)"
            << "";
        QTest::newRow("as computed, blue counts")
            << m_right << true << true
            << "DIFFERS: 2 of 2 devices acknowledged a correction, CIEDE2000 from the target up to 10.26, above 1.0 "
               "(acknowledged, simulated, from the journal)"
            << "a: 2 cabinets differ from the target by CIEDE2000 10.26, above 1";
        QTest::newRow("another integer") << other << true << false
                                         << "DIFFERS: 2 of 2 devices acknowledged a correction, CIEDE2000 up to 28.40, "
                                            "above 1.0 (acknowledged, simulated, from the journal)"
                                         << "a: 2 cabinets differ by CIEDE2000 28.40, above 1";
        auto half = m_right;
        for (auto& coefficient : half)
            coefficient = static_cast<std::int16_t>(coefficient / 2);
        QTest::newRow("half as bright") << half << true << false
                                        << "DIFFERS: 2 of 2 devices acknowledged a correction, CIEDE2000 at most 0.04 "
                                           "of 1.0, white not as bright as "
                                           "wanted (acknowledged, simulated, from the journal)"
                                        << "a: 2 cabinets show white at 1487.6 cd/m2, wanted 2975.4";
        QTest::newRow("off") << m_right << false << false
                             << "DIFFERS: 2 of 2 devices acknowledged a correction, CIEDE2000 up to 13.43, above 1.0 "
                                "(acknowledged, simulated, from the journal)"
                             << "a: 2 cabinets differ by CIEDE2000 13.43, above 1";
        QTest::newRow("dark") << Colour::Coefficients{} << true << false
                              << "DIFFERS: 2 of 2 devices acknowledged a correction, on which white gives no light "
                                 "(acknowledged, simulated, from the journal)"
                              << "a: 2 cabinets give no light";
    }

    void whatCabinetsHoldIsJudged()
    {
        QFETCH(Colour::Coefficients, coefficients);
        QFETCH(bool, isOn);
        QFETCH(bool, isStrict);
        QFETCH(QString, fault);
        const Journal held =
            journal({record("a", {2, coefficients, isOn}), record("b", {1, m_right, true}, Known::Acknowledged)});
        const auto judged = good(verify(held, {1.0, isStrict}));
        QTEST(judged.verdict.sentence(), "sentence");
        QCOMPARE(judged.faults.value(0), fault);
        const Judgement& a = judged.judgements.front();
        QCOMPARE(a.isWithin, fault.isEmpty());
        QCOMPARE(a.held.coefficients, coefficients); // as held, also while they are off
        QCOMPARE(a.figures == judged.judgements.back().figures, isOn && coefficients == m_right);
        if (!isOn)
            QVERIFY(qAbs(Colour::shownPrimaries(a.figures->corners)->red.x - m_content.measured.rLxy.x) < 1e-6);
        QVERIFY(qAbs(judged.coverageXy.covered - 0.9792) < 1e-4);
    }

    void devicesThatDoNotHoldItAreCounted_data()
    {
        QTest::addColumn<std::vector<DeviceRecord>>("records");
        QTest::addColumn<QString>("sentence");
        QTest::addColumn<QStringList>("faults");
        const DeviceRecord done = record("a", {2, m_right, true});
        QTest::newRow("one was not reached, its cabinets differ")
            << std::vector{done, unserved("b", 2)}
            << "PARTLY APPLIED: 1 of 2 devices held the correction, CIEDE2000 at most 0.01 of 1.0 (read back, "
               "simulated, from the journal)"
            << QStringList{"b: does not hold everything"};
        QTest::newRow("one is missing") << std::vector{done}
                                        << "PARTLY APPLIED: 1 of 2 devices held the correction, CIEDE2000 at most "
                                           "0.01 of 1.0 (read back, simulated, from the journal)"
                                        << QStringList{"b: not served"};
        DeviceRecord unknown = done;
        unknown.held.clear();
        const DeviceRecord empty = record("b", {0, m_right, true});
        QTest::newRow("nothing is known of one, the other is empty")
            << std::vector{unknown, empty}
            << "NOT APPLIED: 0 of 2 devices held the correction (simulated, from the journal)"
            << QStringList{"a: of 2 cabinets, 0 known to hold it", "b: has no cabinets"};
        QTest::newRow("none was served")
            << std::vector<DeviceRecord>()
            << "NOT APPLIED: 0 of 2 devices held the correction (simulated, from the journal)"
            << QStringList{"a: not served", "b: not served"};
    }

    void devicesThatDoNotHoldItAreCounted()
    {
        QFETCH(std::vector<DeviceRecord>, records);
        const auto judged = good(verify(journal(records), {}));
        QTEST(judged.verdict.sentence(), "sentence");
        QTEST(judged.faults, "faults");
    }

    void aMeasurementAfterwardsIsCompared_data()
    {
        QTest::addColumn<double>("whiteLuminance");
        QTest::addColumn<double>("blueFactor"); ///< of what was computed
        QTest::addColumn<bool>("isStrict");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("as computed, darker")
            << 2500.0 << 1.0 << false
            << "DIFFERS: measured afterwards, CIEDE2000 from what was computed at most 0.00 of 1.0, white -16.0 % of "
               "luminance";
        QTest::newRow("as computed, as bright as instruments tell")
            << 2870.0 << 1.0 << false
            << "PASSED: measured afterwards, CIEDE2000 from what was computed at most 0.00 of 1.0, white -3.5 % of "
               "luminance";
        QTest::newRow("as computed, in ratios")
            << 0.0 << 1.0 << false
            << "PASSED: measured afterwards, CIEDE2000 from what was computed at most 0.00 of 1.0";
        QTest::newRow("as computed, blue counts")
            << 0.0 << 1.0 << true << "DIFFERS: measured afterwards, CIEDE2000 from the target up to 10.26, above 1.0";
        QTest::newRow("dark blue")
            << 2970.0 << 0.6 << false
            << "DIFFERS: measured afterwards, CIEDE2000 from what was computed up to 7.84, above 1.0, white -0.2 % of "
               "luminance";
        QTest::newRow("no blue")
            << 2500.0 << 0.0 << false
            << "BadData: measurement afterwards, blue: expected luminances of it and of white above "
               "0, found none";
    }

    void aMeasurementAfterwardsIsCompared()
    {
        QFETCH(double, whiteLuminance);
        QFETCH(double, blueFactor);
        QFETCH(bool, isStrict);
        // Most cabinets hold the right integers.
        const auto judged = judge(m_content.measured, m_content.target,
                                  {record("a", {1, {}, false}), record("b", {2, m_right, true})}, {});
        auto measurement = measurementOf(*judged.judgements.back().figures, whiteLuminance);
        measurement.patches.points[2].mean.lum *= blueFactor;
        const auto after = compareAfter(judged, measurement, {1.0, isStrict});
        QTEST(after ? after->sentence() : faultText(after), "sentence");
        if (!after)
            return;
        const ComparedPoint& white = after->points[3];
        QVERIFY(qAbs(white.computed.luminance - 0.95364 * 3120.0) < 0.1 && white.before.luminance == 3120.0);
        QVERIFY(qAbs(white.after.luminance - whiteLuminance) < 1e-9);
        QVERIFY(qAbs(*white.beforeToTarget - 13.426) < 1e-3 && white.uvAfterToComputed < 1e-9);
        QVERIFY(qAbs(after->points[2].uvAfterToTarget - 0.0554) < 1e-4);
    }

    void withoutLuminanceNothingIsSaidOfBefore()
    {
        auto measured = m_content.measured;
        measured.wLxy.lum = 0.0;
        auto judged = judge(measured, m_content.target, {record("a", {2, m_right, true})}, {});
        const auto measurement = measurementOf(*judged.judgements.front().figures, 0.0);
        const auto after = good(compareAfter(judged, measurement, {}));
        QVERIFY(!after.points[0].beforeToTarget && after.points[0].computed.luminance == 0.0);
        judged.judgements.clear();
        QCOMPARE(faultText(compareAfter(judged, measurement, {})),
                 QString("BadData: calibration: no cabinet is known to show light"));
    }

    void aJournalThatNamesNoDeviceIsNone()
    {
        const QString path = writeFile(m_folder.filePath("journal"), "{\"inputs\":{\"x\":1}}\n");
        QCOMPARE(faultText(verify(good(Journal::read(path)), {})), QString("BadData: calibration: names no device"));
    }
};

QTEST_GUILESS_MAIN(VerificationTest)
#include "tst_verification.moc"
