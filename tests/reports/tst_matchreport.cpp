#include "support/calibrationsetup.h"
#include <reports/matchreport.h>

#include <QApplication>
#include <QJsonArray>
#include <QTest>

using namespace Reports;

namespace {

Calibration::Matching matchingOf(const QStringList& measured, const QString& target)
{
    Calibration::MatchNames names;
    names.measured = measured;
    names.target = target;
    return good(Calibration::readMatching(names));
}

} // namespace

class MatchReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void limitsAreSaidInWords_data()
    {
        QTest::addColumn<QStringList>("measured");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QStringList>("limits");
        QTest::newRow("one inside another") // 1.256: the ratio of the areas in u'v'
            << QStringList{"a=rec709:1200", "b=p3-d65:1000"} << "common"
            << QStringList{"group b holds the wall at 1,000 cd/m2; without it 1,200 (+20.0 %)",
                           "red lies on group a",
                           "green lies on group a",
                           "blue lies on groups a and b",
                           "the edge red to green is that of group a",
                           "the edge green to blue is that of group a",
                           "the edge blue to red is that of group a",
                           "without group a the common triangle has +25.6 % of area in u'v' and covers 100.0 % of "
                           "Rec. 709 (now 100.0 %)"};
        QTest::newRow("a standard, two as dim")
            << QStringList{"a=rec709:1000", "b=rec709:1000"} << "rec709"
            << QStringList{"group a and others as dim hold the wall at 1,000 cd/m2"};
        QTest::newRow("one group") << QStringList{"rec709:1000"} << "common" << QStringList();
    }
    void limitsAreSaidInWords()
    {
        QFETCH(QStringList, measured);
        QFETCH(QString, target);
        const auto matching = matchingOf(measured, target);
        QTEST(limitsOf(matching.match), "limits");
        const QString text = toText(matching, {});
        for (const QString& limit : limitsOf(matching.match))
            QVERIFY2(text.contains(limit + '\n'), qPrintable(text));
    }

    void aChartTellsFewGroupsApartAndOutlinesMany()
    {
        QStringList measured{"a=rec709:1000", "b=p3-d65:1000"};
        const QByteArray few = matchChart(matchingOf(measured, "common"), Charts::Plane::UvPrime).toSvg();
        QVERIFY(few.contains(">group b<") && !few.contains(" groups<"));
        measured << "c=rec709:1000"
                 << "d=bt2020:900"
                 << "e=rec709:800";
        const QByteArray many = matchChart(matchingOf(measured, "common"), Charts::Plane::UvPrime).toSvg();
        QVERIFY(many.contains(">5 groups<") && !many.contains(">group b<"));
    }

    void seamsAreWorstFirstAndCounted()
    {
        QStringList measured;
        for (int i = 0; i < 7; ++i)
            measured << QString("g%1=rec709:%2").arg(i).arg(1000 + i);
        measured[3] = "g3=p3-d65:1000";
        const auto matching = matchingOf(measured, "common:500");
        const auto seams = Calibration::seamsOf(matching.match);
        const QJsonObject json = toJson(matching, seams);
        QCOMPARE(json["seams"].toArray().size(), 21);
        double last = 100.0;
        for (const QJsonValue seam : json["seams"].toArray()) {
            QVERIFY(seam["after_ciede2000"].toDouble() <= last);
            last = seam["after_ciede2000"].toDouble();
            QCOMPARE(seam["before_ciede2000"].toDouble() > 1.0, seam["between"] == "g3" || seam["and"] == "g3");
        }
        QVERIFY(toText(matching, seams).endsWith("and 11 seams that are not worse\n"));
        QCOMPARE(json["without"].toArray().size(), 7);
    }
};

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen"); // for the chart
    const QApplication application(argc, argv);
    MatchReportTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_matchreport.moc"
