#include "support/calibrationsetup.h"
#include "support/filesizelimit.h"
#include <reports/afterreport.h>
#include <reports/calibrationreport.h>
#include <reports/explanation.h>
#include <reports/figuresreport.h>
#include <reports/sendreport.h>
#include <reports/verificationreport.h>

#include <QApplication>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

using namespace Reports;

class ReportsTest : public QObject
{
    Q_OBJECT

private:
    QString in(const QString& name) const { return m_folder.filePath(name); }
    ReportFiles files() const
    {
        return {{in("xy.svg"), in("uv.svg"), in("gray.svg")}, in("report.html"), in("report.pdf")};
    }
    ReportDetails details() const { return {"tool 1", QDateTime::fromSecsSinceEpoch(0), {{"site", "<Hall %1>"}}}; }
    /// Its bytes and its text.
    QByteArray htmlOf(const Calibration::RunResult& result) const
    {
        return toHtml(documentOf(result, m_content, details(), {}));
    }
    /// What became of a wall whose device b refuses everything.
    Calibration::RunResult failedRun(const Calibration::Content& content) const
    {
        const QTemporaryDir folder;
        return good(calibrate(TestWall(failingBy("error")), content, folder.path()));
    }

    QTemporaryDir m_folder;
    const Calibration::Content m_content = exampleContent();
    const Calibration::Figures m_figures = good(Calibration::figuresOf(m_content.measured, m_content.target));

private Q_SLOTS:
    void figuresAreFractionsAndComeFromTheIntegers()
    {
        const QJsonObject json = toJson(m_figures);
        QCOMPARE(json["coefficients"], QJsonValue(QJsonArray{10264, 5297, 823, 960, 16216, -1006, 99, 365, 11230}));
        QCOMPARE(json["measured"].toString(), QString("Panel 2026-11"));
        QVERIFY(qAbs(json["light_kept"].toDouble() - 0.95365) < 1e-4);
        const QJsonValue blue = json.value("reached")[2];
        QVERIFY(blue["point"] == "blue" && blue["out_of_reach"].toBool() && blue["ciede2000"].toDouble() > 5.0);
        QVERIFY(blue["ciede2000_not_held"].toDouble() < 0.01);
        const QJsonValue white = json.value("reached")[6];
        QVERIFY(!white["out_of_reach"].toBool() && qAbs(white["x"].toDouble() - 0.3127) < 2e-4);
        QCOMPARE(json.value("reached")[10]["point"], QJsonValue("gray 10 %"));
        QCOMPARE(reachText(m_figures),
                 QString("Out of the LEDs' reach, in CIEDE2000: blue by 10.26 (asks -0.061 of green), yellow by 1.94 "
                         "(asks 1.048 of green), magenta by 0.17 (asks -0.003 of green)."));
        auto target = m_content.target; // red gives no light: no chromaticity, no triangle
        target.coeff.setCoeffs({0, 5297, 823, 0, 16216, 64530, 0, 365, 11230});
        const auto noRed = good(Calibration::figuresOf(m_content.measured, target));
        QVERIFY(toJson(noRed).value("reached")[0]["x"].isUndefined() &&
                reachTable(noRed, "k").toText().contains("  -               k\n"));
        QVERIFY(!correctionChart(noRed, Charts::Plane::Xy).toSvg().contains("reached"));
        const auto p3 = good(Calibration::computeFigures(standardGamut("p3-d65"), standardGamut("bt2020")));
        QVERIFY(qAbs(toJson(p3)["area_ratio_xy"].toDouble() - 0.7174329118) < 1e-9);
        QVERIFY(qAbs(toJson(p3)["coverage_uv"].toDouble() - 0.7284919140) < 1e-9);
        QVERIFY(coefficientLines(m_figures.coefficients).startsWith("   10264    5297     823\n"));
        const QString explained = toText(explain(m_figures));
        QVERIFY2(explained.contains("0.95365319") && explained.contains("[SMPTE RP 177]"), qPrintable(explained));
        QCOMPARE(toJson(explain(m_figures)).size(), 11);
    }

