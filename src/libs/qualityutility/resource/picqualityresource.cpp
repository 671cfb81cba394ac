#include "picqualityresource.h"

#include "graytabletext_p.h"
#include "settingstext_p.h"
#include "settingswriteback_p.h"
#include <qualityutility/support/publishedinstance_p.h>
#include <suite/common/filehelper.h>
#include <suite/service/systemservice.h>

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QPointer>
#include <QSettings>

#include <mutex>

namespace {

QMutex m_lock; // creation of the instance

// Start of a loading. Both outlive every static object: they have nothing to destroy.
std::mutex s_loadingMutex;
bool s_isProcessLeft = false;

/// The first two carry their own spelling.
constexpr const char* grayTableNames[PicQualityResource::GrayTableCount] = {
    "nGrary_10.txt",    "nGrary_10_Low.txt", "nGray_11.txt",     "nGray_11_Low.txt", "nGray_12.txt",
    "nGray_12_Low.txt", "nGray_13.txt",      "nGray_13_Low.txt", "nGray_14.txt",     "nGray_14_Low.txt",
    "nGray_15.txt",     "nGray_15_Low.txt",  "nGray_16.txt"};

void logMissing(const QString& file)
{
    qCritical().noquote() << QStringLiteral("file %1 not exist!!!").arg(file);
}

bool isProcessLeft()
{
    const std::lock_guard lock(s_loadingMutex);
    return s_isProcessLeft;
}

template <typename T>
bool parseGray(const QString& path, QList<T>& list)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        logMissing(path);
        return false;
    }
    appendGrayNumbers(file.readAll(), list);
    qInfo().noquote() << QStringLiteral("read done, list size is %1").arg(list.size());
    return true;
}

} // namespace

/// Resources are found in the order of their registration, and ours came with the library: registered anew they stand
/// behind a host's of the same names. (The macros do not work in a namespace.)
static void putOwnTablesLast()
{
    Q_CLEANUP_RESOURCE(qualityutility_graytables);
    Q_INIT_RESOURCE(qualityutility_graytables);
}

std::atomic<PicQualityResource*> PicQualityResource::m_instance{nullptr};

/// Goes before all that stood when it was made: the loading thread reads Qt's resources and logs, and may not be in the
/// middle when Qt's static objects, or what a host's log handler uses, go. Made with the first instance, as start() is
/// everybody's, and again for the first loading that is asked for.
class PicQualityResource::LoadingGuard
{
public:
    LoadingGuard() = default;
    /// Asks for what Qt makes when it is first asked for: it has to stand before the guard.
    static void standOnQt()
    {
        QFile::exists(grayTablePath(Gray10));
        QLoggingCategory::defaultCategory()->isInfoEnabled();
        qFormatLogMessage(QtInfoMsg, {}, {});
    }
    ~LoadingGuard()
    {
        {
            const std::lock_guard lock(s_loadingMutex);
            s_isProcessLeft = true;
        }
        if (PicQualityResource* resource = m_instance.load(std::memory_order_acquire))
            resource->wait();
    }
    LoadingGuard(const LoadingGuard&) = delete;
    LoadingGuard& operator=(const LoadingGuard&) = delete;
};

PicQualityResource::PicQualityResource()
    : m_colorGamutFile(QStringLiteral("colorgamut.cfg")),
      m_lutIndexPath(QStringLiteral(":/qualityadjust/resource/LUT_INDEX.txt")),
      m_whiteGrayPath(QStringLiteral(":/qualityadjust/resource/nGray_White.txt")),
      m_moduleFolder(QStringLiteral("qualityadjust")), m_dataFolder(QStringLiteral("data")),
      m_defaultColorGamutFile(QStringLiteral("defaultcolorgamut.cfg")),
      m_niccTransferFile(QStringLiteral("niccpath.nicc")), m_grayTransferFile(QStringLiteral("graypath.gray")),
      m_rvCardConfigFile(QStringLiteral("rvCardConfig.nrf")),
      m_coeffsPackConfigFile(QStringLiteral("coeffsPackConfig.nrf")),
      m_legacyConfigFolder(QStringLiteral("/AppData/Roaming/Lumorix 2012/Config")),
      m_imageEqualityAddressFile(QStringLiteral("ImageEqualityAddress.ini")),
      m_fineGrayCacheFile(QStringLiteral("grayCache.gray")),
      m_fineGrayTempCacheFile(QStringLiteral("grayCachetemp.gray")),
      m_settingsFile(QStringLiteral("picqualityconfigfile.ini"))
{
    initCacheFile();
    parsePicqualityConfigFile(m_settingsFile);
}

PicQualityResource::~PicQualityResource()
{
    if (isRunning())
        requestInterruption();
    // run() does not look at the request, but it takes milliseconds; a thread object must not go before its thread.
    wait();
}

PicQualityResource* PicQualityResource::getInstance()
{
    return Support::publishedInstance(m_instance, m_lock, [] {
        LoadingGuard::standOnQt();
        static const LoadingGuard guard;
        return new PicQualityResource;
    });
}

void PicQualityResource::releaseInstance()
{
    Support::releasePublishedInstance(m_instance);
}

