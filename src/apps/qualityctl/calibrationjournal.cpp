#include "calibrationjournal.h"

#include "inputfile.h"
#include "outputfile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <algorithm>

namespace {

const QString s_inputsKey = QStringLiteral("inputs");
const QString s_deviceKey = QStringLiteral("device");
const QString s_outcomesKey = QStringLiteral("outcomes");
const QString s_heldKey = QStringLiteral("held");
const QString s_cabinetsKey = QStringLiteral("cabinets");
const QString s_coefficientsKey = QStringLiteral("coefficients");
const QString s_isOnKey = QStringLiteral("on");

QJsonObject toJson(const DeviceRecord& record)
{
    QJsonArray outcomes;
    for (const SendOutcome& outcome : record.outcomes)
        outcomes.append(toJson(outcome));
    QJsonArray held;
    for (const HeldCorrection& correction : record.held)
        held.append(QJsonObject{{s_cabinetsKey, correction.cabinets},
                                {s_coefficientsKey, coefficientsToJson(correction.coefficients)},
                                {s_isOnKey, correction.isOn}});
    return {{s_deviceKey, record.device}, {s_outcomesKey, outcomes}, {s_heldKey, held}};
}

DeviceRecord recordFromJson(const QJsonObject& object)
{
    DeviceRecord record;
    record.device = object.value(s_deviceKey).toString();
    for (const QJsonValue outcome : object.value(s_outcomesKey).toArray())
        record.outcomes.push_back(outcomeFromJson(outcome.toObject()));
    for (const QJsonValue value : object.value(s_heldKey).toArray()) {
        HeldCorrection correction;
        correction.cabinets = value[s_cabinetsKey].toInt();
        correction.isOn = value[s_isOnKey].toBool();
        const QJsonArray coefficients = value[s_coefficientsKey].toArray();
        for (std::size_t i = 0; i < correction.coefficients.size(); ++i)
            correction.coefficients[i] = static_cast<std::int16_t>(coefficients.at(static_cast<int>(i)).toInt());
        record.held.append(correction);
    }
    return record;
}

QByteArray line(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

bool DeviceRecord::isDone() const
{
    return !outcomes.empty() && std::all_of(outcomes.begin(), outcomes.end(), [](const SendOutcome& outcome) {
        return outcome.kind == SendOutcome::Kind::Answered && outcome.arrived == outcome.cabinets;
    });
}

CalibrationJournal CalibrationJournal::begin(const QString& path, const QJsonObject& inputs)
{
    CalibrationJournal journal;
    journal.m_path = path;
    journal.m_inputs = inputs;
    const QByteArray first = line({{s_inputsKey, inputs}});
    writeOutputFile(path, first);
    journal.m_wholeBytes = first.size();
    return journal;
}

CalibrationJournal CalibrationJournal::read(const QString& path)
{
    constexpr qint64 maxJournalBytes = qint64{256} * 1024 * 1024; // every retry of a large wall adds to it
    const QByteArray content = readInputFile(path, QStringLiteral("calibration journal"), maxJournalBytes);
    CalibrationJournal journal;
    journal.m_path = path;
    for (int start = 0, end = 0; (end = content.indexOf('\n', start)) >= 0; start = end + 1) {
        const QJsonObject object = QJsonDocument::fromJson(content.mid(start, end - start)).object();
        if (start == 0)
            journal.m_inputs = object.value(s_inputsKey).toObject();
        else if (object.contains(s_deviceKey))
            journal.m_records.insert(object.value(s_deviceKey).toString(), recordFromJson(object));
        else
            throw CommandError{ExitCode::BadData,
                               QStringLiteral("calibration journal %1: the line at byte %2 is no record")
                                   .arg(path, QString::number(start))};
        journal.m_wholeBytes = end + 1;
    }
    if (journal.m_inputs.isEmpty())
        throw CommandError{ExitCode::BadData,
                           QStringLiteral("calibration journal %1: its first line has no inputs").arg(path)};
    return journal;
}

void CalibrationJournal::append(const DeviceRecord& record)
{
    const QByteArray added = line(toJson(record));
    QFile file(m_path);
    // A line that an earlier end cut short makes room.
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) || !file.resize(m_wholeBytes) ||
        !file.seek(m_wholeBytes) || !writeThrough(file, added))
        throw CommandError{ExitCode::InputOutput, QStringLiteral("%1: %2").arg(m_path, file.errorString())};
    m_wholeBytes += added.size();
    m_records.insert(record.device, record);
}

QJsonObject gamutToJson(const Model::ColorGamutInfo& gamut)
{
    return PicQualityFileTool::ColorGamutToJson(gamut, false);
}

Model::ColorGamutInfo gamutFromJson(const QJsonObject& object)
{
    return PicQualityFileTool::getColorGamut(object.toVariantMap());
}
