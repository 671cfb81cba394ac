#include "support/calibrationsetup.h"
#include <calibration/additivity.h>
#include <calibration/gamutrequest.h>

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Calibration;

namespace {

const QString s_panel = QStringLiteral("measured-gamut.json");

ContentNames names(const QString& measured, const QString& target)
{
    ContentNames result;
    result.measured = measured;
    result.target = target;
    return result;
}

/// The panel's chromaticities with a white as far from the edge between red and green as is wanted, measured by the
/// share of blue in its luminance.
QString edgeWhite(double blueShare)
{
    const auto sum = *Colour::sumOfPrimaries({{0.69, 0.3}, 0.3}, {{0.17, 0.73}, 0.7}, {{0.13, 0.08}, 0.0});
    const double ofBlue = blueShare / 0.08; // X + Y + Z, of red and green 1 / y
    const double all = (1.0 - blueShare) / sum.xy.y + ofBlue;
    return QString("%1,%2")
        .arg(((1.0 - blueShare) * sum.xy.x / sum.xy.y + 0.13 * ofBlue) / all, 0, 'g', 17)
        .arg(1.0 / all, 0, 'g', 17);
}

} // namespace

class GamutsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(QDir::setCurrent(EXAMPLES)); }

    void whatIsNoGamutIsRefused_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::newRow("nonsense") << "NoInput: gamut nonsense: neither a standard gamut nor a file";
        QTest::newRow("gray-table.csv") << "BadData: gamut gray-table.csv, line 2, column 1: expected a heading with "
                                           "x, y, Y or X, Y, Z, or a CGATS "
                                           "or JSON text, found \"red,green,blue,magnitude\"";
        QTest::newRow("wall.json")
            << "BadData: gamut wall.json: RedPoint: expected an object with lum, x and y, found nothing";
        const auto row = [](const char* text, const char* fault) {
            QTest::newRow(text) << QString("BadData: gamut %1: %2").arg(text, fault);
        };
        row("0.6,0.3:0.3,0.6", "expected rx,ry:gx,gy:bx,by with a white behind it, found \"0.6,0.3\"");
        row("0.6,0.3:0.3,0.6:0.1,0.1",
            "expected rx,ry:gx,gy:bx,by with a white behind it, found \"0.6,0.3:0.3,0.6:0.1,0.1\"");
        row("nan,0.3:0.3,0.6:0.1,0.1:0.3,0.3", "expected a number, found \"nan\"");
        row("0.6,0.3:0.3,0.6:0.1,0:0.3,0.3", "blue: y must be above 0, found 0");
        row("0.8,0.3:0.3,0.6:0.1,0.1:0.3,0.3", "red: (0.8, 0.3) lies outside the chromaticity diagram");
        row("0.6,0.3:0.5,0.35:0.4,0.4:0.3,0.3", "the primaries lie on one line");
        row("0.6,0.3:0.3,0.6:0.1,0.1:0.7,0.2",
            "white (0.7, 0.2) needs -1 of green in its luminance, at least 1e-06 is needed");
        row("rec709:x",
            "expected a white (D50, D55, D65, D75, 6500K, 6500K-planck or x,y), and behind it a luminance in cd/m2, "
            "found \"x\"");
        row("rec709:0", "expected a luminance of 0.001 to 1000000 cd/m2, found \"0\"");
        row("rec709:3999K", "expected daylight of 4000K to 25000K (-planck is a black body), found \"3999K\"");
        row("rec709:999K-planck", "expected 1000K to 100000K, found \"999K-planck\"");
        QTest::newRow("measured-gamut.json:3000") << "BadData: gamut measured-gamut.json: expected no luminance beside "
                                                     "the measured one, found 3000 beside 3120 cd/m2";
        row("measured-gamut.json:D65", "expected the white that was measured, found D65");
    }

    void whatIsNoGamutIsRefused()
    {
        const auto read = readMeasured(QTest::currentDataTag());
        QTEST(faultText(read), "fault");
    }

    void targetsAreReadAsPeopleWriteThem_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("redX");
        QTest::addColumn<double>("whiteX");
        QTest::addColumn<double>("luminance");
        const auto row = [](const char* text, const char* name, double redX, double whiteX, double luminance = 0.0) {
            QTest::newRow(text) << name << redX << whiteX << luminance;
        };
        for (const char* text : {"srgb", "bt709", "Rec709", "BT.709", "Rec.709 / sRGB"})
            row(text, "Rec.709 / sRGB", 0.64, 0.3127);
        row("display-p3", "P3-D65", 0.68, 0.3127);
        row("Adobe RGB (1998)", "Adobe RGB (1998)", 0.64, 0.3127);
        row("rec709:2800", "Rec.709 / sRGB", 0.64, 0.3127, 2800);
        row("bt2020:d50:800.5", "BT.2020, white d50", 0.708, 0.3457, 800.5);
        row("native", "native, white D65", 0.69, 0.3127);
        row("native:6504K", "native, white 6504K", 0.69, 0.31271);
        row("NATIVE:5000K-Planck:100", "native, white 5000K-Planck", 0.69, 0.34510, 100);
        row("0.3,0.31", "native, white 0.3,0.31", 0.69, 0.3);
        row("0.63,0.34:0.3,0.6:0.15,0.06:D65:50", "0.63,0.34:0.3,0.6:0.15,0.06:D65:50", 0.63, 0.3127, 50);
        row("measured-gamut.json", "Panel 2026-11", 0.69, 0.2863, 3120);
        row("measured-gamut.json:D75:900", "Panel 2026-11, white D75", 0.69, 0.2990, 900);
    }

    void targetsAreReadAsPeopleWriteThem()
    {
        const auto panel = good(readMeasured(s_panel)).gamut;
        const auto gamut = good(onWall(good(readTarget(QTest::currentDataTag(), false)), panel));
        QTEST(nameOf(gamut), "name");
        QFETCH(double, redX);
        QFETCH(double, whiteX);
        QFETCH(double, luminance);
        QCOMPARE(gamut.rLxy.x, redX);
        QVERIFY2(qAbs(gamut.wLxy.x - whiteX) < 1e-5, qPrintable(QString::number(gamut.wLxy.x)));
        QCOMPARE(gamut.wLxy.lum, luminance);
        QVERIFY(qAbs(gamut.rLxy.lum + gamut.gLxy.lum + gamut.bLxy.lum - luminance) < 1e-9);
    }

    void ofANiccDocumentATargetIsItsTarget()
    {
        const QTemporaryDir folder;
        const QJsonObject both{{"LEDColorGamnut", gamutToJson(standardGamut("bt2020"))},
                               {"TargetColorGamnut", gamutToJson(standardGamut("ebu"))}};
        const QString file = writeFile(folder.filePath("x.nicc"), QJsonDocument(both).toJson());
        QCOMPARE(good(readTarget(file, false)).gamut.gLxy.x, 0.29);
        QCOMPARE(good(readMeasured(file)).gamut.gLxy.x, 0.17);
    }

    void nearestStandardNameIsOffered()
    {
        const auto hint = [](const char* text) { return readTarget(text, false).fault().hint; };
        QVERIFY2(hint("rec708").startsWith("did you mean rec709?"), qPrintable(hint("rec708")));
        QVERIFY2(hint("dispaly-p3:D65").startsWith("did you mean p3-d65?"), qPrintable(hint("dispaly-p3:D65")));
        const std::pair<const char*, const char*> meant[] = {{"srbg", "rec709"},
                                                             {"adobe", "adobe-rgb"},
                                                             {"nativ", "native"},
                                                             {"D66", "D65"},
                                                             {"6500", "native:6500K or native:6500"}};
        for (const auto& [text, name] : meant)
            QVERIFY2(hint(text).startsWith(QString("did you mean %1?").arg(name)), qPrintable(text + hint(text)));
        QVERIFY2(hint("panel.json").startsWith("standard gamuts: rec709, "), qPrintable(hint("panel.json")));
    }

    void primariesThatAreNotWhatTheyAreCalledAreRefusedUnlessForced_data()
    {
        QTest::addColumn<QString>("found");
        const auto row = [](const char* gamut, const char* found) { QTest::newRow(gamut) << found; };
        row("0.3,0.6:0.64,0.33:0.15,0.06:D65:9", "red (0.3, 0.6) has the hue of green: are the primaries swapped?");
        row("0.64,0.33:0.15,0.06:0.3,0.6:D65:9", "green (0.15, 0.06) has the hue of blue: are the primaries swapped?");
        row("0.3,0.6:0.15,0.06:0.64,0.33:D65:9", "red (0.3, 0.6) has the hue of green: are the primaries swapped?");
        row("0.24,0.22:0.3,0.42:0.4,0.32:0.31,0.32:9",
            "red (0.24, 0.22) has the hue of blue: are the primaries swapped?");
        row("brighter.json", "green, 200 cd/m2, is brighter than white, 100 cd/m2");
        row("0.4,0.32:0.3,0.42:0.24,0.22:0.31,0.32:9", ""); // narrow, and right
        for (const char* right : {"bt2020:9", "ntsc1953:9", "measured-gamut.json"})
            row(right, "");
    }

    void primariesThatAreNotWhatTheyAreCalledAreRefusedUnlessForced()
    {
        const QTemporaryDir folder;
        QString text = QTest::currentDataTag();
        if (text == "brighter.json") {
            auto gamut = gamutOf(Colour::standardGamuts.front().primaries, 100.0);
            gamut.gLxy.lum = 200.0;
            text = writeFile(folder.filePath(text), QJsonDocument(gamutToJson(gamut)).toJson());
        }
        ContentNames request = names(text, "native");
        const auto refused = readGamuts(request);
        QTEST(refused ? QString() : refused.fault().found, "found");
        request.force = true;
        QVERIFY(readGamuts(request));
        QCOMPARE(bool(readTarget(text, false)), bool(refused) || text.endsWith("brighter.json"));
        QVERIFY(readTarget(text, true));
        const auto warnings = good(readGamuts(request)).warnings;
        QVERIFY2(refused ? warnings.isEmpty() : warnings.join('|').contains(refused.fault().found),
                 qPrintable(warnings.join('|')));
    }

    void luminanceIsNeverInvented()
    {
        const QString chromaticities = "0.69,0.3:0.17,0.73:0.13,0.08:0.2863,0.2949";
        const auto refused = readContent(names(chromaticities, "rec709"));
        QCOMPARE(faultText(refused),
                 "BadData: gamut " + chromaticities + ": expected luminances in cd/m2, found none of red");
        QVERIFY(refused.fault().hint.startsWith(chromaticities + ":2800 gives"));
        QCOMPARE(good(readGamuts(names(chromaticities, "rec709"))).measured.wLxy.lum, 0.0);
        QVERIFY(readContent(names(chromaticities + ":3120", "rec709")));
        for (const char* lacking : {"rec709", "native", "native:D65:900"})
            QVERIFY(!readTargetToSend(names({}, lacking)));
        QCOMPARE(good(readTargetToSend(names({}, "rec709:900"))).wLxy.lum, 900.0);
        QCOMPARE(faultText(readTargetToSend(names(chromaticities, "rec709:900"))),
                 QString("BadData: target Rec.709 / sRGB: expected a measured gamut with luminances beside its own, "
                         "found 900 cd/m2"));
    }

    void targetGetsTheLuminanceThatTheWallKeepsOrItsOwn()
    {
        const auto kept = good(readTargetToSend(names(s_panel, "rec709")));
        QVERIFY2(qAbs(kept.wLxy.lum / (3120.0 * 0.95365319) - 1.0) < 1e-4, qPrintable(QString::number(kept.wLxy.lum)));
        QVERIFY(qAbs(kept.rLxy.lum / kept.wLxy.lum - 0.2126) < 1e-4); // the share of red in BT.709's luma
        const auto dimmed = good(
            computeFigures(good(readMeasured(s_panel)).gamut, good(readTargetToSend(names(s_panel, "rec709:1560")))));
        QVERIFY(qAbs(dimmed.corners.whiteKept - 0.5) < 1e-4);
        QCOMPARE(faultText(readTargetToSend(names(s_panel, "rec709:3000"))),
                 QString("BadData: target Rec.709 / sRGB: expected a white of at most 2975.4 cd/m2, which the wall "
                         "keeps, found 3000 cd/m2"));
    }

    void whiteBesideTheEdgeIsRefusedWithWords_data()
    {
        QTest::addColumn<double>("blueShare");
        QTest::addColumn<bool>("isShown");
        QTest::newRow("on it") << 0.0 << false;
        QTest::newRow("1e-9 inside") << 1e-9 << false;
        QTest::newRow("1e-9 outside") << -1e-9 << false;
        QTest::newRow("1e-4 inside") << 1e-4 << true;
    }

    void whiteBesideTheEdgeIsRefusedWithWords()
    {
        QFETCH(double, blueShare);
        QFETCH(bool, isShown);
        const QString white = edgeWhite(blueShare);
        const auto asked = readGamuts(names(s_panel, white));
        const auto measured = readMeasured("0.69,0.3:0.17,0.73:0.13,0.08:" + white);
        QCOMPARE(bool(asked), isShown);
        QCOMPARE(bool(measured), isShown);
        if (isShown)
            return;
        QVERIFY2(faultText(asked).startsWith("BadData: target " + white +
                                             ": expected a white inside the triangle of Panel 2026-11, found white ("),
                 qPrintable(faultText(asked)));
        const QString share = blueShare == 0.0 ? "e-16" : QString::number(blueShare);
        for (const QString& words : {faultText(asked), faultText(measured)})
            QVERIFY2(words.endsWith(share + " of blue in its luminance, at least 1e-06 is needed"), qPrintable(words));
    }

    void whiteIsComparedWithTheSumOfItsPrimaries()
    {
        const auto panel = good(readMeasured(s_panel));
        QVERIFY(!additivityOf(panel)->isContradiction());
        const auto wrong = good(readMeasured("contradictory-gamut.json"));
        const auto additivity = *additivityOf(wrong);
        QVERIFY(additivity.isContradiction());
        QCOMPARE(additivity.sentence(),
                 QString("Red, green and blue add up to white 0.3128, 0.3292 at 2897.0 cd/m2, white was measured as "
                         "0.2863, 0.2949 at 3120.0 cd/m2: -7.1 % of luminance, du'v' 0.0243"));
        QCOMPARE(good(withWhite(wrong, WhiteSource::Measured)), wrong.gamut);
        const auto summed = good(withWhite(wrong, WhiteSource::Sum));
        QVERIFY(qAbs(summed.wLxy.lum - 2897.0) < 1e-9 && qAbs(summed.wLxy.x - 0.3128) < 5e-5);
        const auto typed = good(readMeasured("rec709:500")); // adds up, whatever it is
        QVERIFY(!additivityOf(typed) && good(withWhite(typed, WhiteSource::Sum)) == typed.gamut);
        for (const auto& [luminance, isWrong] :
             {std::pair(1.019, false), {1.021, true}, {0.981, false}, {0.979, true}}) {
            auto scaled = panel;
            for (std::size_t i = 0; i < 3; ++i)
                scaled.patches.points[i].mean.lum *= luminance / (1.0 + additivityOf(panel)->luminance);
            QCOMPARE(additivityOf(scaled)->isContradiction(), isWrong);
        }
        auto doubtful = panel;
        doubtful.patches.points[0].spreadXy = 0.006;
        doubtful.patches.points[1].spreadLuminance = 0.06;
        doubtful.patches.black = PatchReadings{1, {200.0, 0.3, 0.3, {}}};
        doubtful.observer = "1964_10";
        QCOMPARE(warningsOf(panel, WhiteSource::Measured).size(), 0);
        QCOMPARE(warningsOf(doubtful, WhiteSource::Measured).size(), 4);
        auto tinted = panel;
        tinted.patches.points[3].mean.y += 0.006;
        QVERIFY(additivityOf(tinted)->isContradiction());
    }
};

QTEST_GUILESS_MAIN(GamutsTest)
#include "tst_gamuts.moc"