void PicQualityResource::initCacheFile()
{
    const QString data =
        Service::SystemService::getRoamingCompanyPath() + QStringLiteral("/%1/%2/").arg(m_moduleFolder, m_dataFolder);
    const bool isThere = QDir(data).exists() || Common::FileHelper::createDir(data);
    const QString application = QCoreApplication::applicationDirPath() + QLatin1Char('/') + m_moduleFolder;

    const auto inData = [&data](const QString& path) { return data + QFileInfo(path).fileName(); };
    m_defaultColorGamutFile = inData(m_defaultColorGamutFile);
    if (isThere && !QFile::exists(m_defaultColorGamutFile)) // QFile::copy would go by way of a temporary folder
        QFile::copy(application + QLatin1Char('/') + QFileInfo(m_defaultColorGamutFile).fileName(),
                    m_defaultColorGamutFile);
    m_colorGamutFile = application + QLatin1Char('/') + QFileInfo(m_colorGamutFile).fileName();
    m_settingsFile = application + QStringLiteral("_config/") + QFileInfo(m_settingsFile).fileName();
    m_fineGrayCacheFile = inData(m_fineGrayCacheFile);
    m_fineGrayTempCacheFile = inData(m_fineGrayTempCacheFile);

    // What the previous run left for transfer is gone; its caches stay.
    for (QString* file : {&m_niccTransferFile, &m_grayTransferFile, &m_rvCardConfigFile, &m_coeffsPackConfigFile}) {
        *file = inData(*file);
        QFile::remove(*file);
    }
}

bool PicQualityResource::parsePicqualityConfigFile(const QString& file)
{
    if (!QFileInfo(file).isFile()) {
        logMissing(file);
        return false;
    }
    QSettings settings(file, QSettings::IniFormat);
    useSettingsCodec(settings);
    m_settings.read(settings);
    return true;
}

void PicQualityResource::setFreq(float freq)
{
    m_settings.freq = freq;
    writeBack({QStringLiteral("Colorimeter410"), QStringLiteral("Freq")},
              QString::number(static_cast<double>(freq), 'f', 2));
}

void PicQualityResource::setLastOpenPath(const QString& path)
{
    m_settings.lastOpenPath = path;
    writeBack({QStringLiteral("LastOpenPath"), QStringLiteral("OpenPath")}, path);
}

void PicQualityResource::writeBack(const SettingsKey& key, const QString& value)
{
    if (QFileInfo(m_settingsFile).isFile() && !writeBackSetting(m_settingsFile, key, value))
        qCritical() << "file" << m_settingsFile << "write failed!!!";
}

void PicQualityResource::getCusColorT(bool& isCustom, int& kelvin) const
{
    isCustom = m_settings.customColorCoordinate;
    kelvin = m_settings.colorTemp;
}

QString PicQualityResource::grayTablePath(GrayTable table)
{
    return QStringLiteral(":/qualityadjust/resource/nGray/") + QLatin1String(grayTableNames[table]);
}

bool PicQualityResource::parseGrayFromFile(const QString& file, QList<unsigned int>& list)
{
    return parseGray(file, list);
}

bool PicQualityResource::parseGrayFromFile(const QString& file, QList<unsigned short>& list)
{
    return parseGray(file, list);
}

bool PicQualityResource::initResourceFile()
{
    if (m_isLoaded || isRunning())
        return m_isLoaded;
    return waitForReadResource();
}

/// Starts the loading, if it is neither done nor under way. False when there is nothing to wait for.
bool PicQualityResource::startLoading()
{
    static const LoadingGuard guard;
    const std::lock_guard lock(s_loadingMutex);
    // In this order: a thread that ran and does so no longer has set the flag.
    if (isRunning())
        return true;
    if (m_isLoaded || s_isProcessLeft)
        return false;
    start(QThread::InheritPriority);
    return isRunning() || isFinished(); // neither: the system gave no thread
}

bool PicQualityResource::waitForReadResource()
{
    if (m_isLoaded)
        return true;
    QEventLoop loop;
    connect(this, &QThread::finished, &loop, &QEventLoop::quit); // first: the end may come before the loop begins
    if (!startLoading())
        return m_isLoaded;
    const QPointer<PicQualityResource> self(this);
    if (QCoreApplication::instance())
        loop.exec();
    if (!self) // released by an event handler
        return false;
    // Told to quit in the middle, the loop ends early; the tables belong to the thread until it is done.
    wait();
    return m_isLoaded;
}

void PicQualityResource::run()
{
    if (m_isLoaded || isProcessLeft()) // start() is everybody's
        return;
    // Once: while they are away another thread misses them.
    static std::once_flag s_ownTablesArePutLast;
    std::call_once(s_ownTablesArePutLast, putOwnTablesLast);
    parseGrayFromFile(m_lutIndexPath, m_lutIndexTable);
    parseGrayFromFile(m_whiteGrayPath, m_whiteGrayTable);
    for (int table = 0; table < GrayTableCount; ++table)
        parseGrayFromFile(grayTablePath(static_cast<GrayTable>(table)), m_grayTables.at(static_cast<size_t>(table)));
    m_workingGrayTable = m_grayTables.at(Gray10Low);
    m_isLoaded = true;
}
