#pragma once

#include <qualityutility/qualityutility_export.h>
#include <qualityutility/resource/picqualitysettings.h>

#include <QList>
#include <QString>
#include <QThread>

#include <array>
#include <atomic>

struct SettingsKey;

/// The places of the picture-quality files, the settings and the built-in gray tables of a process.
///
/// The first getInstance() prepares the user's data folder and reads the settings file; initResourceFile() loads the
/// gray tables on this object's thread. Tables are read after it has returned true, by any thread; settings and paths
/// are used from one thread.
class QUALITYUTILITY_EXPORT PicQualityResource : public QThread
{
    Q_OBJECT

public:
    /// The gray tables, in the order of loading. `Low` tables are for low brightness.
    enum GrayTable {
        Gray10,
        Gray10Low,
        Gray11,
        Gray11Low,
        Gray12,
        Gray12Low,
        Gray13,
        Gray13Low,
        Gray14,
        Gray14Low,
        Gray15,
        Gray15Low,
        Gray16,
        GrayTableCount ///< how many there are; no table
    };

    /// Waits for a loading that is under way.
    ~PicQualityResource() override;

    /// The process's instance, made at the first call by any thread. Blocks while it is made (files are read).
    static PicQualityResource* getInstance();
    /// Deletes the instance; the next getInstance() starts anew. Waits for a loading that is under way. Nobody may be
    /// using it, except that an event handler may release it under a waitForReadResource() of its own thread.
    static void releaseInstance();

    /// True at once when the tables are loaded, false at once while they are being loaded; otherwise as
    /// waitForReadResource. Any thread.
    bool initResourceFile();
    /// Loads the tables, if they are not yet, while a local event loop keeps the caller's thread alive; without a
    /// QCoreApplication the thread blocks. True when they are loaded. They are loaded once, however many threads ask.
    /// False when an event handler released the instance meanwhile, when no thread could be started, and when the
    /// process is being left (its static objects go, which waits for a loading that is under way). Any thread; but one
    /// that asks for the first instance, or starts this thread, only while another is leaving the process may find
    /// Qt's own objects gone.
    bool waitForReadResource();

    /// Appends the numbers of a table file (text, one per line) to `list`; a line that does not convert is 0. False,
    /// with a log line, when the file cannot be opened. Any thread. @{
    bool parseGrayFromFile(const QString& file, QList<unsigned int>& list);
    bool parseGrayFromFile(const QString& file, QList<unsigned short>& list);
    /// @}

    /// Prepares the data folder, deletes what the previous run left there for transfer and completes the paths. Called
    /// by the constructor. A folder or copy that cannot be made is not reported.
    void initCacheFile();
    /// Reads the settings file, as the constructor does. False, with a log line and no value changed, when it is
    /// missing.
    bool parsePicqualityConfigFile(const QString& file);

    // Settings. Writing back changes one key of the settings file and keeps all else, comments too; a missing file is
    // not made. It waits up to five seconds for another process that is changing the file. A write-back that fails is
    // logged and leaves the file as it was.

    /// The colorimeter's frequency, Hz; 60 by default. Written back with two decimals. @{
    float getFreq() const { return m_settings.freq; }
    void setFreq(float freq);
    /// @}
    /// The folder last opened; the user's documents folder where the settings file does not say. Written back. @{
    QString getLastOpenPath() const { return m_settings.lastOpenPath; }
    void setLastOpenPath(const QString& path);
    /// @}
    /// White compensation at the brightest gray level, in the calibration tools' steps; 4 by default.
    int getGrayMaxWCom() const { return m_settings.grayMaxWCom; }
    /// Whether a colour temperature of the user's is used, and which (kelvin, 1500 to 100000).
    void getCusColorT(bool& isCustom, int& kelvin) const;
    /// The default white point, CIE 1931; 0.314, 0.351 by default. @{
    double getNColorXCom() const { return m_settings.xCom; }
    double getNColorYCom() const { return m_settings.yCom; }
    /// @}
    /// All values. Valid as long as this object, and changed in place by the setters.
    const PicQualitySettings& settings() const { return m_settings; }

