#include "support/logcapture.h"
#include <qualityutility/data/computenicccoef.h>

#include <QTest>

#include <algorithm>

namespace {

Model::ColorGamutInfo panel()
{
    Model::ColorGamutInfo info;
    info.name = "Panel";
    info.rLxy = {809.05, 0.69, 0.3, {}};
    info.gLxy = {1796.57, 0.17, 0.73, {}};
    info.bLxy = {291.38, 0.13, 0.08, {}};
    info.wLxy = {3120, 0.2863, 0.2949, {}};
    return info;
}

Model::ColorGamutInfo rec709()
{
    Model::ColorGamutInfo info;
    info.name = "Rec.709";
    info.rLxy = {21.26, 0.64, 0.33, {}};
    info.gLxy = {71.52, 0.3, 0.6, {}};
    info.bLxy = {7.22, 0.15, 0.06, {}};
    info.wLxy = {1234567, 0.3127, 0.329, {}};
    return info;
}

} // namespace

class ComputeNICCCoefTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogCapture>(); }
    void cleanup() { m_log.reset(); }

    void resultsGoIntoTheTargetRecord()
    {
        Model::ColorGamutInfo target = rec709();
        QVERIFY(ComputeNICCCoef::createCoef(panel(), target));
        // Negative coefficients are kept as their bits: -1006.
        QCOMPARE(target.coeff.getCoeffs(),
                 (std::vector<unsigned short>{10264, 5297, 823, 960, 16216, 64530, 99, 365, 11230}));
        QVERIFY(qAbs(target.cover - 0.9791856968) < 1e-9);
        QVERIFY(qAbs(target.orgCover - 1.5850066934) < 1e-9);
        Model::ColorGamutInfo untouched = rec709();
        untouched.coeff = target.coeff;
        untouched.cover = target.cover;
        untouched.orgCover = target.orgCover;
        QCOMPARE(target, untouched);
    }

    void inputsAndOutputsAreLogged()
    {
        Model::ColorGamutInfo target = rec709();
        ComputeNICCCoef::createCoef(panel(), target);
        const QStringList expected{
            R"(info default: input whitelumratio "0" targetTemp blue x "0.15" targetTemp blue y "0.06" )"
            R"(targetTemp green x "0.3" targetTemp green y "0.6" targetTemp red x "0.64" targetTemp red y "0.33" )"
            R"(orgTemp blue x "0.13" orgTemp blue y "0.08" orgTemp green x "0.17" orgTemp green y "0.73" )"
            R"(orgTemp red x "0.69" orgTemp red y "0.3" whiteLxy x "0.3127" whiteLxy y "0.329" )"
            R"(whiteLxy l "1.23457e+06" orgWhiteLxy x "0.2863" orgWhiteLxy y "0.2949" orgWhiteLxy l "3120")",
            R"(info default: output "10264" "5297" "823" "960" "16216" "-1006" "99" "365" "11230")"};
        QCOMPARE(m_log->take(), expected);
    }

    void theRatioIsHandedOn()
    {
        Model::ColorGamutInfo target = rec709();
        target.wLxy.lum = 1560; // half of the panel's
        const Model::ColorGamutInfo source = panel();
        ComputeNICCCoef::computeSingleCoef(target, 1.0, ComputeNICCCoef::ColorGamutTransform(source),
                                           ComputeNICCCoef::GetWhiteLxy(source));
        QVERIFY(m_log->take().first().contains("whitelumratio \"1\""));
        QVERIFY(qAbs(target.coeff.getCoeffs().at(0) - 10264 * 0.5 / 0.95365319) < 1.0);
    }

    void aRecordThatIsNoGamutIsNamed()
    {
        Model::ColorGamutInfo target = rec709();
        target.gLxy = {}; // not measured
        target.cover = 0.5;
        QVERIFY(ComputeNICCCoef::createCoef(panel(), target));
        QCOMPARE(target.coeff.getCoeffs(), std::vector<unsigned short>(9, 0));
        QCOMPARE(target.cover, 0.0);
        QCOMPARE(target.orgCover, 0.0);
        const QStringList log = m_log->take();
        QCOMPARE(log.size(), 3);
        QVERIFY(log.last().startsWith("critical default:") && log.last().contains("Rec.709"));
    }

    void aWhiteThatCannotBeShownGivesZerosAndIsNamed_data()
    {
        QTest::addColumn<bool>("isSource");
        QTest::newRow("target white") << false;
        QTest::newRow("source white") << true;
    }

    void aWhiteThatCannotBeShownGivesZerosAndIsNamed()
    {
        QFETCH(bool, isSource);
        // From inside to outside of the own triangle, through the middle of its red-green edge and right beside it.
        for (const double beside : {-0.1, -1e-3, -1e-6, -1e-9, -1e-13, 0.0, 1e-13, 1e-9, 1e-6, 1e-3, 0.1}) {
            Model::ColorGamutInfo source = panel();
            Model::ColorGamutInfo target = rec709();
            Model::ColorGamutInfo& edge = isSource ? source : target;
            edge.wLxy.x = (edge.rLxy.x + edge.gLxy.x) / 2 + beside;
            edge.wLxy.y = (edge.rLxy.y + edge.gLxy.y) / 2 + beside;
            ComputeNICCCoef::createCoef(source, target);
            const std::vector<unsigned short> stored = target.coeff.getCoeffs();
            const std::vector<short> c(stored.begin(), stored.end());
            const bool isDark = std::count(c.begin(), c.end(), 0) == 9;
            QVERIFY(isDark == (beside > -1e-4));
            QVERIFY(isDark || (c[0] + c[1] + c[2] > 0 && c[3] + c[4] + c[5] > 0 && c[6] + c[7] + c[8] > 0));
            const QStringList lines = m_log->take().filter("critical default:").filter("Rec.709");
            QCOMPARE(lines.size(), isDark ? 1 : 0);
        }
    }

private:
    std::unique_ptr<LogCapture> m_log;
};

QTEST_APPLESS_MAIN(ComputeNICCCoefTest)
#include "tst_computenicccoef.moc"
