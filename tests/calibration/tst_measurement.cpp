#include <calibration/gamut.h>
#include <calibration/journal.h>
#include <calibration/measurement.h>

#include <support/hostrun.h>
#include <support/testfiles.h>

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace Calibration;

namespace {

Input input(const QByteArray& bytes, const QString& name = "m")
{
    return {"measurement", name, bytes, {}};
}

QString faultOf(const Result<Measurement>& read)
{
    return read ? QString() : read.fault().message();
}

bool areNear(const Model::ColorGamutInfo& actual, const Model::ColorGamutInfo& expected, double tolerance)
{
    bool near = true;
    for (std::size_t i = 0; i < 4; ++i) {
        const Model::LXY& a = *pointsOf(actual)[i];
        const Model::LXY& e = *pointsOf(expected)[i];
        near = near && std::abs(a.x - e.x) <= tolerance && std::abs(a.y - e.y) <= tolerance &&
               std::abs(a.lum - e.lum) <= tolerance * e.lum;
    }
    return near;
}

/// Red, green and blue make the white, whose luminance is 100.
Model::ColorGamutInfo rec709(double whiteLuminance)
{
    return gamutOf(Colour::standardGamuts.front().primaries, whiteLuminance);
}

/// The lines of Rec.709 under the heading's columns: {x}, {y}, {Y}, {X}, {Z} and the patch by {label} or {1}, {100}...
/// for full drive.
QByteArray lines(const QByteArray& line, double whiteLuminance = 100.0)
{
    const Model::ColorGamutInfo gamut = rec709(whiteLuminance);
    QByteArray text;
    for (std::size_t i = 0; i < 4; ++i) {
        const Model::LXY& p = *pointsOf(gamut)[i];
        const auto number = [](double value) { return QByteArray::number(value, 'g', 12); };
        QByteArray row = line;
        row.replace("{x}", number(p.x)).replace("{y}", number(p.y)).replace("{Y}", number(p.lum));
        row.replace("{X}", number(p.x / p.y * p.lum)).replace("{Z}", number((1 - p.x - p.y) / p.y * p.lum));
        row.replace("{label}", pointName(i).toUtf8()).replace("{R}", i == 0 || i == 3 ? "full" : "0");
        row.replace("{G}", i == 1 || i == 3 ? "full" : "0").replace("{B}", i == 2 || i == 3 ? "full" : "0");
        text += row + '\n';
    }
    return text;
}

QByteArray ti3(const QByteArray& keywords, const QByteArray& data)
{
    return "CTI3\n\n" + keywords +
           "\nNUMBER_OF_FIELDS 7\nBEGIN_DATA_FORMAT\nSAMPLE_ID RGB_R RGB_G RGB_B\n  XYZ_X XYZ_Y XYZ_Z\n"
           "END_DATA_FORMAT\nBEGIN_DATA\n" +
           data + "END_DATA\n";
}

QByteArray ti3Lines(double whiteLuminance = 100.0)
{
    return lines("A1 {R} {G} {B} {X} {Y} {Z}", whiteLuminance).replace("full", "100.00");
}

} // namespace

class MeasurementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void examplesHoldTheSameReadings()
    {
        const auto ti3 = parseMeasurement(input(readFile(EXAMPLES "/readings.ti3"), "readings.ti3"));
        const auto csv = parseMeasurement(input(readFile(EXAMPLES "/readings.csv")));
        QVERIFY2(ti3 && csv, qPrintable(faultOf(ti3) + faultOf(csv)));
        QVERIFY(areNear(ti3->gamut, csv->gamut, 1e-9));
        QVERIFY(std::abs(ti3->gamut.wLxy.lum - 3119.792) < 1e-9); // (100 + 99.92 + 100.06) / 3 of 3120
        QCOMPARE(QString::fromStdString(ti3->gamut.name), QString("readings.ti3"));
        QCOMPARE(ti3->instrument + '|' + ti3->observer + '|' + ti3->date,
                 QString("Spectroradiometer at 5 m|1931_2|Sat Nov 21 10:30:00 2026"));
        for (const auto& read : {ti3, csv}) {
            QCOMPARE(read->patches.points[2].count, 3);
            QCOMPARE(read->patches.otherCount, 1);
            QVERIFY(read->patches.black && std::abs(read->patches.black->mean.lum - 0.03744) < 1e-9);
        }
    }

    void meanIsTakenInXyzAndSpreadFromIt()
    {
        const auto read = parseMeasurement(input("label,x,y,Y\nR,.64,.33,20\nr,0.66,0.32,20\ng,.3,.6,70\nb,.15,.06,8\n"
                                                 "White,.3127,.329,90\nw,.3127,.329,110\nBlack,0,0,0\ncyan,.2,.3,1\n"));
        QVERIFY2(read, qPrintable(faultOf(read)));
        const PatchReadings& red = read->patches.points[0];
        QVERIFY(std::hypot(red.mean.x - 0.6501538, red.mean.y - 0.3249231) < 1e-7);
        QVERIFY(std::abs(red.spreadXy - 0.0113523) < 1e-7);
        QCOMPARE(red.spreadLuminance, 0.0);
        const PatchReadings& white = read->patches.points[3];
        QCOMPARE(white.count, 2);
        QVERIFY(std::abs(white.mean.lum - 100.0) < 1e-9 && std::abs(white.spreadLuminance - 0.1) < 1e-9);
        QVERIFY(white.spreadXy < 1e-12);
        QCOMPARE(read->patches.black->mean, Model::LXY());
        QCOMPARE(read->patches.otherCount, 1);
    }

    void sameGamutIsReadFromEveryForm_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<double>("luminance");
        QTest::addColumn<QString>("kindAndNotes");
        const auto row = [](const char* name, const QByteArray& bytes, double luminance, const char* words) {
            QTest::newRow(name) << bytes << luminance << words;
        };
        const auto drive = [](const QByteArray& full) {
            return "r,g,b,X,Y,Z\n" + lines("{R},{G},{B},{X},{Y},{Z}").replace("full", full);
        };
        row("CSV with semicolons and quotes", "# by hand\n\"Patch\";x;y;Y\n" + lines("\"{label}\";{x};\"{y}\" ; {Y}"),
            100, "CSV");
        row("CSV with tabs, an empty column, line ends of two bytes and a byte-order mark",
            "\xef\xbb\xbfnote\tx\ty\tLUM\tColour\r\n" + lines("\t{x}\t{y}\t{Y}\t{label}\r"), 100, "x, y, LUM");
        row("CSV with both kinds of columns", "name,x,y,X,Y (cd/m2),Z\n" + lines("{label},9,9,{X},{Y},{Z}"), 100,
            "X, Y, Z");
        row("CSV in capitals", "LABEL,X,Y,CD_M2\n" + lines("{label},{x},{y},{Y}"), 100, "X, Y, CD_M2");
        row("CSV with quotes in a field and luminance twice",
            "label,Y,x,y,lum,note\n" + lines("{label},9,{x},{y},{Y},\"5\"\" , far\""), 100, "CSV");
        row("CSV with drive to 1", drive("1.0"), 100, "drive from 0 to 1");
        row("CSV with drive to 100", drive("100"), 100, "drive from 0 to 100");
        row("CSV with drive to 255", drive("255"), 100, "drive from 0 to 255");
        const QByteArray known = "LUMINANCE_XYZ_CDM2 \"475.2 500 544.5\"\n";
        row("CGATS of normalised figures", ti3(known + "NORMALIZED_TO_Y_100 \"YES\"\n", ti3Lines()), 500,
            "of 500 cd/m2");
        row("CGATS of figures in cd/m2", ti3(known + "NORMALIZED_TO_Y_100 NO\n", ti3Lines(480)), 480, "as they stand");
        row("CGATS that does not say which", ti3(known, ti3Lines(480)), 500, "of 500 cd/m2");
        row("CGATS without a luminance", ti3("NORMALIZED_TO_Y_100 \"YES\"\n", ti3Lines()), 0, "relative");
        row("CGATS whose second table has the fields",
            "CAL\n" + known +
                "BEGIN_DATA_FORMAT\nRGB_I RGB_R\nEND_DATA_FORMAT\nNUMBER_OF_SETS 1\nBEGIN_DATA\n0 0\nEND_DATA\n" +
                ti3("", ti3Lines(480)),
            480, "as they stand");
        const QJsonObject gamut = gamutToJson(rec709(480));
        row("JSON", QJsonDocument(gamut).toJson(), 480, "gamut in JSON");
        row("NICC document",
            QJsonDocument({{"LEDColorGamnut", gamut}, {"TargetColorGamnut", gamutToJson(rec709(1))}}).toJson(), 480,
            "NICC document");
    }

    void sameGamutIsReadFromEveryForm()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(double, luminance);
        QFETCH(QString, kindAndNotes);
        const auto read = parseMeasurement(input(bytes));
        QVERIFY2(read, qPrintable(faultOf(read)));
        QVERIFY(areNear(read->gamut, rec709(luminance), 1e-9));
        const QString words = read->kind + "; " + read->notes.join("; ");
        QVERIFY2(words.contains(kindAndNotes), qPrintable(words));
        const QTemporaryDir folder; // and so by every command that takes a gamut
        const QString file = writeFile(folder.filePath("measured"), bytes);
        const auto measured = readMeasured(luminance > 0 ? file : file + ":480");
        QVERIFY2(measured && areNear(measured->gamut, rec709(luminance > 0 ? luminance : 480), 1e-9),
                 qPrintable(words));
    }

    void whatIsNoMeasurementIsRefusedWithItsPlace_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("message");
        const auto row = [](const QByteArray& bytes, const char* message) {
            QTest::newRow(message) << bytes << message;
        };
        const QByteArray csv = "label,x,y,Y\n" + lines("{label},{x},{y},{Y}");
        const QByteArray xyz = "label,X,Y,Z\n" + lines("{label},{X},{Y},{Z}");
        row("", "m, line 1, column 1: no data");
        row("# nothing\n\n", "column 1: no data");
        row("qu'est-ce?",
            "line 1, column 1: expected a heading with x, y, Y or X, Y, Z, or a CGATS or JSON text, found");
        row("x,y,Y\n", "column 1: expected a heading with a label or with r, g, b for the patch");
        row("patch,x,y\n", "expected a heading with x, y, Y");
        row("label,x,y,Y,x\n", "two columns have the same name");
        row("label,x,y,Y\n",
            "m, line 1, column 1: expected readings of full red, green, blue and white, found none of red among 0");
        row(QByteArray(csv).replace("white", "wite"), "found none of white among 4");
        row(csv + "\n red,0.6, nan,1\n", "m, line 7, column 11, y: expected a number, found \"nan\"");
        row(csv + "red,0.6,0.3,1e400\n", "line 6, column 13, Y: expected a number, found \"1e400\"");
        row(csv + "red,0.6,0.3,\n", "line 6, column 13, Y: expected a number, found \"\"");
        row(csv + "red,0.6,0.3,0\n", "line 6, column 13, Y: expected a number above 0, found 0");
        row(csv + "red,0.6,0.5,1\n", "line 6, column 9, y: expected a number above 0 and up to 1 - x, found 0.5");
        row(csv + "black,0,0,-1\n", "line 6, column 11, Y: expected a number of at least 0, found -1");
        row(csv + "red,0.6,0.3\n", "line 6, column 9: expected 4 fields, found 3");
        row(csv + "\"red,0.6,0.3,1\n", "line 6, column 1: a quote that is not closed");
        row(csv + "\"red\"s,0.6,0.3,1\n", "line 6, column 6: expected a separator behind the closing quote, found s");
        row(csv + QByteArray(20000, 'x'), "line 6: expected at most 16384 characters, found 20000");
        row(csv + QByteArray("red,0.6,0.3,1\n").repeated(65536), "line 65538: more than 65536 readings");
        row(xyz + "blue,1,2,-3\n", "line 6, column 10, Z: expected a number of at least 0, found -3");
        row("r,g,b,X,Y,Z\n0,0,256,1,1,1\n", "line 2, column 5, b: expected a number from 0 to 255, found \"256\"");
        row(QByteArray(csv).replace("0.3127,0.329", "0.7,0.29"), "m: white (0.7, 0.29) needs -0.330517 of green");
        row(QByteArray("PK\3\4", 4), "line 1, column 3: expected text in UTF-8, found the byte 0x03");
        row("a\nb" + QByteArray(3, '\0'), "line 2, column 2: expected text in UTF-8, found the byte 0x00");
        const QByteArray good = ti3Lines();
        row("CTI3\n", "line 1: expected a table with BEGIN_DATA_FORMAT and BEGIN_DATA, found the end of the text");
        row("BEGIN_DATA\n", "line 1: expected BEGIN_DATA_FORMAT first");
        row("CTI3\nBEGIN_DATA_FORMAT\nRGB_R\n", "line 3: expected END_DATA_FORMAT, found the end of the text");
        row("BEGIN_DATA_FORMAT\nA B A\nEND_DATA_FORMAT\n", "line 2, column 5: A stands there twice");
        row(ti3("", good).replace("END_DATA\n", ""), "line 13: expected END_DATA, found the end of the text");
        row(ti3("", good).replace("XYZ_Z", "LAB_L"), "found none with XYZ_Z");
        row(ti3("", good).replace("FIELDS 7", "FIELDS 8"),
            "line 4, column 18, NUMBER_OF_FIELDS: expected 7 fields, as BEGIN_DATA_FORMAT has, found \"8\"");
        row(ti3("NUMBER_OF_SETS 5", good), "line 3, column 16, NUMBER_OF_SETS: expected 4 sets");
        row(ti3("", ""), "line 10, column 1: expected readings, found no data");
        row(ti3("", good + "5 100 0 0 1 1\n"), "line 14, column 13: expected 7 fields, found 6");
        row(ti3("", good + "5 100 0 0 1 -1 1\n"), "line 14, column 13, XYZ_Y: expected a number above 0, found -1");
        row(ti3("", good + "5 100 0 0 1 inf 1\n"), "line 14, column 13, XYZ_Y: expected a number, found \"inf\"");
        row(ti3("", good + "5 100 0 101 1 1 1\n"), "column 9, RGB_B: expected a number from 0 to 100");
        row(ti3("LUMINANCE_XYZ_CDM2 \"1 -2 3\"", good),
            "line 3, column 20, LUMINANCE_XYZ_CDM2: expected X, Y and Z in cd/m2, Y above 0, found \"1 -2 3\"");
        row(ti3("NORMALIZED_TO_Y_100 YES", ti3Lines(480)),
            "line 3, column 21, XYZ_Y: expected a white of 100, found 480");
        row("{\"RedPoint\": 1}", "m: RedPoint: expected an object with lum, x and y, found 1");
        row("{\"LEDColorGamnut\": []}", "m: LEDColorGamnut: expected an object, found an array");
        row("{\n\"RedPoint\": nan}", "m: line 2, column 13: not JSON");
    }

    void whatIsNoMeasurementIsRefusedWithItsPlace()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, message);
        const auto read = parseMeasurement(input(bytes));
        QVERIFY(!read && read.fault().kind == Fault::Kind::BadData);
        QVERIFY2(faultOf(read).contains(message), qPrintable(faultOf(read)));
    }

    void convertedMeasurementIsTheGamutThatItShows()
    {
        const QTemporaryDir folder;
        const QString out = folder.filePath("g.json");
        const QStringList convert{"measure", "convert", "readings.ti3", "--out", out};
        QCOMPARE(run(convert).exitCode, 0);
        QCOMPARE(run(convert).exitCode, 73);
        QCOMPARE(run(convert + QStringList("--force")).exitCode, 0);
        const auto read = readMeasured(out);
        QVERIFY(read && areNear(read->gamut, readMeasured(EXAMPLES "/readings.ti3")->gamut, 1e-15));
        const QJsonObject shown = run({"measure", "show", "readings.csv", "--json"}).json();
        QCOMPARE(shown["kind"].toString(), QString("CSV readings"));
        const QJsonArray patches = shown["patches"].toArray();
        QCOMPARE(patches.size(), 5);
        QVERIFY(std::abs(patches[1]["luminance_cd_m2"].toDouble() - read->gamut.gLxy.lum) < 1e-6);
        QVERIFY(patches[1]["spread_xy"].toDouble() > 1e-4);
    }
};

QTEST_GUILESS_MAIN(MeasurementTest)
#include "tst_measurement.moc"
