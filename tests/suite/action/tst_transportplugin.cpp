#include "support/testfiles.h"
#include <suite/action/action.h>
#include <suite/action/transportplugin.h>

#include <sys/stat.h>

#include <QLibraryInfo>
#include <QTemporaryDir>
#include <QTest>

using Action::loadDevices;
using Common::Fault;

namespace {

constexpr char metadata[] = "QTMETADATA !"; ///< four bytes follow: of its own version, Qt's major and minor, flags

/// The faulty plug-in with the bytes `from` replaced, and as many of those behind them as `to` has.
QByteArray changed(const QByteArray& from, const QByteArray& to)
{
    QByteArray plugin = readFile(FAULTY_PLUGIN);
    if (!plugin.contains(from))
        qFatal("nothing to change");
    for (int at = plugin.indexOf(from); at >= 0; at = plugin.indexOf(from, at + 1))
        plugin.replace(at, to.size(), to);
    return plugin;
}

QString sendMode(const std::string& device, unsigned long long cid, int mode)
{
    Parameters parameters;
    parameters.insert("cids", std::vector<unsigned long long>{cid});
    parameters.insert("mode", mode);
    QString ending;
    Action::put(
        "Device_CabinetsCorrect", device, parameters,
        [&](Parameters reply, const std::string&) { ending = QString("mode %1").arg(reply.get<int>("mode")); },
        [&](const QString& text) { ending = text; }, true, PackagePriority::Normal);
    return ending;
}

} // namespace

class TransportPluginTest : public QObject
{
    Q_OBJECT

private:
    QString in(const QString& name) const { return m_folder.filePath(name); }

    const QTemporaryDir m_folder;

private Q_SLOTS:
    void whatIsNoPlugInOfOursIsNotLoaded_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("found");
        const QString ours = "a Qt plug-in of interface suite.action.TransportPlugin/1";
        const auto written = [this](const QString& name, const QByteArray& content) {
            return writeFile(in(name + ".so"), content);
        };
        QTest::newRow("no such file") << in("none.so") << ours << "no such file";
        QTest::newRow("a folder") << m_folder.path() << ours << "what is no regular file";
        ::mkfifo(qPrintable(in("pipe")), 0600);
        QTest::newRow("a pipe that nobody writes") << in("pipe") << ours << "what is no regular file";
        QTest::newRow("an empty file") << written("empty", {}) << ours << "none: ";
        QTest::newRow("a text") << written("text", "Devices\n") << ours << "none: ";
        QTest::newRow("a plain shared library") << OTHER_LIBRARY << ours << "none: ";
        const QByteArray plugin = readFile(FAULTY_PLUGIN);
        QTest::newRow("the first half of a plug-in")
            << written("half", plugin.left(plugin.size() / 2)) << ours << "none: ";
        QTest::newRow("another interface")
            << QLibraryInfo::location(QLibraryInfo::PluginsPath) + "/platforms/libqoffscreen.so" << ours
            << "one of org.qt-project.Qt.QPA.";
        QTest::newRow("another version of the interface")
            << written("version", changed("suite.action.TransportPlugin/1", "suite.action.TransportPlugin/2")) << ours
            << "one of suite.action.TransportPlugin/2";
        const QString loadable = QString("a plug-in that Qt %1 loads").arg(qVersion());
        QTest::newRow("a later Qt") << written("later", changed(metadata, metadata + QByteArray("\x00\x05\x63", 3)))
                                    << loadable << "incompatible Qt library. (5.99.0)";
        QTest::newRow("another Qt") << written("other", changed(metadata, metadata + QByteArray("\x00\x06\x02", 3)))
                                    << loadable << "incompatible Qt library. (6.2.0)";
        QTest::newRow("a suite without a function that it calls")
            << written("function", changed("_ZN6Action15TransportPluginD2Ev", "_ZN6Action15TransportPluginD7Ev"))
            << loadable << "undefined symbol: _ZN6Action15TransportPluginD7Ev";
        QTest::newRow("an object without the interface")
            << written("object", changed(QByteArray("suite.action.TransportPlugin/1", 31), "s-"))
            << "an object with Q_INTERFACES(Action::TransportPlugin)"
            << "one without";
    }
    void whatIsNoPlugInOfOursIsNotLoaded()
    {
        QFETCH(QString, file);
        QFETCH(QString, expected);
        QFETCH(QString, found);
        const auto devices = loadDevices(file, "confirms");
        QVERIFY(!devices);
        const Fault& fault = devices.fault();
        QCOMPARE(fault.kind, Fault::Kind::Unavailable);
        QCOMPARE(fault.subject, "plug-in " + file);
        QCOMPARE(fault.expected, expected);
        QVERIFY2(fault.found.contains(found), qPrintable(fault.found));
    }

    void aPlugInThatFailsIsAFault_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::addColumn<QString>("found");
        QTest::newRow("an error") << "left"
                                  << "an error: no device \"left\"";
        QTest::newRow("an error without an argument") << ""
                                                      << "an error: no device \"\"";
        QTest::newRow("an exception") << "throws"
                                      << "an exception: no bus";
        QTest::newRow("a number thrown") << "throws a number"
                                         << "an exception of an unknown type";
        QTest::newRow("no transport") << "gives nothing"
                                      << "no transport to them";
        QTest::newRow("a constructor that throws") << "constructor"
                                                   << "an exception: no licence";
    }
    void aPlugInThatFailsIsAFault()
    {
        QFETCH(QString, argument);
        QFETCH(QString, found);
        const QString file = in(QString(QTest::currentDataTag()) + ".so"); // one that has no object yet
        QVERIFY(QFile::copy(FAULTY_PLUGIN, file));
        if (argument == "constructor")
            qputenv("FAULTY_PLUGIN_THROWS", "1");
        const auto devices = loadDevices(file, argument);
        qunsetenv("FAULTY_PLUGIN_THROWS");
        QVERIFY(!devices);
        QVERIFY(devices.fault() == (Fault{Fault::Kind::Unavailable, "plug-in " + file, "devices", found}));
        QVERIFY(loadDevices(file, "confirms")); // it may succeed another time
    }

    void eachOpeningReachesDevicesOfItsOwn()
    {
        auto first = loadDevices(MEMORY_DEVICES, EXAMPLES "/wall.json");
        const auto second = loadDevices(MEMORY_DEVICES, EXAMPLES "/wall.json");
        QVERIFY2(first && second, qPrintable(first ? QString() : first.fault().message()));
        QVERIFY(first->isSimulated);
        QCOMPARE(*first->wall(), readFile(EXAMPLES "/wall.json"));
        Action::setTransport(first->transport);
        QCOMPARE(sendMode("left", 1, 9), "mode 9");
        QCOMPARE(sendMode("left", 99, 9), "transport failed: no cabinet 99 here");
        Action::setTransport(nullptr);
        QCOMPARE(first->reader->cabinet("left", 1)->mode, 9);
        QCOMPARE(first->reader->cabinet("left", 2)->mode, 3);
        QVERIFY(!first->reader->cabinet("left", 99));
        *first = {};
        QCOMPARE(second->reader->cabinet("left", 1)->mode, 3);
    }
};

QTEST_GUILESS_MAIN(TransportPluginTest)
#include "tst_transportplugin.moc"