    void aReportSaysWhatBecameOfEachDevice()
    {
        auto result = failedRun(m_content);
        result.resumed << "a";
        const QJsonObject json = toJson(result, m_content);
        QCOMPARE(json["destination"].toString(), QString("test wall"));
        QVERIFY(json.value("verdict")["sentence"].toString().startsWith("PARTLY APPLIED: 2 of 3 devices"));
        QCOMPARE(json.value("devices")[0]["known"], QJsonValue("read back"));
        QVERIFY(json.value("devices")[0]["done"].toBool() && json.value("devices")[0]["resumed"].toBool());
        QVERIFY(!json.value("devices")[1]["done"].toBool() && !json.value("devices")[2]["resumed"].toBool());
        QCOMPARE(json["results"].toArray().size(), 18);
        QVERIFY(json.value("results")[6]["error"].toString().contains("reports an error") &&
                json.value("results")[0]["error"].isUndefined() && !json.value("results")[7]["sent"].toBool());
        const QString text = toText(result, m_content);
        QVERIFY2(text.contains("done before") && text.contains("binary: device \"b\" reports an error (simulated), "
                                                               "0 of 2 cabinets hold it"),
                 qPrintable(text));
    }

    void namesReachReportsAsText()
    {
        auto content = m_content;
        content.measured.name = "</title><script>%1&";
        auto result = failedRun(content);
        result.destination = "<script>%2";
        QVERIFY(writeReport(result, content, details(), files()));
        const QByteArray html = readFile(in("report.html"));
        QVERIFY(!html.contains("<script") && html.contains("&lt;/title&gt;&lt;script&gt;%1&amp;"));
        QVERIFY(html.contains("<title>PARTLY APPLIED: Calibration of &lt;script&gt;%2</title>"));
        QVERIFY(html.contains("&lt;Hall %1&gt;"));
        QVERIFY(!html.contains("<?xml") && !html.contains("<link") && html.count("<figure") == 3);
        QCOMPARE(result.files.mid(result.files.size() - 5), files().all());
        for (const QString& chart : files().charts) {
            QXmlStreamReader xml(readFile(chart));
            while (!xml.atEnd())
                xml.readNext();
            QVERIFY2(!xml.hasError(), qPrintable(chart + xml.errorString()));
        }
    }

    void aReportIsKnownByItsBegin()
    {
        auto result = failedRun(m_content);
        QVERIFY(isReport(writeFile(in("r.html"), htmlOf(result))));
        QVERIFY(isReport(writeFile(in("r.pdf"), good(toPdf(documentOf(result, m_content, details(), {}))))));
        QVERIFY(!isReport(writeFile(in("r.pdf"), "%PDF-1.4\n(Mine)")));
        QVERIFY(!isReport(writeFile(in("r.html"), "<!DOCTYPE html>\n<title>Mine</title>")));
        QVERIFY(!isReport(in("absent")) && !isReport(m_folder.path()));
        const FileSizeLimit full(3000); // less than a chart
        QCOMPARE(faultText(writeReport(result, m_content, details(), files())),
                 "InputOutput: " + in("xy.svg") + ": File too large");
    }

    void aReportCannotBeTakenForABetterOne()
    {
        const auto failed = failedRun(m_content);
        const QByteArray half = htmlOf(failed);
        QVERIFY(half.contains("<title>PARTLY APPLIED") && half.contains("device &quot;b&quot; reports an error"));
        QVERIFY(half.contains("2 of 3 devices hold everything") && half.contains("Their steps, one by one"));
        auto stopped = failed;
        stopped.verification.verdict.kind = Calibration::Verdict::Kind::Interrupted;
        QVERIFY(htmlOf(stopped).contains("<title>INTERRUPTED"));
        QVERIFY(half.contains("simulated: no light was seen") == failed.verification.verdict.isSimulated);
        const QTemporaryDir folder;
        const auto done = good(calibrate(TestWall(), m_content, folder.path()));
        const QByteArray whole = htmlOf(done);
        QVERIFY(whole.contains("<title>PASSED") && !whole.contains("PARTLY") && !whole.contains("Warning"));
        QVERIFY(whole.contains("3 of 3 devices hold everything") && !whole.contains("Their steps"));
    }

    void contradictionIsSaidInEveryForm()
    {
        auto content = m_content;
        content.measurement = good(Calibration::readMeasured(EXAMPLES "/contradictory-gamut.json"));
        content.warnings = warningsOf(content.measurement, Calibration::WhiteSource::Measured);
        const auto result = failedRun(content);
        const QString words = "Red, green and blue add up to white 0.3128, 0.3292 at 2897.0 cd/m2, white was measured "
                              "as 0.2863, 0.2949 at 3120.0 cd/m2";
        QVERIFY(toText(result, content).contains("Warning: " + words));
        QVERIFY(toHtml(documentOf(result, content, details(), {})).contains(words.toUtf8()));
        const QJsonValue additivity = toJson(result, content).value("additivity");
        QVERIFY(additivity["contradiction"].toBool() &&
                qAbs(additivity["sum"]["luminance"].toDouble() - 2897.0) < 1e-9);
        QVERIFY(!toText(result, m_content).contains("Warning"));
    }