    // Full paths, whether or not there is such a file.

    /// The calibration in progress and its temporary copy, in the data folder; kept from run to run. @{
    QString getFineGrayCacheFile() const { return m_fineGrayCacheFile; }
    QString getFineGrayTempCacheFile() const { return m_fineGrayTempCacheFile; }
    /// @}
    /// The shipped gamut configurations, in "qualityadjust" beside the executable.
    QString getColorGamutFile() const { return m_colorGamutFile; }
    /// The user's copy of the standard gamut configurations, in the data folder; made once and then left alone.
    QString getDefaultColorGamutFile() const { return m_defaultColorGamutFile; }
    /// Files that programs of the suite hand each other in the data folder, deleted at each start: gamut correction,
    /// gray correction, receiving-card configuration and coefficient pack. @{
    QString getNiccTransferFile() const { return m_niccTransferFile; }
    QString getGrayTransferFile() const { return m_grayTransferFile; }
    QString getRvCardConfigFile() const { return m_rvCardConfigFile; }
    QString getCoeffsPackConfigFile() const { return m_coeffsPackConfigFile; }
    /// @}
    /// The settings file, in "qualityadjust_config" beside the executable.
    QString getSettingsFile() const { return m_settingsFile; }
    /// Held for callers, and no full paths: the configuration folder of earlier versions below the user's home, and a
    /// file name in it. @{
    QString getLegacyConfigFolder() const { return m_legacyConfigFolder; }
    QString getImageEqualityAddressFile() const { return m_imageEqualityAddressFile; }
    /// @}
    /// Held for callers: 1000.
    int getHeldInteger() const { return m_heldInteger; }

    // Tables, empty until they are loaded, and where a resource is missing. Valid as long as this object;
    // docs/gray-tables.md has what they hold.

    /// Linear drive per gray level, 0 to 2^bits - 1, with 2^bits entries. GrayTableCount is not to be asked for.
    const QList<unsigned short>& grayTable(GrayTable table) const { return m_grayTables.at(table); }
    /// The resource of a table, as grayTable() takes it; a host's own of that name is found first.
    static QString grayTablePath(GrayTable table);
    /// Where each node of a look-up table lies on the 16-bit scale: 1024 entries, 0 to 65535.
    const QList<unsigned int>& lutIndexTable() const { return m_lutIndexTable; }
    /// 8-bit white to 16-bit drive: 256 entries, 0 to 65535.
    const QList<unsigned int>& whiteGrayTable() const { return m_whiteGrayTable; }
    /// A copy of the Gray10Low table.
    const QList<unsigned short>& workingGrayTable() const { return m_workingGrayTable; }

protected:
    /// Loads the tables on this object's thread; does nothing when they are loaded or the process is being left.
    /// start() begins it, and leaving waits for it as above.
    void run() override;

private:
    PicQualityResource();

    class LoadingGuard;
    bool startLoading();
    void writeBack(const SettingsKey& key, const QString& value);

    static std::atomic<PicQualityResource*> m_instance;

    QString m_colorGamutFile;
    const QString m_lutIndexPath;
    const QString m_whiteGrayPath;
    const QString m_moduleFolder;
    const QString m_dataFolder;
    QString m_defaultColorGamutFile;
    QString m_niccTransferFile;
    QString m_grayTransferFile;
    QString m_rvCardConfigFile;
    QString m_coeffsPackConfigFile;
    const QString m_legacyConfigFolder;
    const QString m_imageEqualityAddressFile;
    QString m_fineGrayCacheFile;
    QString m_fineGrayTempCacheFile;
    QString m_settingsFile;
    std::atomic<bool> m_isLoaded{false};
    const int m_heldInteger = 1000;
    std::array<QList<unsigned short>, GrayTableCount> m_grayTables;
    QList<unsigned int> m_lutIndexTable;
    QList<unsigned int> m_whiteGrayTable;
    QList<unsigned short> m_workingGrayTable;
    PicQualitySettings m_settings;
};
