// loader PLUGIN WALL.json: switches the correction of cabinet 1 of "left" on, through a plug-in.

#include <suite/action/action.h>
#include <suite/action/transportplugin.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const auto devices = Action::loadDevices(arguments.value(1), arguments.value(2));
    if (!devices) {
        std::fprintf(stderr, "%s\n", qPrintable(devices.fault().message()));
        return 1;
    }
    Action::setTransport(devices->transport);
    Parameters parameters;
    parameters.insert("cids", std::vector<unsigned long long>{1});
    parameters.insert("mode", 8);
    Action::put(
        "Device_CabinetsCorrect", "left", parameters, [](const Parameters&, const std::string&) {},
        [](const QString& text) { std::fprintf(stderr, "%s\n", qPrintable(text)); }, true, PackagePriority::Normal);
    const auto cabinet = devices->reader->cabinet("left", 1);
    std::printf("cabinet 1 has mode %d\n", cabinet ? cabinet->mode : -1);
    Action::setTransport(nullptr);
    return cabinet && cabinet->mode == 8 ? 0 : 1;
}
