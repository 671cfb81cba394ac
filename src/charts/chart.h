#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class QwtPlot;

namespace Charts {

/// A finished drawing, ready to be written in either format. Needs a QApplication (the offscreen platform will do)
/// while it lives, on whose thread it is used.
class Chart
{
public:
    explicit Chart(std::unique_ptr<QwtPlot> plot);
    ~Chart();
    Chart(Chart&&) noexcept;

    /// An SVG document without references to other files.
    QByteArray toSvg() const;
    QByteArray toPng() const;
    /// By the suffix of a file name: "svg" or "png"; empty for another one.
    QByteArray toFormat(const QString& suffix) const;

private:
    std::unique_ptr<QwtPlot> m_plot;
};

} // namespace Charts
