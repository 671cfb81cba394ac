#include "commonconfigaction.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

// Outside any namespace, as Qt asks.
static void initialiseResources()
{
    Q_INIT_RESOURCE(gamutconfig);
}

namespace Action {

namespace {

Model::LXY toPoint(const QJsonValue& value)
{
    return {value[QLatin1String("lum")].toDouble(),
            value[QLatin1String("x")].toDouble(),
            value[QLatin1String("y")].toDouble(),
            {}};
}

Model::ColorGamutInfo toGamut(const QJsonValue& value)
{
    Model::ColorGamutInfo gamut;
    gamut.rLxy = toPoint(value[QLatin1String("RedPoint")]);
    gamut.gLxy = toPoint(value[QLatin1String("GreenPoint")]);
    gamut.bLxy = toPoint(value[QLatin1String("BluePoint")]);
    gamut.wLxy = toPoint(value[QLatin1String("WhitePoint")]);
    gamut.name = value[QLatin1String("name")].toString().toStdString();
    return gamut;
}

} // namespace

bool ColorGamutConfigAction::load(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning() << "gamut configurations" << path << file.errorString();
        return false;
    }
    const QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    QHash<QString, Model::ColorGamutInfo> gamuts;
    for (const QJsonValue value : root.value(QLatin1String("gamuts")).toArray())
        gamuts.insert(value[QLatin1String("name")].toString(), toGamut(value));
    const QString defaultName = root.value(QLatin1String("default")).toString();
    if (!gamuts.contains(defaultName)) {
        qWarning() << "gamut configurations" << path << "expected a default among its gamuts, found" << defaultName;
        return false;
    }
    m_gamuts = gamuts;
    m_defaultName = defaultName;
    return true;
}

CommonConfigAction* CommonConfigAction::getInstance()
{
    static CommonConfigAction instance;
    return &instance;
}

CommonConfigAction::CommonConfigAction()
{
    initialiseResources();
    const QString shipped =
        QCoreApplication::applicationDirPath() + QStringLiteral("/qualityadjust/defaultcolorgamut.cfg");
    if (!QFile::exists(shipped) || !m_gamuts.load(shipped))
        m_gamuts.load(QStringLiteral(":/suite/action/defaultcolorgamut.cfg"));
}

} // namespace Action
