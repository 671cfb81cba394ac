#include <qualityutility/data/nicccoeffs.h>
#include <qualityutility/data/rvcardconfigdatamodel.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaProperty>
#include <QTest>

using namespace ReceivingCard;
using Xq::Serialize::Serializable;

namespace {

/// "type name" of each property, in order.
QStringList properties(const QMetaObject& meta)
{
    QStringList result;
    for (int i = Serializable::staticMetaObject.propertyCount(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        if (property.isReadable() && property.isWritable() && property.isStored() && property.isDesignable() &&
            property.isScriptable())
            result << QString("%1 %2").arg(property.typeName(), property.name());
    }
    return result;
}

} // namespace

class ReceivingCardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void propertiesStandInTheirOrder()
    {
        QCOMPARE(properties(NiccCoeffs::staticMetaObject), QStringList{"uchar index"});
        QCOMPARE(properties(ConfigData::staticMetaObject), QStringList{"QVariant BrightnessParameter"});
        QCOMPARE(properties(BrightnessParameter::staticMetaObject),
                 (QStringList{"bool ISEnable18BitModel", "int Brightness", "double RedGamma", "double GreenGamma",
                              "double BlueGamma", "bool IsCustomGamma", "bool IsSupportCurrentGain", "int RedGain",
                              "int GreenGain", "int BlueGain", "int MinGain", "int MaxGain",
                              "QMap<int,QString> GainMap", "QList<int> RedGammaTable", "QList<int> GreenGammaTable",
                              "QList<int> BlueGammaTable", "QVariant ColorTemperturePara"}));
        QCOMPARE(properties(ColorTemperturePara::staticMetaObject),
                 (QStringList{"int ColorTemperature", "int InitColorTemp", "double RBrightness", "double GBrightness",
                              "double BBrightness", "double RCx", "double GCx", "double BCx", "double RCy",
                              "double BCy", "double GCy"}));
    }

    void defaultsSerialise()
    {
        const ConfigData config;
        QCOMPARE(config.objectName(), QString("ScanBoardProperty"));
        const QVariantMap map = Serializable::serialize(&config, 0).value("BrightnessParameter").toMap();
        QCOMPARE(map.size(), 17);
        QCOMPARE(map.value("MaxGain"), QVariant(255));
        QCOMPARE(map.value("MinGain"), QVariant(0));
        QCOMPARE(map.value("BlueGamma"), QVariant(2.8));
        const QVariantMap para = map.value("ColorTemperturePara").toMap();
        QCOMPARE(para.size(), 11);
        QCOMPARE(para.value("GBrightness"), QVariant(1796.57));
        QCOMPARE(para.value("BCy"), QVariant(0.08));
    }

    void aConfigurationComesBackFromItsMap()
    {
        ConfigData config;
        config.brightness()->setGainMap({{3, "x"}, {-1, ""}});
        config.brightness()->setRedGammaTable({1, 2, 65536});
        config.brightness()->colorTemperturePara().rCx = 0.7;
        const QVariantMap map = Serializable::serialize(&config, 0);
        ConfigData back;
        delete back.brightness(); // a missing object is made
        QVERIFY(back.deserialize(map, 0));
        QCOMPARE(Serializable::serialize(&back, 0), map);
        QCOMPARE(back.brightness()->gainMap().value(3), QString("x"));
        QVERIFY(back.brightness()->deserialize({{"BlueGammaTable", QVariantList{1.0, 65536}}}, 0)); // as from JSON
        QCOMPARE(back.brightness()->blueGammaTable(), (QList<int>{1, 65536}));
        QVERIFY(!back.brightness()->deserialize({{"BlueGammaTable", QVariantList{1.5}}}, 0));
        QCOMPARE(back.brightness()->blueGammaTable().size(), 2);
        QCOMPARE(back.brightness()->colorTemperturePara().rCx, 0.7);
    }

