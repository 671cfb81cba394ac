#include "support/calibrationsetup.h"
#include <calibration/matching.h>

#include <QTemporaryDir>
#include <QTest>

using namespace Calibration;

namespace {

const QByteArray gamutA = "red,.69,.3,20\ngreen,.17,.73,60\nblue,.13,.08,10\nwhite,.28,.3,90\n";

/// Lines of a gamut behind other fields.
QByteArray lines(const QByteArray& before)
{
    QByteArray text = gamutA;
    text.replace('\n', '\n' + before).chop(before.size());
    return before + text;
}

CabinetSenderSpace::CabinetTargetMap wallTargets()
{
    return {{"left", {1, 2, 3, 4}}, {"right", {1, 2}}};
}

/// "left:1-4 right:1" of each group, or the fault.
QStringList assigned(const Result<std::vector<MeasuredGroup>>& groups,
                     const CabinetSenderSpace::CabinetTargetMap& run = wallTargets())
{
    if (!groups)
        return {faultText(groups)};
    const auto targets = assignCabinets(*groups, wallTargets(), run);
    if (!targets)
        return {faultText(targets)};
    QStringList texts;
    for (std::size_t i = 0; i < targets->size(); ++i)
        texts << QString("%1 = %2").arg((*groups)[i].name, cabinetsText((*targets)[i]));
    return texts;
}

} // namespace

class MeasuredGroupsTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString in(const QString& name) const { return m_folder.filePath(name); }

