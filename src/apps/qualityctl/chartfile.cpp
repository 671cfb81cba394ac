#include "chartfile.h"

#include <calibration/output.h>

#include <QFileInfo>

ChartFile::ChartFile(const std::string& path, bool force) : m_path(QString::fromStdString(path))
{
    const QString suffix = QFileInfo(m_path).suffix();
    if (suffix != QLatin1String("svg") && suffix != QLatin1String("png"))
        throw Fault{Fault::Kind::Usage, m_path, {}, QStringLiteral("expected a name that ends in .svg or .png")};
    require(Calibration::requireNewFile(m_path, force));
}

CommandResult ChartFile::write(const Charts::Chart& chart) const
{
    require(Calibration::writeOutput(m_path, chart.toFormat(QFileInfo(m_path).suffix())));
    return {QStringLiteral("%1\n").arg(m_path), {{QStringLiteral("file"), m_path}}};
}
