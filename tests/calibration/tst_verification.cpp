#include "support/calibrationsetup.h"
#include <calibration/verification.h>

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

using namespace Calibration;

Q_DECLARE_METATYPE(Colour::Coefficients)

class VerificationTest : public QObject
{
    Q_OBJECT

private:
    /// The journal of a calibration of the devices a and b; a was served, and holds this.
    Journal journal(const HeldCorrection& held, Outcome::Kind kind = Outcome::Kind::Answered)
    {
        auto journal = good(Journal::begin(m_folder.filePath("journal"), {{"measured", gamutToJson(m_content.measured)},
                                                                          {"target", gamutToJson(m_content.target)},
                                                                          {"devices", QJsonArray{"a"}}}));
        DeviceRecord record;
        record.device = "a";
        record.outcomes.resize(1);
        record.outcomes[0].kind = kind;
        record.outcomes[0].result = CabinetSenderSpace::ResultSuccess;
        record.held << held;
        if (!journal.append(record))
            qFatal("the journal cannot be written");
        return good(Journal::read(m_folder.filePath("journal")));
    }

    QTemporaryDir m_folder;
    const Content m_content = exampleContent();
    const Colour::Coefficients m_right{10264, 5297, 823, 960, 16216, -1006, 99, 365, 11230};

private Q_SLOTS:
    void whatCabinetsHoldIsJudged_data()
    {
        QTest::addColumn<Colour::Coefficients>("coefficients");
        QTest::addColumn<bool>("isOn");
        QTest::addColumn<QString>("fault");
        auto other = m_right;
        other[4] = 8216;
        QTest::newRow("as computed") << m_right << true << "";
        QTest::newRow("another integer") << other << true << "a: 2 cabinets differ by 25.46, above 11";
        QTest::newRow("off") << m_right << false << "a: 2 cabinets differ by 16.68, above 11";
        QTest::newRow("dark") << Colour::Coefficients{} << true
                              << "a: 2 cabinets: gamut Panel 2026-11: the coefficients for the target Rec.709 / sRGB "
                                 "leave a primary or white without light";
    }

    void whatCabinetsHoldIsJudged()
    {
        QFETCH(Colour::Coefficients, coefficients);
        QFETCH(bool, isOn);
        QFETCH(QString, fault);
        const auto judged = good(verify(journal({2, coefficients, isOn}), 11.0));
        QCOMPARE(judged.faults.join("; "), fault);
        const Judgement& a = judged.judgements.front();
        QCOMPARE(a.isWithin, fault.isEmpty());
        QCOMPARE(a.held.coefficients, coefficients); // as held, also while they are off
        if (!isOn)
            QVERIFY(qAbs(a.figures->reached.primaries.red.x - m_content.measured.rLxy.x) < 1e-6);
    }

    void aDeviceThatHasNotEverythingIsAFault()
    {
        const Journal held = journal({1, m_right, true}, Outcome::Kind::NotSent);
        QCOMPARE(good(verify(held, 11.0)).faults, QStringList("a: not everything was sent"));
        TestWall wall(failingBy("error"));
        good(calibrate(wall, m_content, m_folder.filePath("out")));
        const QString path = journalPath(m_folder.filePath("out"));
        const QByteArray text = readFile(path);
        writeFile(path, text.left(text.indexOf("\"device\":\"c\"")));
        const auto cut = good(verify(good(Journal::read(path)), 11.0)).faults;
        QVERIFY2(cut.contains("b: not everything was sent") && cut.contains("c: not served"),
                 qPrintable(cut.join(' ')));
        writeFile(path, text.left(text.indexOf('\n') + 1));
        QCOMPARE(faultText(verify(good(Journal::read(path)), 11.0)),
                 QString("BadData: calibration: no device was served"));
    }
};

QTEST_GUILESS_MAIN(VerificationTest)
#include "tst_verification.moc"
