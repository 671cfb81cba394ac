#include "support/logcapture.h"
#include <suite/serialize/serializable.h>

#include <QTest>

using Xq::Serialize::Serializable;

class Lamp : public Serializable
{
    Q_OBJECT
    Q_PROPERTY(int power MEMBER power)
    Q_PROPERTY(unsigned char channel MEMBER channel)
    Q_PROPERTY(double gamma MEMBER gamma)
    Q_PROPERTY(QString label MEMBER label)

public:
    explicit Lamp(Serializable* parent = nullptr) : Serializable(parent) {}

    int power = 1;
    unsigned char channel = 2;
    double gamma = 2.2;
    QString label = "a";
};

class Post : public Serializable
{
    Q_OBJECT
    Q_PROPERTY(QVariant lamp READ lampMap WRITE setLampMap)

public:
    QVariant lampMap() const { return packObjByAttribute(serialize(lamp, attribute()), attribute()); }
    void setLampMap(const QVariant& value) { deserializeMember(value, lamp); }

    Lamp* lamp = nullptr;
};

class SerializableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogCapture>(); }
    void cleanup() { m_log.reset(); }

    void nestedObjectsComeBackEqual()
    {
        Post post;
        post.lamp = new Lamp(&post);
        post.lamp->power = -7;
        post.lamp->gamma = 0.1;
        const QVariantMap map = Serializable::serialize(&post, 0);
        QCOMPARE(map.keys(), QStringList{"lamp"}); // without QObject's own
        Post back;
        QVERIFY(back.deserialize(map, 0));
        QVERIFY(back.lamp);
        QCOMPARE(back.lamp->parent(), &back);
        QCOMPARE(Serializable::serialize(&back, 0), map);

        const QVariantMap none = Serializable::serialize(std::make_unique<Post>().get(), 0);
        QVERIFY(back.deserialize(none, 0)); // says nothing about the nested object
        QCOMPARE(back.lamp->power, -7);
        QCOMPARE(m_log->take(), QStringList());
    }

    void whatDoesNotFitIsSkippedAndLogged_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("an integer as JSON keeps it") << "power" << QVariant(3.0) << true;
        QTest::newRow("a long integer that fits") << "channel" << QVariant(255LL) << true;
        QTest::newRow("an integer for a double") << "gamma" << QVariant(2) << true;
        QTest::newRow("a fraction for an integer") << "power" << QVariant(3.5) << false;
        QTest::newRow("too large") << "channel" << QVariant(256) << false;
        QTest::newRow("negative for unsigned") << "channel" << QVariant(-1) << false;
        QTest::newRow("not a number for an integer") << "power" << QVariant(qQNaN()) << false;
        QTest::newRow("far too large") << "power" << QVariant(1e300) << false;
        QTest::newRow("a text for a number") << "power" << QVariant("3") << false;
        QTest::newRow("a number for a text") << "label" << QVariant(3) << false;
        QTest::newRow("nothing") << "power" << QVariant() << false;
        QTest::newRow("an unknown name") << "colour" << QVariant(3) << false;
        QTest::newRow("QObject's own name") << "objectName" << QVariant("x") << false;
    }

    void whatDoesNotFitIsSkippedAndLogged()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, value);
        QFETCH(bool, isTaken);
        Lamp lamp;
        const QVariantMap before = Serializable::serialize(&lamp, 0);
        QVariantMap map{{"label", "taken all the same"}};
        map.insert(name, value);
        QCOMPARE(lamp.deserialize(map, 0), isTaken);
        if (name != "label")
            QCOMPARE(lamp.label, QString("taken all the same"));
        const QStringList log = m_log->take();
        QCOMPARE(log.size(), isTaken ? 0 : 1);
        QVERIFY(isTaken || log.first().contains(name));
        QVERIFY(lamp.objectName().isEmpty());
        const QVariant after = lamp.property(name.toLatin1().constData());
        if (isTaken)
            QCOMPARE(after.toDouble(), value.toDouble());
        else if (before.contains(name))
            QCOMPARE(after, before.value(name));
    }

    void whatANestedObjectDoesNotTakeIsSaid_data()
    {
        QTest::addColumn<QVariant>("lamp");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("fits") << QVariant(QVariantMap{{"power", 3}}) << true;
        QTest::newRow("does not fit") << QVariant(QVariantMap{{"power", "3"}, {"gamma", 1.0}}) << false;
        QTest::newRow("no map") << QVariant(5) << false;
    }

    void whatANestedObjectDoesNotTakeIsSaid()
    {
        QFETCH(QVariant, lamp);
        QFETCH(bool, isTaken);
        Post post;
        QCOMPARE(post.deserialize({{"lamp", lamp}}, 0), isTaken);
        QCOMPARE(m_log->take().size(), isTaken ? 0 : 1);
        QCOMPARE(bool(post.lamp), lamp != QVariant(5));
        QVERIFY(post.deserialize({}, 0)); // forgotten
    }

private:
    std::unique_ptr<LogCapture> m_log;
};

QTEST_APPLESS_MAIN(SerializableTest)
#include "tst_serializable.moc"
