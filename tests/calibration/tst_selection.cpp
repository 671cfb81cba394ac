#include "support/calibrationsetup.h"

#include <QTest>

using namespace Calibration;
using Cids = std::vector<unsigned long long>;

Q_DECLARE_METATYPE(Cids)

class SelectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void identifiersAreReadAndShownAsRanges()
    {
        QCOMPARE(good(parseCabinets({"7", "5-7", "18446744073709551614-18446744073709551615"})),
                 (Cids{7, 5, 6, 7, 18446744073709551614U, 18446744073709551615U}));
        QCOMPARE(good(parseCabinets({"1-1000000"})).size(), size_t{1000000});
        QCOMPARE(cabinetRanges({20, 1, 3, 2, 18446744073709551615U}), QString("1-3, 20, 18446744073709551615"));
        QCOMPARE(cabinetRanges({}), QString("none"));
    }

    void whatIsNoRangeIsRefused_data()
    {
        QTest::addColumn<QString>("fault");
        for (const char* text : {"x", "", "5-", "-1", "18446744073709551616"})
            QTest::newRow(text) << QString("expected an identifier or a range such as 5-9, found \"%1\"").arg(text);
        for (const char* text : {"9-5", "1-1000001"})
            QTest::newRow(text) << QString("\"%1\" is not a range that goes up by less than 1000000").arg(text);
    }

    void whatIsNoRangeIsRefused()
    {
        QFETCH(QString, fault);
        QCOMPARE(faultText(parseCabinets({"1", QTest::currentDataTag()})), "Usage: cabinets: " + fault);
    }

    void aSelectionNamesTargets_data()
    {
        QTest::addColumn<QStringList>("devices");
        QTest::addColumn<Cids>("cabinets");
        QTest::addColumn<QString>("targets"); ///< or the fault
        QTest::newRow("everything") << QStringList{} << Cids{} << "a 1-2; b 1-2; c 1-2";
        QTest::newRow("devices") << QStringList{"c", "a"} << Cids{} << "a 1-2; c 1-2";
        QTest::newRow("cabinets") << QStringList{} << Cids{2} << "a 2; b 2; c 2";
        QTest::newRow("both") << QStringList{"b"} << Cids{1} << "b 1";
        QTest::newRow("no such device") << QStringList{"a", "x"} << Cids{}
                                        << "Usage: device x: the wall has no such device";
        QTest::newRow("no such cabinet") << QStringList{"a"} << Cids{9, 1, 8}
                                         << "Usage: cabinet 8: no selected device has such a cabinet";
    }

    void aSelectionNamesTargets()
    {
        QFETCH(QStringList, devices);
        QFETCH(Cids, cabinets);
        Selection selection{{}, cabinets};
        for (const QString& device : devices)
            selection.devices.push_back(device.toStdString());
        const auto targets = selectTargets(TestWall().wall, selection);
        QStringList found;
        if (targets) {
            for (const auto& [device, cids] : *targets)
                found << QString::fromStdString(device) + ' ' + cabinetRanges(cids);
        }
        QTEST(targets ? found.join("; ") : faultText(targets), "targets");
        QCOMPARE(faultText(selectTargets({}, selection)), QString("BadData: the wall has no devices"));
    }
};

QTEST_GUILESS_MAIN(SelectionTest)
#include "tst_selection.moc"
