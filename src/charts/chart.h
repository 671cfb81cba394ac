#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

#include <memory>
#include <vector>

class QPaintDevice;
class QwtPlot;

namespace Charts {

/// A finished drawing of one or more plots, ready to be written in either format. Needs a QApplication (the offscreen
/// platform will do) while it lives, on whose thread it is used.
class Chart
{
public:
    /// At least one plot: they stand from top to bottom, each as large as it is, and the first one's title is the
    /// chart's.
    explicit Chart(std::vector<std::unique_ptr<QwtPlot>> plots);
    ~Chart();
    Chart(Chart&&) noexcept;

    /// An SVG document without references to other files. The same input gives the same bytes.
    QByteArray toSvg() const;
    QByteArray toPng() const;
    /// By the suffix of a file name: "svg" or "png"; empty for another one.
    QByteArray toFormat(const QString& suffix) const;

private:
    QSize size() const;
    void draw(QPaintDevice& device) const;

    std::vector<std::unique_ptr<QwtPlot>> m_plots;
};

} // namespace Charts
