#include "commands.h"
#include <calibration/input.h>
#include <qualityutility/tool/file/documentcheck.h>

#include <CLI/CLI.hpp>

#include <QJsonArray>

namespace {

/// A document's name and what the check says of it.
struct CheckedDocument
{
    QString path;
    DocumentCheck::Report report;

    QJsonObject json() const { return {{QStringLiteral("document"), path}, {QStringLiteral("kind"), report.kind}}; }
};

CheckedDocument checked(const std::string& argument)
{
    const auto input = take(Calibration::readInput(QString::fromStdString(argument), QStringLiteral("document")));
    const auto report = DocumentCheck::check(take(Calibration::jsonObject(input)));
    if (!report)
        throw Fault{Fault::Kind::BadData,
                    input.subject(),
                    {},
                    QStringLiteral("not a picture-quality document: none of its keys is known")};
    return {input.name, *report};
}

CommandResult showDocument(const std::string& argument)
{
    const CheckedDocument document = checked(argument);
    CommandResult result{QStringLiteral("%1: %2\n").arg(document.path, document.report.kind), document.json()};
    QJsonObject members;
    for (const QString& line : document.report.summary) {
        result.text += QStringLiteral("  %1\n").arg(line);
        members.insert(line.section(QStringLiteral(": "), 0, 0), line.section(QStringLiteral(": "), 1));
    }
    result.json.insert(QStringLiteral("members"), members);
    return result;
}

CommandResult checkDocument(const std::string& argument)
{
    const CheckedDocument document = checked(argument);
    const QStringList& faults = document.report.faults;
    const QString verdict = faults.isEmpty() ? QStringLiteral("good") : QStringLiteral("%1 faults").arg(faults.size());
    CommandResult result{QStringLiteral("%1: %2, %3\n").arg(document.path, document.report.kind, verdict),
                         document.json()};
    result.json.insert(QStringLiteral("faults"), QJsonArray::fromStringList(faults));
    for (const QString& fault : faults)
        result.text += QStringLiteral("  %1\n").arg(fault);
    if (!faults.isEmpty())
        result.error =
            Fault{Fault::Kind::Difference, QStringLiteral("document %1").arg(document.path), {}, faults.first()};
    return result;
}

void addCommand(CLI::App& parent, Command& chosen, const char* name, const char* description,
                CommandResult (*run)(const std::string&))
{
    CLI::App* command = parent.add_subcommand(name, description);
    const auto file = std::make_shared<std::string>();
    command->add_option("FILE", *file, "A picture-quality document")->required();
    command->callback([&chosen, file, run] { chosen = [file, run](const Output&) { return run(*file); }; });
}

} // namespace

void addDocCommands(CLI::App& app, Command& chosen)
{
    CLI::App* doc = app.add_subcommand("doc", "Look at picture-quality documents");
    doc->require_subcommand(1);
    addCommand(*doc, chosen, "show", "Print what a document holds: counts, ranges and switches", showDocument);
    addCommand(*doc, chosen, "check", "Say what is wrong with a document, each with the key's path", checkDocument);
}
