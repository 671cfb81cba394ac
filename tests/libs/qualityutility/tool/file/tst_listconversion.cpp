#include "support/grayrecords.h"
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <QTest>

using Tool = PicQualityFileTool;
using Model::LXY;

namespace {

/// A list of every kind that the tool converts, from numbers.
template <typename List>
QJsonArray written(const List& list)
{
    QJsonArray out{1, 2, 3};
    Tool::listToJsonArray(list, out);
    return out;
}

template <typename List>
List readBack(const QJsonArray& array)
{
    List out;
    out.push_back(typename List::value_type()); // to be replaced
    Tool::jsonArrayToList(array, out);
    return out;
}

} // namespace

class ListConversionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersConvertAsQtDoes()
    {
        const QJsonArray mixed = parseArray(R"([1, "2", true, 3.9, 4.0, null, [5], {"a": 6}, -1, 300, 4294967296])");
        QCOMPARE(readBack<std::vector<int>>(mixed), std::vector<int>({1, 0, 0, 0, 4, 0, 0, 0, -1, 300, 0}));
        const std::vector<unsigned char> bytes{1, 0, 0, 0, 4, 0, 0, 0, 255, 44, 0};
        QCOMPARE(readBack<std::vector<unsigned char>>(mixed), bytes);
        QCOMPARE(readBack<QList<unsigned char>>(mixed), QList<unsigned char>(bytes.begin(), bytes.end()));
        const std::vector<unsigned int> words{1, 0, 0, 0, 4, 0, 0, 0, 4294967295u, 300, 0};
        QCOMPARE(readBack<std::vector<unsigned int>>(mixed), words);
        QCOMPARE(readBack<QList<unsigned int>>(mixed), QList<unsigned int>(words.begin(), words.end()));
        const std::vector<double> doubles{1, 0, 0, 3.9, 4, 0, 0, 0, -1, 300, 4294967296.0};
        QCOMPARE(readBack<std::vector<double>>(mixed), doubles);
        QCOMPARE(readBack<QList<double>>(mixed), QList<double>(doubles.begin(), doubles.end()));
    }

    void unsignedNumbersKeepTheirBits()
    {
        QCOMPARE(written(std::vector<unsigned int>{4294967295u, 2147483648u}), QJsonArray({-1, -2147483647 - 1}));
        QCOMPARE(written(QList<unsigned int>{7}), QJsonArray({7}));
        QCOMPARE(readBack<std::vector<unsigned int>>(parseArray("[-2147483648]")),
                 std::vector<unsigned int>{2147483648u});
    }

    void listsReplaceWhatWasThere()
    {
        QCOMPARE(written(std::vector<int>{}), QJsonArray());
        QVERIFY(readBack<QList<LXY>>({}).isEmpty());
        QCOMPARE(written(std::vector<double>{0.1, -2}), QJsonArray({0.1, -2}));
        QCOMPARE(written(QList<double>{0.5}), QJsonArray({0.5}));
        QCOMPARE(written(std::vector<unsigned char>{255}), QJsonArray({255}));
        QCOMPARE(written(QList<unsigned char>{0}), parseArray("[0]"));
        QJsonArray point;
        point.append(parse(R"({"lum": 1, "x": 0.25, "y": 0.5})"));
        QCOMPARE(written(Points{{1, 0.25, 0.5, "name"}}), point);
    }

    void pointsAreTakenFromObjectsOnly()
    {
        const QJsonArray array = parseArray(
            R"([{"lum": 1, "x": 0.3, "y": 0.3, "z": 9}, 5, "text", {"x": 0.2}, {"lum": "1.5", "x": true, "y": null}])");
        const Points expected{{1, 0.3, 0.3, {}}, {0, 0.2, 0, {}}, {1.5, 1, 0, {}}};
        QCOMPARE(readBack<Points>(array), expected);
        QCOMPARE(readBack<QList<LXY>>(array), QList<LXY>(expected.begin(), expected.end()));
        QCOMPARE(getLxy({{"lum", "1.5"}, {"x", true}}), expected.back());
    }

    void seriesAreRenumberedWhenRead()
    {
        const Tool::MeasureSeries series{{3, points(1, 1)}, {7, points(2, 2)}};
        QJsonArray array{1};
        Tool::mapToJsonArray(series, array);
        QCOMPARE(array.size(), 2);
        QCOMPARE(array.at(0).toObject().keys(), QStringList("measure"));
        Tool::MeasureSeries back{{9, {}}};
        Tool::jsonArrayToMap(array, back);
        QCOMPARE(back, Tool::MeasureSeries({{0, points(1, 1)}, {1, points(2, 2)}}));
        Tool::jsonArrayToMap(
            parseArray(R"([5, {"measure": 5}, {"other": []}, {"measure": [{"lum": 4}]}, {"measure": []}])"), back);
        QCOMPARE(back, Tool::MeasureSeries({{0, {{4, 0, 0, {}}}}, {1, {}}}));
    }
};

QTEST_GUILESS_MAIN(ListConversionTest)
#include "tst_listconversion.moc"
