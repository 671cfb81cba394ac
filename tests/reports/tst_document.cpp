#include <reports/document.h>
#include <reports/pages_p.h>

#include <QGuiApplication>
#include <QTest>
#include <QXmlStreamReader>

using namespace Reports;

Q_DECLARE_METATYPE(std::vector<Reports::Block>)

namespace {

const QByteArray chartSvg = "<?xml version=\"1.0\"?>\n<svg width=\"10mm\"\n viewBox=\"0 0 40 30\" "
                            "xmlns=\"http://www.w3.org/2000/svg\"><rect width=\"40\" height=\"30\"/></svg>";

const QString hostile = QString("<br>").repeated(80) + "<script>\"'%1&\n\x01<b>\u202e";

Table numbered(int rows)
{
    Table table({{"device", "device"}, {"seconds", "time"}});
    for (int row = 0; row < rows; ++row)
        table.add({QString("d%1").arg(row), row % 2 ? decimal(row, 1) : Cell(QString("-"))});
    return table;
}

Document document(const std::vector<Block>& blocks, Mark mark = Mark::Good, const QString& text = "T")
{
    return {text, text, {mark, "PASSED", text}, blocks};
}

/// The parts of the markup that a browser would run or fetch, without those that are allowed: images within the file.
QByteArrayList active(const QByteArray& html)
{
    QByteArrayList found;
    for (const char* part : {"<script", "src=", "href=", "http:", "https:", "url(", "@import", "<b>", "\x01", "\u202e"})
        if (html.contains(part))
            found << part;
    return found;
}

QByteArray pdf(const Document& document)
{
    const auto result = toPdf(document);
    return result ? *result : QByteArray();
}

int pages(const QByteArray& pdf)
{
    return pdf.count("/Type /Page\n");
}

} // namespace

class DocumentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHostileTextStaysAText_data()
    {
        QTest::addColumn<std::vector<Block>>("blocks");
        using Blocks = std::vector<Block>;
        const QString text = hostile;
        Table table({{"a", text}, {"b", text}});
        table.add({text, 1});
        QTest::newRow("title, generator and verdict") << Blocks{};
        QTest::newRow("heading") << Blocks{Heading{text}};
        QTest::newRow("paragraph") << Blocks{Paragraph{text}};
        QTest::newRow("warning") << Blocks{Warning{text}};
        QTest::newRow("facts") << Blocks{Facts{{{text, text}}}};
        QTest::newRow("table") << Blocks{table};
        QTest::newRow("folded table") << Blocks{FoldedTable{text, table}};
        QTest::newRow("chart's caption") << Blocks{Drawings{{{chartSvg, text}}}};
    }

    void aHostileTextStaysAText()
    {
        QFETCH(std::vector<Block>, blocks);
        QByteArray html = toHtml(document(blocks, Mark::Open, hostile));
        QCOMPARE(active(html), QByteArrayList());
        const QByteArray shown = "&lt;script&gt;&quot;'%1&amp; \ufffd&lt;b&gt;\ufffd";
        QVERIFY2(html.count(shown) >= 4 + (blocks.empty() ? 0 : 1), html.constData());
        html.replace(html.indexOf("<meta"), html.indexOf("<title>") - html.indexOf("<meta"), {}); // no end tags there
        QXmlStreamReader xml(html);
        while (!xml.atEnd())
            xml.readNext();
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));       // every element ends where it should
        QCOMPARE(pages(pdf(document(blocks, Mark::Open, hostile))), 1); // line breaks would fill two
    }

    void theVerdictComesFirst_data()
    {
        QTest::addColumn<int>("mark");
        QTest::addColumn<QByteArray>("word");
        QTest::newRow("good") << int(Mark::Good) << QByteArray("\"Good:\"");
        QTest::newRow("bad") << int(Mark::Bad) << QByteArray("\"Not good:\"");
        QTest::newRow("open") << int(Mark::Open) << QByteArray("\"Not finished:\"");
    }

    void theVerdictComesFirst()
    {
        QFETCH(int, mark);
        QFETCH(QByteArray, word);
        const auto shown = document({}, Mark(mark));
        const QByteArray html = toHtml(shown);
        QVERIFY(html.startsWith("<!DOCTYPE html>\n") && html.contains("<title>PASSED: T</title>"));
        const QByteArray body = html.mid(html.indexOf("<body"));
        QVERIFY2(body.contains(word) && body.indexOf(word) < body.indexOf("<strong>PASSED</strong>: T"),
                 html.constData());
        QVERIFY(body.indexOf("<strong>") < body.indexOf("<h1"));
        const auto shape = [](const QByteArray& of) { return of.mid(of.indexOf(" d=\""), 60); };
        const QByteArray other = toHtml(document({}, mark == int(Mark::Good) ? Mark::Bad : Mark::Good));
        QVERIFY(shape(body) != shape(other.mid(other.indexOf("<body")))); // no colour is needed to tell them apart
    }

    void blocksKeepTheirOrderAndShape()
    {
        const QByteArray html = toHtml(document({Heading{"one"}, numbered(2), Drawings{{{chartSvg, "c"}, {"no", "d"}}},
                                                 Warning{"w"}, Heading{"two"}, FoldedTable{"all", numbered(3)}}));
        QVERIFY(html.indexOf("<h2>one") < html.indexOf("<figure>") &&
                html.indexOf("<figure>") < html.indexOf("<h2>two"));
        QCOMPARE(html.count("<section>"), 3);
        QVERIFY(html.contains("<summary>all</summary>") && html.contains("<strong>Warning</strong>: w"));
        QVERIFY(html.contains("<td class=\"number\">-</td>") &&
                html.contains("<th scope=\"col\" class=\"number\">time"));
        QCOMPARE(html.count("aria-label=\"c\" viewBox=\"0 0 40 30\"><rect"), 1);
        QVERIFY(html.contains("<figure>\n<figcaption>d")); // what is no drawing leaves its caption
    }

    void pagesEndBetweenPieces_data()
    {
        QTest::addColumn<QVector<int>>("heights"); ///< of pieces; a negative one stays with its next
        QTest::addColumn<int>("rows");             ///< so many pieces at the end are rows, whose head is 1 high
        QTest::addColumn<QVector<int>>("ends");    ///< of the pages' bodies
        using Numbers = QVector<int>;
        QTest::newRow("nothing") << Numbers{} << 0 << Numbers{};
        QTest::newRow("just full") << Numbers{4, 6} << 0 << Numbers{10};
        QTest::newRow("what is cut moves as a whole") << Numbers{4, 4, 4, 4} << 0 << Numbers{8, 16};
        QTest::newRow("so do headings with what they head") << Numbers{4, -2, -2, 4, 4} << 0 << Numbers{4, 12, 16};
        QTest::newRow("headings and nothing else") << Numbers{-4, -4, -4} << 0 << Numbers{8, 12};
        QTest::newRow("higher than a page") << Numbers{4, -2, 25, 4} << 0 << Numbers{4, 6, 16, 26, 31, 35};
        QTest::newRow("rows leave room for their head") << Numbers{4, 6, 5, 5, 5} << 3 << Numbers{10, 15, 20, 25};
    }

    void pagesEndBetweenPieces()
    {
        QFETCH(QVector<int>, heights);
        QFETCH(int, rows);
        std::vector<Piece> pieces;
        double top = 0.0;
        for (int i = 0; i < heights.size(); ++i) {
            const Strip head = i < heights.size() - rows ? Strip{} : Strip{4.0, 5.0};
            pieces.push_back({{top, top + qAbs(heights[i])}, heights[i] < 0, head});
            top += qAbs(heights[i]);
        }
        QVector<int> ends;
        double end = 0.0;
        for (const Page& page : pagesOf(pieces, 10.0)) {
            QCOMPARE(page.body.top, end); // nothing is lost, nothing twice
            end = page.body.bottom;
            ends << int(end);
        }
        QTEST(ends, "ends");
    }

    void aPdfHasThePagesThatItNeeds_data()
    {
        QTest::addColumn<std::vector<Block>>("blocks");
        QTest::addColumn<int>("expected");
        using Blocks = std::vector<Block>;
        QTest::newRow("nothing but a verdict") << Blocks{} << 1;
        QTest::newRow("a paragraph goes on from page to page")
            << Blocks{Paragraph{QString("word ").repeated(4000)}} << 3;
        QTest::newRow("charts, two beside each other")
            << Blocks{Drawings{std::vector<Drawing>(8, {chartSvg, "c"})}} << 2;
    }

    void aPdfHasThePagesThatItNeeds()
    {
        QFETCH(std::vector<Block>, blocks);
        const QByteArray written = pdf(document(blocks));
        QVERIFY(written.startsWith("%PDF"));
        QTEST(pages(written), "expected");
    }
};

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    DocumentTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_document.moc"
