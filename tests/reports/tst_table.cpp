#include <reports/table.h>

#include <QJsonDocument>
#include <QTest>

using namespace Reports;

Q_DECLARE_METATYPE(std::vector<std::vector<Cell>>)

class TableTest : public QObject
{
    Q_OBJECT

private:
    /// Columns with everything, without a heading, without a key.
    static Table table(const std::vector<std::vector<Cell>>& rows)
    {
        Table result({{"name", "name"}, {"seconds", "time", "s"}, {"hidden", {}}, {{}, "shown"}});
        for (const auto& row : rows)
            result.add(row);
        return result;
    }

private Q_SLOTS:
    void aTableIsTextJsonAndHtml_data()
    {
        QTest::addColumn<std::vector<std::vector<Cell>>>("rows");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("body"); ///< of the HTML
        using Rows = std::vector<std::vector<Cell>>;
        QTest::newRow("no row") << Rows{} << "name  time  shown\n----  ----  -----\n" << QByteArray("[]") << "";
        QTest::newRow("widths and units")
            << Rows{{QString("left wall"), decimal(0.12345, 2), 7, QString("x")}}
            << "name       time    shown\n---------  ------  -----\nleft wall  0.12 s  x\n"
            << QByteArray("[{\"hidden\":7,\"name\":\"left wall\",\"seconds\":0.12345}]")
            << "<tr><td>left wall</td><td class=\"number\">0.12 s</td><td>x</td></tr>\n";
        QTest::newRow("what would be markup or a place for an argument")
            << Rows{{QString("<b>&%1\"%2"), {"1", QJsonValue::Undefined}, flag(true, {}, {}), QString()}}
            << "name       time  shown\n---------  ----  -----\n<b>&%1\"%2  1 s\n"
            << QByteArray("[{\"hidden\":true,\"name\":\"<b>&%1\\\"%2\"}]")
            << "<tr><td>&lt;b&gt;&amp;%1&quot;%2</td><td>1 s</td><td></td></tr>\n";
    }

    void aTableIsTextJsonAndHtml()
    {
        QFETCH(std::vector<std::vector<Cell>>, rows);
        QFETCH(QString, body);
        const Table shown = table(rows);
        QTEST(shown.toText(), "text");
        QTEST(QJsonDocument(shown.toJson()).toJson(QJsonDocument::Compact), "json");
        QVERIFY(shown.toHtml().startsWith("<table>\n<thead>\n<tr><th scope=\"col\">name</th><th scope=\"col\""));
        const QString end = shown.toHtml().section("</thead>\n", 1);
        QCOMPARE(end, "<tbody>\n" + body + "</tbody>\n</table>\n");
        QCOMPARE(shown.isEmpty(), rows.empty());
    }

    void aCellHoldsBothForms()
    {
        QCOMPARE(percent(0.953653).text, QString("95.37 %"));
        QCOMPARE(percent(0.953653).value, QJsonValue(0.953653));
        QCOMPARE(identifier(1ULL << 53).value, QJsonValue(9007199254740992.0));
        QCOMPARE(identifier((1ULL << 53) + 1).value, QJsonValue("9007199254740993")); // no number would be exact
        QCOMPARE(flag(false, "on", "off").text, QString("off"));
    }
};

QTEST_GUILESS_MAIN(TableTest)
#include "tst_table.moc"