private Q_SLOTS:
    void files_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("groups");
        QTest::newRow("device and cabinet")
            << QByteArray("device,cabinet,label,x,y,Y\n") + lines("left,1-2,") + lines("left,\"3,4\",") +
                   lines("right,,")
            << QStringList{"left:1-2 = left:1-2", "left:3,left:4 = left:3-4", "right = right:1-2"};
        QTest::newRow("groups of several devices, mixed lines")
            << QByteArray("batch,device,cabinet,label,x,y,Y\n") + lines("A,left,1-3,") + lines("B,left,4,") +
                   lines("A,right,2,") + lines("B,right,1,")
            << QStringList{"A = left:1-3, right:2", "B = left:4, right:1"};
        QTest::newRow("CGATS") << QByteArray(
                                      "CTI3\nKEYWORD \"DEVICE\"\nBEGIN_DATA_FORMAT\nDEVICE RGB_R RGB_G RGB_B XYZ_X "
                                      "XYZ_Y XYZ_Z\nEND_DATA_FORMAT\nBEGIN_DATA\n"
                                      "left 100 0 0 60 25 1\nleft 0 100 0 14 60 8\nleft 0 0 100 20 12 130\n"
                                      "left 100 100 100 94 97 139\nright 100 0 0 50 20 1\n"
                                      "right 0 100 0 10 50 8\nright 0 0 100 18 10 120\n"
                                      "right 100 100 100 78 80 129\nEND_DATA\n")
                               << QStringList{"left = left:1-4", "right = right:1-2"};
        QTest::newRow("JSON") << QByteArray(R"({"groups": [
            {"name": "A", "cabinets": "left,right:1", "RedPoint": {"lum": 20, "x": 0.69, "y": 0.3},
             "GreenPoint": {"lum": 60, "x": 0.17, "y": 0.73}, "BluePoint": {"lum": 10, "x": 0.13, "y": 0.08},
             "WhitePoint": {"lum": 90, "x": 0.28, "y": 0.3}},
            {"cabinets": "right:2", "RedPoint": {"lum": 20, "x": 0.69, "y": 0.3},
             "GreenPoint": {"lum": 60, "x": 0.17, "y": 0.73}, "BluePoint": {"lum": 10, "x": 0.13, "y": 0.08},
             "WhitePoint": {"lum": 90, "x": 0.28, "y": 0.3}}]})")
                              << QStringList{"A = left:1-4, right:1", "right:2 = right:2"};
        QTest::newRow("one group is all")
            << QByteArray("label,x,y,Y\n") + gamutA << QStringList{" = left:1-4, right:1-2"};
        QTest::newRow("in none") << QByteArray("device,cabinet,label,x,y,Y\n") + lines("left,1-2,") + lines("right,2,")
                                 << QStringList{
                                        "BadData: measured groups: expected every cabinet in one of them, found "
                                        "left:3-4, right:1 in none"};
        QTest::newRow("in two") << QByteArray("device,cabinet,label,x,y,Y\n") + lines("left,,") + lines("left,2-3,")
                                << QStringList{"BadData: measured groups: expected every cabinet in one of them, found "
                                               "left:2-3 in left and in left:2-3"};
        QTest::newRow("no such device") << QByteArray("device,cabinet,label,x,y,Y\n") + lines("lift,,") +
                                               lines("right,,")
                                        << QStringList{"Usage: group lift: the wall has no device lift"};
        QTest::newRow("no such cabinet") << QByteArray("device,cabinet,label,x,y,Y\n") + lines("left,,") +
                                                lines("right,1-3,")
                                         << QStringList{"Usage: group right:1-3: the wall has no cabinet right:3"};
        QTest::newRow("no range") << QByteArray("device,cabinet,label,x,y,Y\n") + lines("left,all,") + lines("right,,")
                                  << QStringList{
                                         "BadData: gamut F, group left:all: expected DEVICE or DEVICE:RANGE, as "
                                         "left:1-4, found \"left:all\""};
        QTest::newRow("no device") << QByteArray("device,cabinet,label,x,y,Y\n") + lines(",1,") + lines("right,,")
                                   << QStringList{
                                          "BadData: gamut F, line 2, column 1, device: expected a device, found "
                                          "nothing"};
        QTest::newRow("a patch that one lacks")
            << QByteArray(QByteArray("device,label,x,y,Y\n") + lines("left,") + lines("right,"))
                   .replace("right,blue", "right,cyan")
            << QStringList{
                   "BadData: gamut F, line 9, column 1, group right: expected readings of full red, green, blue "
                   "and white, found none of blue among 4"};
    }
    void files()
    {
        QFETCH(QByteArray, content);
        const QString file = writeFile(in("f"), content);
        QTEST(assigned(readMeasuredGroups({file})).replaceInStrings(file, "F"), "groups");
        if (!QByteArray(QTest::currentDataTag()).startsWith("one"))
            QVERIFY(!readMeasured(file)); // nobody takes the first of them for all
    }

    void texts_data()
    {
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QStringList>("groups");
        QTest::newRow("named") << QStringList{"left:1-3=rec709:100", "left:4,right=p3-d65:100"}
                               << QStringList{"left:1-3 = left:1-3", "left:4,right = left:4, right:1-2"};
        QTest::newRow("a gamut beside others")
            << QStringList{"left=rec709:100", "p3-d65:100"}
            << QStringList{"Usage: group p3-d65:100: expected CABINETS=GAMUT beside other groups, as left:1-4=a.ti3, "
                           "found no cabinets"};
        QTest::newRow("no gamut") << QStringList{"left=", "right=rec709:100"}
                                  << QStringList{"NoInput: gamut : neither a standard gamut nor a file"};
        QTest::newRow("no cabinets") << QStringList{"=rec709:100", "right=rec709:100"}
                                     << QStringList{
                                            "Usage: group : expected DEVICE or DEVICE:RANGE, as left:1-4, found "
                                            "\":\""};
    }
    void texts()
    {
        QFETCH(QStringList, texts);
        QTEST(assigned(readMeasuredGroups(texts)), "groups");
    }

    void aPartOfTheWallTakesPart()
    {
        const auto groups = readMeasuredGroups({"left:1-2=rec709:100", "right=p3-d65:100"});
        QCOMPARE(assigned(groups, {{"left", {2}}}), QStringList({"left:1-2 = left:2", "right = "}));
    }

    void aMatchIsReadWhole()
    {
        MatchNames names;
        names.measured = QStringList{EXAMPLES "/two-batches.csv"};
        names.target = "common";
        const auto matching = good(readMatching(names));
        QCOMPARE(matching.groups.size(), 2U);
        QCOMPARE(matching.match.groups[matching.match.limiting].name, QString("batch B"));
        const auto seams = seamsOf(matching.match);
        QVERIFY(seams.size() == 1 && seams[0].seam.before[0].ciede2000 > 1 && seams[0].seam.after[0].ciede2000 < 0.1);
        names.measured = QStringList{"left=rec709:100", "right=0.3,0.6:0.64,0.33:0.15,0.06:0.3127,0.329:100"};
        QCOMPARE(faultText(readMatching(names)).left(8), QString("BadData:")); // red and green are swapped
    }
};

QTEST_GUILESS_MAIN(MeasuredGroupsTest)
#include "tst_measuredgroups.moc"
