#pragma once

#include <qualityutility/qualityutility_export.h>

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

/// Looks at picture-quality documents, the JSON documents of PicQualityFileTool, without reading them into records. It
/// walks the tables of keys by which they are read and written, but is stricter than reading, which passes over what
/// it does not know. Any thread; nothing is logged, nothing throws.
namespace DocumentCheck {

/// What is said of one document.
struct Report
{
    /// "fine-gray configuration", "fine-gray cache", "NICC configuration" or "new-NICC document".
    QString kind;
    /// What is wrong, each "<path>: <what>" with the path as in `mgData.rMG0Measure[3].lum`: unknown keys, other types,
    /// numbers outside their range, points that no light has, lists that belong together and differ in length. In the
    /// order of the keys' names; empty when nothing is wrong.
    QStringList faults;
    /// One line "<path>: <text>" per known member that is there: counts, ranges and switches rather than contents.
    QStringList summary;
};

/// Tells a document's kind by its keys and reports on it; nothing when none of its keys is known. Takes time in
/// proportion to the document's size, as parsing does.
QUALITYUTILITY_EXPORT std::optional<Report> check(const QJsonObject& root);

} // namespace DocumentCheck
