#include "support/testfiles.h"
#include <qualityutility/resource/settingstext_p.h>

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>

class SettingsTextTest : public QObject
{
    Q_OBJECT

    /// What QSettings makes of a text. Each under a name of its own: parsed files are cached by it.
    QMap<QString, QVariant> valuesOf(const QByteArray& text)
    {
        QSettings file(writeFile(m_folder.filePath(QString::number(m_files++) + ".ini"), text), QSettings::IniFormat);
        file.setIniCodec("GB2312");
        QMap<QString, QVariant> values;
        for (const QString& key : file.allKeys())
            values.insert(key, file.value(key));
        return values;
    }

    QTemporaryDir m_folder;
    int m_files = 0;

private Q_SLOTS:
    void oneKeyIsSet_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("changed"); ///< with A/k = "v"
        const auto row = [](const char* name, const QByteArray& text, const QByteArray& changed) {
            QTest::newRow(name) << text << changed;
        };
        row("in its place", "; c\n[A]\nj=1\nk = x ;c\n\n[B]\nk=2", "; c\n[A]\nj=1\nk = v ;c\n\n[B]\nk=2");
        row("where it stands last", "[A]\nk=1\n[B]\nx\n[A]\nk=2\nk=3\n", "[A]\nk=1\n[B]\nx\n[A]\nk=2\nk=v\n");
        row("a value of several lines", "[A]\nk=\"1\n[B]\n\"\\\r\n2\nl=3\n", "[A]\nk=v\nl=3\n");
        row("spelled otherwise", "[ %41 ];c\n%U006b\t=1", "[ %41 ];c\n%U006b\t=v");
        row("another key that begins so", "[A]\nkk=1\nK=2\n;k=3\n", "[A]\nk=v\nkk=1\nK=2\n;k=3\n");
        row("another group", "k=1\n[AB]\nk=2\n[A\\B]\nk=3\n", "k=1\n[AB]\nk=2\n[A\\B]\nk=3\n\n[A]\nk=v\n");
        row("below the last heading", "[A]\r\n[B]\r\n[A] ; c\r\nj=1\r\n", "[A]\r\n[B]\r\n[A] ; c\r\nk=v\r\nj=1\r\n");
        row("a heading at the end", "[A]", "[A]\nk=v\n");
        row("in quotation marks elsewhere", "[B]\nx=\"\n[A]\nk=1\n\"\n", "[B]\nx=\"\n[A]\nk=1\n\"\n\n[A]\nk=v\n");
        row("nothing", "", "[A]\nk=v\n");
        row("only a byte-order mark", "\xEF\xBB\xBF[A]\nk=1", "\xEF\xBB\xBF[A]\nk=v");
        row("an open value of its own", "[A]\nk=\"1\n[B]\nl=2\\", "[A]\nk=v");
    }

    void oneKeyIsSet()
    {
        QFETCH(QByteArray, text);
        const auto changed = withSetting(text, {"A", "k"}, "v", QTextCodec::codecForName("GB2312"));
        QVERIFY(changed);
        QTEST(*changed, "changed");
        auto expected = valuesOf(text);
        expected["A/k"] = "v";
        QCOMPARE(valuesOf(*changed), expected);
    }

    void anOpenEndTakesNothing_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("quotation") << QByteArray("[B]\nx=\"1\n");
        QTest::newRow("backslash") << QByteArray("[B]\nx=1\\");
        QTest::newRow("escaped line end") << QByteArray("[B]\nx=1\\\r\n");
        QTest::newRow("heading") << QByteArray("[A]\"\n");
    }

    void anOpenEndTakesNothing()
    {
        QFETCH(QByteArray, text);
        QVERIFY(!withSetting(text, {"A", "k"}, "v", nullptr));
    }

    void everyValueIsReadBack_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("stored");
        const auto row = [](const char* name, const char* value, const QByteArray& stored) {
            QTest::newRow(name) << QString::fromUtf8(value) << stored;
        };
        row("plain", "/home/a b", "/home/a b");
        row("Chinese", "数据", "\xCA\xFD\xBE\xDD");
        row("a list's comma", "a, b", "\"a, b\"");
        row("comment, equals", "a;b=c", "\"a;b=c\"");
        row("blanks around", " a ", "\" a \"");
        row("tabs around", "\ta\t",
            "\"\\x9"
            "\\x61\\x9\"");
        row("quotation and backslash", "C:\\\"x\"\\n", "C:\\\\\\\"x\\\"\\\\n");
        row("line end before a digit", "a\nb", "a\\xa\\x62");
        row("what the codec lacks", "a😀é", "a\\xd83d\\xde00\xA8\xA6");
        row("a second byte that is a backslash", "a\u8AA0", "a\\x8aa0");
        row("a text like a variant", "@Variant(1)", "@@Variant(1)");
        row("nothing", "", "");
    }

    void everyValueIsReadBack()
    {
        QFETCH(QString, value);
        QFETCH(QByteArray, stored);
        const auto text = withSetting("[A]\n", {"A", "k"}, value, QTextCodec::codecForName("GB2312"));
        QCOMPARE(*text, "[A]\nk=" + stored + "\n");
        QCOMPARE(valuesOf(*text), (QMap<QString, QVariant>{{"A/k", value}}));
        const auto ascii = withSetting("[A]\n", {"A", "k"}, value, nullptr);
        QCOMPARE(valuesOf(*ascii), (QMap<QString, QVariant>{{"A/k", value}}));
    }
};

QTEST_APPLESS_MAIN(SettingsTextTest)
#include "tst_settingstext.moc"
