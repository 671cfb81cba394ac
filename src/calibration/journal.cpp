#include "journal.h"

#include <calibration/input.h>
#include <calibration/output.h>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <QFile>
#include <QJsonDocument>

namespace Calibration {

namespace {

const QString s_inputsKey = QStringLiteral("inputs");
const QString s_deviceKey = QStringLiteral("device");

QByteArray line(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

Result<Journal> Journal::begin(const QString& path, const QJsonObject& inputs)
{
    Journal journal;
    journal.m_path = path;
    journal.m_inputs = inputs;
    const QByteArray first = line({{s_inputsKey, inputs}});
    const auto written = writeOutput(path, first);
    if (!written)
        return written.fault();
    journal.m_wholeBytes = first.size();
    return journal;
}

Result<void> Journal::addLine(const QJsonObject& object)
{
    if (m_wholeBytes == 0)
        m_inputs = object.value(s_inputsKey).toObject();
    else if (object.contains(s_deviceKey))
        m_records.insert(object.value(s_deviceKey).toString(), recordFromJson(object));
    else
        return Fault{Fault::Kind::BadData,
                     QStringLiteral("calibration journal %1").arg(m_path),
                     {},
                     QStringLiteral("the line at byte %1 is no record").arg(m_wholeBytes)};
    return {};
}

Result<Journal> Journal::read(const QString& path)
{
    constexpr qint64 maxJournalBytes = qint64{256} * 1024 * 1024; // every retry of a large wall adds to it
    const auto input = readInput(path, QStringLiteral("calibration journal"), maxJournalBytes);
    if (!input)
        return input.fault();
    const QByteArray& content = input->bytes;
    Journal journal;
    journal.m_path = path;
    for (int start = 0, end = 0; (end = content.indexOf('\n', start)) >= 0; start = end + 1) {
        const auto added = journal.addLine(QJsonDocument::fromJson(content.mid(start, end - start)).object());
        if (!added)
            return added.fault();
        journal.m_wholeBytes = end + 1;
    }
    if (journal.m_inputs.isEmpty())
        return Fault{Fault::Kind::BadData, input->subject(), {}, QStringLiteral("its first line has no inputs")};
    return journal;
}

Result<void> Journal::append(const DeviceRecord& record)
{
    const QByteArray added = line(toJson(record));
    QFile file(m_path);
    // A line that an earlier end cut short makes room.
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) || !file.resize(m_wholeBytes) ||
        !file.seek(m_wholeBytes) || !writeThrough(file, added))
        return Fault{Fault::Kind::InputOutput, m_path, {}, file.errorString()};
    m_wholeBytes += added.size();
    m_records.insert(record.device, record);
    return {};
}

QJsonObject gamutToJson(const Model::ColorGamutInfo& gamut)
{
    return PicQualityFileTool::ColorGamutToJson(gamut, false);
}

Model::ColorGamutInfo gamutFromJson(const QJsonObject& object)
{
    return PicQualityFileTool::getColorGamut(object.toVariantMap());
}

} // namespace Calibration
