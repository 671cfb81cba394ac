#include <suite/common/jsonreader.h>

#include <QTest>

using Common::JsonReader;

class JsonReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstFaultIsToldWithItsPath_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("message"); ///< empty: none
        const auto list = [](const QByteArray& second) { return R"({"list": [{"n": 1}, )" + second + "]}"; };
        QTest::newRow("good") << list(R"({"n": 2, "name": "x", "on": true, "share": 0.5})") << QString();
        QTest::newRow("left out") << list(R"({"n": 2, "level": 7})") << QString();
        QTest::newRow("not JSON") << QByteArray("{\n  \"list\": [}\n")
                                  << "doc: line 2, column 12: not JSON: object is missing after a comma";
        QTest::newRow("no object") << QByteArray("[]") << "doc: expected an object, found an array";
        QTest::newRow("no array") << QByteArray(R"({"list": {}})") << "list: expected an array, found an object";
        QTest::newRow("no element") << list("null") << "list[1]: expected an object, found null";
        QTest::newRow("missing") << list("{}") << "list[1].n: expected an integer, found nothing";
        QTest::newRow("fraction") << list(R"({"n": 1.5})") << "list[1].n: expected an integer, found 1.5";
        QTest::newRow("above int") << list(R"({"n": 2147483648})")
                                   << "list[1].n: expected an integer, found 2147483648";
        QTest::newRow("below") << list(R"({"n": 1, "level": 0})")
                               << "list[1].level: expected an integer of at least 1, found 0";
        QTest::newRow("outside") << list(R"({"n": 1, "share": 1.25})")
                                 << "list[1].share: expected a number from 0 to 1, found 1.25";
        QTest::newRow("no text") << list(R"({"n": 1, "name": false})")
                                 << "list[1].name: expected a string, found false";
        QTest::newRow("no flag") << list(R"({"n": 1, "on": "yes"})")
                                 << "list[1].on: expected true or false, found \"yes\"";
        QTest::newRow("two faults") << list(R"({"n": "a", "on": "b"})")
                                    << "list[1].n: expected an integer, found \"a\"";
    }

    void theFirstFaultIsToldWithItsPath()
    {
        QFETCH(QByteArray, document);
        const auto root = Common::parseJsonObject(document, "doc");
        std::optional<Common::Fault> fault;
        if (!root)
            fault = root.fault();
        const JsonReader reader(root ? *root : QJsonObject(), fault);
        const JsonReader list = reader.member("list");
        const int count = list.count();
        int sum = 0;
        for (int i = 0; i < count && !reader.hasFault(); ++i) {
            const JsonReader element = list.element(i);
            sum += element.object().member("n").integer();
            element.member("level").integer(1, std::numeric_limits<int>::max(), 1);
            element.member("on").flag(false);
            if (!element.member("share").isMissing())
                element.member("share").number(0.0, 1.0);
            if (!element.member("name").isMissing())
                element.member("name").text();
        }
        QTEST(fault ? fault->message() : QString(), "message");
        QCOMPARE(fault.has_value() || sum == 3, true);
    }
};

QTEST_GUILESS_MAIN(JsonReaderTest)
#include "tst_jsonreader.moc"
