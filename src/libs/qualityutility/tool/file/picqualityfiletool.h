#pragma once

/// \file
/// The picture-quality documents and archives of a project.

#include <qualityutility/qualityutility_export.h>
#include <suite/model/lxy.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <map>
#include <string>
#include <vector>

namespace Model {
struct ColorGamutInfo;
struct FineGrayAdvanceParam;
struct FineGrayCoeffs;
class GrayDetailPara;
class GrayEffectPara;
class MagicGrayCoeffs;
class MagicGrayParam;
} // namespace Model

/// Reads and writes the picture-quality documents: JSON files whose keys docs/documents.md lists. Static operations
/// without state, on any thread; two calls on one file at a time are the caller's to prevent. They block for the file
/// work. Nothing throws. Red, green and blue lists are measurements, one point per measured gray level.
///
/// File operations are of three kinds:
/// - Writers (write...) make a new document in the place of the old one; what was there is gone.
/// - Updaters (update...) replace only their own keys and keep all others. A missing file begins as the empty
///   fine-gray configuration; what is not a JSON object counts as an empty one.
/// - Readers (read...) fill what they find under a known key of the right type and leave every other output as it was.
///   Content that is not JSON gives true and fills nothing.
///
/// Writers and updaters replace the file whole: after a kill or on a full disk it holds the old document or the new
/// one. docs/documents.md has the one exception, and what becomes of links, devices, closed folders and owners.
///
/// A failure gives false and a critical line `file "<path>" <text>`; FileFailures has it as a value. The texts are:
/// - "can not find!!!": there is no file (readers)
/// - "open failed!!!": a folder, no parent folder, no permission, an empty name
/// - " invalid!!!": the file is empty or has more than 256 MiB (readers and updaters)
/// - "write failed!!!": the new document is larger than that, or did not reach the disk (writers and updaters)
///
/// Points are luminance (cd/m2) and CIE 1931 xy; their names are not stored.
class QUALITYUTILITY_EXPORT PicQualityFileTool
{
public:
    PicQualityFileTool() = delete;

    /// Series of measurements by an index of the calibration's.
    using MeasureSeries = std::map<int, std::vector<Model::LXY>>;

    /// Replaces `out` by the elements of the list, in order. Unsigned 32-bit values are written as the signed ones of
    /// the same bits; of points only the three numbers are. @{
    static void listToJsonArray(const QList<Model::LXY>& list, QJsonArray& out);
    static void listToJsonArray(const std::vector<Model::LXY>& list, QJsonArray& out);
    static void listToJsonArray(const std::vector<unsigned char>& list, QJsonArray& out);
    static void listToJsonArray(const QList<unsigned char>& list, QJsonArray& out);
    static void listToJsonArray(const std::vector<int>& list, QJsonArray& out);
    static void listToJsonArray(const std::vector<unsigned int>& list, QJsonArray& out);
    static void listToJsonArray(const QList<unsigned int>& list, QJsonArray& out);
    static void listToJsonArray(const std::vector<double>& list, QJsonArray& out);
    static void listToJsonArray(const QList<double>& list, QJsonArray& out);
    /// @}

    /// Replaces `out` by the elements of the array. Points are taken from objects only, other elements are passed over;
    /// of numbers every element counts, and one that does not convert (not a number, or not whole where integers are
    /// wanted) is 0. Integers are cut to the bits of the output's type. @{
    static void jsonArrayToList(const QJsonArray& array, QList<Model::LXY>& out);
    static void jsonArrayToList(const QJsonArray& array, std::vector<Model::LXY>& out);
    static void jsonArrayToList(const QJsonArray& array, std::vector<unsigned char>& out);
    static void jsonArrayToList(const QJsonArray& array, QList<unsigned char>& out);
    static void jsonArrayToList(const QJsonArray& array, std::vector<int>& out);
    static void jsonArrayToList(const QJsonArray& array, std::vector<unsigned int>& out);
    static void jsonArrayToList(const QJsonArray& array, QList<unsigned int>& out);
    static void jsonArrayToList(const QJsonArray& array, std::vector<double>& out);
    static void jsonArrayToList(const QJsonArray& array, QList<double>& out);
    /// @}

    /// {"lum", "x", "y"}; getLxy() is the way back.
    static QJsonObject lxyToJson(const Model::LXY& point);

    /// Series in ascending order of their keys. The keys are not written: read back, they are 0, 1, 2, ... Elements
    /// without an array "measure" are passed over and use no key. `out` is replaced. @{
    static void mapToJsonArray(const MeasureSeries& series, QJsonArray& out);
    static void jsonArrayToMap(const QJsonArray& array, MeasureSeries& out);
    /// @}

    /// Copies a file over another, which is replaced whole; permissions come along. A link at the destination gives
    /// way itself, and what it leads to stays as it is. False, with the line `file "<source>" not find`, when there is
    /// no source, and without one when the copy cannot be made: the destination is then as it was.
    static bool copyFile(const QString& source, const QString& destination);

