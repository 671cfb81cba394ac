#pragma once

#include <reports/table.h>
#include <suite/common/result.h>

#include <QByteArray>

#include <utility>
#include <variant>

namespace Reports {

/// What a document says first. A shape of its own stands for each, so that colour is never all there is.
enum class Mark {
    Good, ///< done, and as it should be: a check in a disc
    Bad,  ///< done and not as it should be, or not done: a cross in an octagon
    Open, ///< ended before the end, or nothing is known yet: an hourglass
};

/// The first line of a document, and the first word of its title: "PASSED: 3 of 3 devices hold the correction".
struct Verdict
{
    Mark mark = Mark::Open;
    QString result;  ///< a word or two, in capitals: "PASSED", "NOT APPLIED"; never empty
    QString details; ///< the rest of the sentence
};

/// Begins a section: what follows belongs to it, up to the next heading.
struct Heading
{
    QString text;
};

struct Paragraph
{
    QString text;
};

/// A box that begins with a triangle and the word "Warning".
struct Warning
{
    QString text;
};

/// Names with their values, one pair below the other.
struct Facts
{
    std::vector<std::pair<QString, QString>> pairs;
};

/// A table that HTML shows when its summary is opened, and whole in print; PDF has it whole below the summary.
struct FoldedTable
{
    QString summary; ///< "197 devices hold everything"
    Table table;
};

/// One chart.
struct Drawing
{
    QByteArray svg;  ///< a whole SVG document with a viewBox and no id, on paper of its own, as charts are
    QString caption; ///< stands below it, and in its place where it cannot be seen
};

/// Charts, two beside each other where there is room.
struct Drawings
{
    std::vector<Drawing> charts;
};

using Block = std::variant<Heading, Paragraph, Warning, Facts, Table, FoldedTable, Drawings>;

/// What a report holds, without its looks. All texts are plain: what would be markup is shown as it stands, line breaks
/// become blanks, and characters that control a terminal or the direction of writing become U+FFFD. A column of numbers
/// stands on the right.
struct Document
{
    QString title;     ///< "Calibration of left wall"
    QString generator; ///< program and version: "qualityctl 1.2"
    Verdict verdict;
    std::vector<Block> blocks;
};

/// One file of HTML, without scripts; it forbids the browser to fetch anything. Good on a phone, in dark mode and in
/// print. Begins with "<!DOCTYPE html>\n". Any thread.
QByteArray toHtml(const Document& document);

/// A4 pages, each with the verdict's word, title and number at its foot; no page ends within a row or below a heading,
/// and tables repeat their heads. Texts can be selected; charts are vectors, their texts outlines. Needs a
/// QGuiApplication (the offscreen platform will do), on whose thread it is called. Faults: unavailable (no font is
/// installed); internal.
Common::Result<QByteArray> toPdf(const Document& document);

} // namespace Reports
