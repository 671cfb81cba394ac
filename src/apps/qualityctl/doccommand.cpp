#include "commands.h"
#include "documentschema.h"
#include "inputfile.h"

#include <CLI/CLI.hpp>

#include <QJsonArray>

namespace {

struct OpenDocument
{
    QString path;
    QJsonObject root;
    const DocumentSchema::Document* kind;
};

OpenDocument openDocument(const std::string& argument)
{
    const QString path = QString::fromStdString(argument);
    const QJsonObject root = readJsonObject(path, QStringLiteral("document"));
    const auto* kind = DocumentSchema::kindOf(root);
    if (!kind)
        throw CommandError{
            ExitCode::BadData,
            QStringLiteral("document %1: not a picture-quality document: none of its keys is known").arg(path)};
    return {path, root, kind};
}

CommandResult showDocument(const std::string& argument)
{
    const OpenDocument document = openDocument(argument);
    const QStringList lines = DocumentSchema::summaryOf(document.root, *document.kind);
    QString text = QStringLiteral("%1: %2\n").arg(document.path, document.kind->name);
    for (const QString& line : lines)
        text += QStringLiteral("  %1\n").arg(line);
    QJsonObject members;
    for (const QString& line : lines)
        members.insert(line.section(QStringLiteral(": "), 0, 0), line.section(QStringLiteral(": "), 1));
    return {text,
            {{QStringLiteral("document"), document.path},
             {QStringLiteral("kind"), document.kind->name},
             {QStringLiteral("members"), members}}};
}

CommandResult checkDocument(const std::string& argument)
{
    const OpenDocument document = openDocument(argument);
    const QStringList faults = DocumentSchema::faultsOf(document.root, *document.kind);
    CommandResult result{
        QStringLiteral("%1: %2, %3\n")
            .arg(document.path, document.kind->name,
                 faults.isEmpty() ? QStringLiteral("good") : QStringLiteral("%1 faults").arg(faults.size())),
        {{QStringLiteral("document"), document.path},
         {QStringLiteral("kind"), document.kind->name},
         {QStringLiteral("faults"), QJsonArray::fromStringList(faults)}}};
    for (const QString& fault : faults)
        result.text += QStringLiteral("  %1\n").arg(fault);
    if (!faults.isEmpty())
        result.error =
            CommandError{ExitCode::Difference, QStringLiteral("document %1: %2").arg(document.path, faults.first())};
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