    /// Returns 0.
    static int test();
    /// Returns true; a placeholder that hosts may call.
    static bool sendGrayFileData(const QList<double>& red, const QList<double>& green, const QList<double>& blue,
                                 const Model::FineGrayCoeffs& coeffs);

    // Gray state: the sections "grayEffectPara" and "grayDetailPara" of the fine-gray configuration.

    /// Updater: replaces both sections.
    static bool updateGrayStateConfig(const QString& path, const Model::GrayEffectPara& effect,
                                      const Model::GrayDetailPara& detail);
    /// A section with all its keys. @{
    static QJsonObject grayParaToJson(const Model::GrayEffectPara& effect);
    static QJsonObject detailParaToJson(const Model::GrayDetailPara& detail);
    /// @}
    /// Takes the members that have the right type; what is missing or has another stays as it was in the record. @{
    static void JsonTograyPara(const QJsonObject& object, Model::GrayEffectPara& effect);
    static void JsonTodetailPara(const QJsonObject& object, Model::GrayDetailPara& detail);
    /// @}
    /// The peak values of the detail section (cd/m2): taken only when they are marked valid; the mark itself is set
    /// here and never cleared.
    static void JsonToLumPara(const QJsonObject& object, Model::GrayDetailPara& detail);

    // Magic gray: the section "mgData" of the fine-gray configuration, and its measurements at the root of the cache.

    /// Updater: replaces the section; `param` is not written.
    static bool updateMGGrayConfig(const QString& path, const Model::MagicGrayCoeffs& coeffs,
                                   const Model::MagicGrayParam& param);
    /// Sets the thirteen measurement members of `object` and keeps its others.
    static void MGMeasuresToJson(const Model::MagicGrayCoeffs& coeffs, QJsonObject& object);
    /// Takes measurements, tables and the two parameters, "compBase" (base-scale bits) and "maxDataShiftBase" (PWM
    /// range bits less 8), that have the right type; all else stays as it was in the records.
    static void JsonToMGCoeffs(const QJsonObject& object, Model::MagicGrayCoeffs& coeffs, Model::MagicGrayParam& param);

    // Fine-gray configuration.

    /// Writer: measurements and tables; all earlier sections are dropped, and the colour temperature is not written.
    static bool writeFineGrayConfig(const QString& path, const QList<Model::LXY>& red, const QList<Model::LXY>& green,
                                    const QList<Model::LXY>& blue, const Model::FineGrayCoeffs& coeffs);
    /// Reader. The four switches are reset before anything else, also when the file is missing; `xbitType` is the kind
    /// of extended depth, a number of the tool that wrote it.
    static bool readFineGrayConfig(const QString& path, QList<Model::LXY>& red, QList<Model::LXY>& green,
                                   QList<Model::LXY>& blue, Model::FineGrayCoeffs& coeffs, bool& openGray,
                                   bool& openXbit, int& xbitType, bool& open18bit);
    /// Reader of the measurements and tables only.
    static bool readFineGrayConfig(const QString& path, QList<Model::LXY>& red, QList<Model::LXY>& green,
                                   QList<Model::LXY>& blue, Model::FineGrayCoeffs& coeffs);
    /// Reader of the sections too, without the switches.
    static bool readFineGrayConfig(const QString& path, QList<Model::LXY>& red, QList<Model::LXY>& green,
                                   QList<Model::LXY>& blue, Model::FineGrayCoeffs& coeffs,
                                   Model::GrayEffectPara& effect, Model::GrayDetailPara& detail,
                                   Model::MagicGrayCoeffs& magicGray, Model::MagicGrayParam& magicGrayParam);

    // Fine-gray cache.

    /// Writer: all but the measurements is dropped.
    static bool writeFineGrayCache(const QString& path, const QList<Model::LXY>& red, const QList<Model::LXY>& green,
                                   const QList<Model::LXY>& blue);
    /// Updater: replaces "grayAdvance". White measurements that a shorter list replaces are kept, see judgeWUpdate.
    static bool updateFineGrayCache(const QString& path, const Model::FineGrayAdvanceParam& advance);
    /// Updater: replaces the magic-gray measurements; the tables are not written.
    static bool updateFineGrayCache(const QString& path, const Model::MagicGrayCoeffs& magicGray);
    /// Reader; the second one takes the magic-gray measurements too. What judgeWUpdate has kept is not read. @{
    static bool readFineGrayCache(const QString& path, QList<Model::LXY>& red, QList<Model::LXY>& green,
                                  QList<Model::LXY>& blue, Model::FineGrayAdvanceParam& advance);
    static bool readFineGrayCache(const QString& path, QList<Model::LXY>& red, QList<Model::LXY>& green,
                                  QList<Model::LXY>& blue, Model::FineGrayAdvanceParam& advance,
                                  Model::MagicGrayCoeffs& magicGray);
    /// @}
    /// The section "grayAdvance" with all its keys, and back: members that are missing or have another type stay as
    /// they were in the record. ("Advane" is how callers spell it.) @{
    static QJsonObject GrayAdvaneToJson(const Model::FineGrayAdvanceParam& advance);
    static void getGrayAdvane(const QJsonObject& object, Model::FineGrayAdvanceParam& advance);
    /// @}
    /// When the stored "grayAdvance" of `root` has more white measurements than `advance`, they are kept in `root`
    /// under the first free key of "wMeasure1" to "wMeasure9"; with none free they are dropped.
    static void judgeWUpdate(QJsonObject& root, QJsonObject& advance);