    void aChartShowsWhatWasRead()
    {
        const QString path = writeFile(in("table.csv"), "1 2 3 4\n5 6 7 8\n");
        const auto content = exampleContent(path);
        const QByteArray before = grayTableChart(content.table, "t").toSvg();
        writeFile(path, "200 200 200 200\n");
        QCOMPARE(grayTableChart(content.table, "t").toSvg(), before);
        QVERIFY(before.contains("magnitude") && before != grayTableChart(exampleContent(path).table, "t").toSvg());
        QVERIFY(correctionChart(m_figures, Charts::Plane::Xy).toFormat("png").startsWith("\x89PNG"));
    }

    void verificationsSayWhatIsWrong()
    {
        Calibration::DeviceRecord a = failedRun(m_content).records.front();
        Calibration::DeviceRecord b = a;
        b.device = "b";
        b.held.append({1, {}, true});
        for (auto& outcome : b.outcomes)
            outcome.arrived = ++outcome.cabinets;
        const auto verification = Calibration::judge(m_content.measured, m_content.target, {a, b}, {});
        const QString text = toText(verification);
        QVERIFY2(text.startsWith("DIFFERS: 2 of 2") && text.contains("\na       2         on          0.01") &&
                     text.contains("\nb       1         on          -          DARK    read back\n"),
                 qPrintable(text));
        QCOMPARE(text.count("Computed for the coefficients 10264 5297 "), 1); // for both devices
        const QJsonObject json = toJson(verification);
        QCOMPARE(json.value("devices")[2]["within"].toBool(), false);
        QVERIFY(json.value("devices")[2]["max_ciede2000"].isUndefined());
        QCOMPARE(json["shown"].toArray().size(), 1);
        QCOMPARE(json["coverage_uv"], toJson(m_figures)["coverage_uv"]);
        QVERIFY(!json.value("verdict")["passed"].toBool() && json["simulated"] == false);
    }

    void whatWasNotMeasuredIsNotSaid()
    {
        const auto records = failedRun(m_content).records;
        const auto judged = Calibration::judge(m_content.measured, m_content.target, records, {});
        for (const double white : {0.0, 2500.0}) {
            const auto measurement = measurementOf(m_figures, white);
            const auto after = good(Calibration::compareAfter(judged, measurement, {}));
            const QString text = toText(after, measurement);
            QVERIFY2(text.contains(white > 0.0 ? "\nwhite  3120.00  2975.37   2500.00\n"
                                               : "\nwhite  3120.00  2975.37   -\n"),
                     qPrintable(text));
            const QJsonValue last = toJson(after, measurement).value("points")[3];
            QVERIFY(last["after_cd_m2"].toDouble() == white && last["after_cd_m2"].isUndefined() == (white == 0.0));
            QVERIFY(qAbs(last["target_xy"][1].toDouble() - 0.329) < 1e-9);
        }
    }

    void aSendingSaysWhatTheCabinetsHold()
    {
        const TestWall wall;
        SendResult result;
        result.isSimulated = true;
        result.steps = {Calibration::modeStep(true, true), Calibration::grayStep(m_content.table, "t%1")};
        result.before = Calibration::readBack(*wall.cabinets, {{"a", {1, 2}}});
        for (const auto& step : result.steps)
            result.outcomes.push_back(Calibration::sendToDevice(step, "a", {1, 2}, wall.cabinets.get()));
        result.now = Calibration::readBack(*wall.cabinets, {{"a", {1, 2}}});
        const QString text = toText(result);
        QVERIFY2(text.contains("  gray: gray table t%1, 256 levels, 60 Hz\n") &&
                     text.contains("  a, 1 cabinets: mode 12 | gray table 256 levels, 60 Hz | target gamut none"),
                 qPrintable(text));
        QVERIFY(text.startsWith("Sent to simulated cabinets:\n") && toJson(result)["simulated"].toBool());
        const QJsonValue second = toJson(result).value("cabinets")[1];
        QVERIFY(second["mode_before"] == 4 && second["mode"] == 12 && second["gray_levels"] == 256);
        QVERIFY(!second["has_measured_gamut"].toBool() && second["coefficients"].isUndefined());
    }
};

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    ReportsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_reports.moc"