    void aConfigurationComesBackFromJson()
    {
        ConfigData config;
        config.brightness()->setGainMap({{3, "x"}, {-1, ""}});
        config.brightness()->setGreenGammaTable({0, 65536, -2});
        const QVariantMap map = Serializable::serialize(&config, 0);
        const QByteArray text = QJsonDocument(QJsonObject::fromVariantMap(map)).toJson();
        ConfigData back;
        QVERIFY(back.deserialize(QJsonDocument::fromJson(text).object().toVariantMap(), 0));
        QCOMPARE(Serializable::serialize(&back, 0), map);
        QCOMPARE(back.brightness()->gainMap(), config.brightness()->gainMap());
        QCOMPARE(back.brightness()->greenGammaTable(), config.brightness()->greenGammaTable());
        QVERIFY(!back.deserialize({{"BrightnessParameter", QVariantMap{{"GainMap", QVariantMap{{"x", ""}}}}}}, 0));
        QVERIFY(!back.deserialize({{"BrightnessParameter", QVariantMap{{"ColorTemperturePara", QVariant()}}}}, 0));
    }

    void valuesAreLimitedToTheirStorage_data()
    {
        QTest::addColumn<int>("given");
        QTest::addColumn<int>("kept");
        QTest::newRow("largest") << 65535 << 65535;
        QTest::newRow("above") << 65536 << 65535;
        QTest::newRow("below") << -1 << 0;
    }

    void valuesAreLimitedToTheirStorage()
    {
        QFETCH(int, given);
        QFETCH(int, kept);
        BrightnessParameter parameter;
        for (const char* name : {"Brightness", "RedGain", "GreenGain", "BlueGain", "MinGain", "MaxGain"}) {
            QVERIFY(parameter.setProperty(name, given));
            QCOMPARE(parameter.property(name).toInt(), kept);
        }
    }

    void copiesAreDeep()
    {
        auto original = std::make_unique<ConfigData>();
        original->brightness()->setRedGain(7);
        original->brightness()->colorTemperturePara().wCx = 0.3; // not a property, but copied
        const std::unique_ptr<ConfigData> clone(original->clone());
        ConfigData assigned;
        assigned = *original;
        assigned = *&assigned;
        original->brightness()->setRedGain(8);
        for (const ConfigData* copy : {clone.get(), &assigned}) {
            QVERIFY(copy->brightness() != original->brightness());
            QCOMPARE(copy->brightness()->parent(), copy);
            QCOMPARE(copy->brightness()->redGain(), 7);
            QCOMPARE(copy->brightness()->colorTemperturePara().wCx, 0.3);
            QCOMPARE(copy->objectName(), QString("ScanBoardProperty"));
        }
        delete original->brightness();
        QVERIFY(!ConfigData(*original).brightness());
        original.reset();
        QCOMPARE(clone->brightness()->redGain(), 7);
    }

    void theTypeIsTheBitOfTheIndex_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("type");
        for (const auto& [index, type] : {std::pair(0, 1), {1, 1}, {2, 2}, {7, 64}, {12, 2048}, {13, 1}, {255, 1}})
            QTest::addRow("%d", index) << index << type;
    }

    void theTypeIsTheBitOfTheIndex()
    {
        QFETCH(int, index);
        QFETCH(int, type);
        NiccCoeffs coeffs;
        QCOMPARE(coeffs.property("index").toInt(), 1);
        QCOMPARE(coeffs.getTypeByIndex(static_cast<unsigned char>(index)), type);
        const std::unique_ptr<NiccCoeffs> clone(coeffs.clone());
        QCOMPARE(clone->property("index").toInt(), index);
        QCOMPARE(clone->getType(), type);
    }

    void theModelStartsAnewAfterARelease()
    {
        ConfigData* first = RvCardConfigDataModel::getInstance();
        first->brightness()->setBrightness(1);
        QCOMPARE(RvCardConfigDataModel::getInstance(), first);
        RvCardConfigDataModel::releaseInstance();
        RvCardConfigDataModel::releaseInstance();
        QCOMPARE(RvCardConfigDataModel::getInstance()->brightness()->brightness(), 255);
        RvCardConfigDataModel::releaseInstance();
    }
};

QTEST_APPLESS_MAIN(ReceivingCardTest)
#include "tst_receivingcard.moc"