    // NICC configuration: measured and target gamut, and whether the correction is on. The version and the day of
    // management are NICCData's.

    /// Writer: the gamuts, the version and the day; "IsOpen" and "UsedIndex" are dropped.
    static bool writeNiccConfig(const QString& path, const Model::ColorGamutInfo& led,
                                const Model::ColorGamutInfo& target);
    /// The bytes of that document; `out` is replaced.
    static void writeNicc(const Model::ColorGamutInfo& led, const Model::ColorGamutInfo& target, QByteArray& out);
    /// As the other readers, but content that is not JSON is false, without a log line. Also sets NICCData's day of
    /// management (an invalid one for a document without it). `versionChanged` says whether the document's version is
    /// not NICCData's; without one it stays as it was. Where it is not, "UsedIndex" counts: a standard gamut becomes
    /// the target and switches the correction on, the user's own switches it off and leaves the target.
    static bool readNiccConfig(const QString& path, Model::ColorGamutInfo& led, Model::ColorGamutInfo& target,
                               bool& isOpen, bool& versionChanged);
    /// Updater, but a missing file is refused: "can not find!!!".
    static bool updateNiccOpenConfig(const QString& path, bool isOpen);
    /// The four points, and the name unless `isLed`. Coverage and coefficients are not written.
    static QJsonObject ColorGamutToJson(const Model::ColorGamutInfo& gamut, bool isLed);
    /// A record from the four points (0 for missing ones), and "name", "Cover" and "OrgCover" where they are given.
    static Model::ColorGamutInfo getColorGamut(const QMap<QString, QVariant>& map);

    // New-NICC document: the chosen target only.

    /// The document's bytes: the target's name, its colour temperature in kelvin, and in `fromInput` whether the user
    /// typed it in (not 0). `out` is replaced.
    static void writeNewNicc(const std::string& name, int temperature, int fromInput, QByteArray& out);
    /// As readNiccConfig. The name becomes "From input" when `fromInput` is not 0, read or as given.
    static bool readNewNicc(const QString& path, std::string& name, int& temperature, int& fromInput);

    // Project archives: a flat zip file of a project's documents. docs/archives.md says what is refused.

    /// Packs the files that exist, in the order NICC, cabinet configuration, gray, others, and moves the archive to its
    /// place whole. A missing one of the first three is logged at info level. Always true; a pack that fails is logged
    /// as "write failed!!!" and leaves an earlier archive as it was.
    static bool packProConfig(const QString& archive, const QString& nicc, const QString& gray,
                              const QString& cabinetConfig, const QStringList& others);
    /// Extracts an archive into its temporary folder, replacing what was there, and sorts the files by suffix: "nicc",
    /// "gray", "nrf" (exactly so; the last of each wins), and all others, which are appended. Outputs without a file
    /// stay as they were. A missing archive and one that is refused change nothing and give false with a critical line.
    static bool unpackProConfig(const QString& archive, QString& nicc, QString& gray, QString& cabinetConfig,
                                QStringList& others);
    /// What a file is in a project, told by its suffix.
    enum class ProjectRole { Nicc, Gray, CabinetConfig, Other };
    /// Any thread; looks at the name only.
    static ProjectRole projectRole(const QString& file);
    /// Extracts an archive into `folder`, which is there and empty; `files` are then the paths, in the archive's order.
    /// False with a critical line for a missing archive and for one that is refused: what came out before is the
    /// caller's to delete.
    static bool extractProject(const QString& archive, const QString& folder, QStringList& files);
    /// Deletes an archive's temporary folder: the system's temporary location, "/", and the archive's name up to its
    /// first dot. False with a critical line for a missing archive, and for a folder that is not an archive's own or
    /// cannot be deleted.
    static bool removeTempProConfig(const QString& archive);

    /// Replaces a receiving-card configuration file whole, as the writers do. False, without a line, where that fails.
    static bool writeRvcardConfig(const QString& path, const QByteArray& content);
};

/// A point from its members "lum", "x" and "y", each converted as QVariant::toDouble does; 0 for a missing one. The
/// name is empty.
QUALITYUTILITY_EXPORT Model::LXY getLxy(QMap<QString, QVariant> map);
