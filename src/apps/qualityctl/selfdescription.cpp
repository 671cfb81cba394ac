#include "selfdescription.h"

#include <CLI/CLI.hpp>

#include <QStringList>

namespace {

QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

/// The sub-commands in the order of --help.
std::vector<const CLI::App*> subcommands(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> options(const CLI::App& app)
{
    return app.get_options([](const CLI::Option* option) { return !option->get_group().empty(); });
}

/// Runs of troff's own characters as they are meant.
QString troff(QString content)
{
    content.replace(QLatin1Char('\\'), QLatin1String("\\e")).replace(QLatin1Char('-'), QLatin1String("\\-"));
    QStringList lines = content.split(QLatin1Char('\n'));
    for (QString& line : lines) {
        if (line.startsWith(QLatin1Char('.')) || line.startsWith(QLatin1Char('\'')))
            line.prepend(QLatin1String("\\&"));
    }
    return lines.join(QLatin1Char('\n'));
}

QString optionItems(const CLI::App& app)
{
    QString page;
    for (const CLI::Option* option : options(app)) {
        const std::string name = option->nonpositional() ? option->get_name(false, true) : option->get_name(true);
        page += QStringLiteral(".TP\n\\fB%1\\fR%2\n%3\n")
                    .arg(troff(text(name)), option->get_required() ? QStringLiteral(" (required)") : QString(),
                         troff(text(option->get_description())));
    }
    return page;
}

QString commandSections(const CLI::App& app, const QString& path)
{
    QString page;
    for (const CLI::App* command : subcommands(app)) {
        const QString name = path + QLatin1Char(' ') + text(command->get_name());
        if (subcommands(*command).empty())
            page += QStringLiteral(".SS %1\n%2\n").arg(troff(name), troff(text(command->get_description()))) +
                    optionItems(*command);
        page += commandSections(*command, name);
    }
    return page;
}

/// A case of the completion per command: the words that may follow it.
QString completionCases(const CLI::App& app, const QString& path)
{
    QStringList words;
    QString deeper;
    for (const CLI::App* command : subcommands(app)) {
        const QString name = text(command->get_name());
        words << name;
        deeper += completionCases(*command, path.isEmpty() ? name : path + QLatin1Char(' ') + name);
    }
    for (const CLI::Option* option : options(app)) {
        for (const std::string& name : option->get_lnames())
            words << QStringLiteral("--") + text(name);
    }
    return QStringLiteral("    \"%1\") candidates=\"%2\" ;;\n").arg(path, words.join(QLatin1Char(' '))) + deeper;
}

QStringList commandPaths(const CLI::App& app, const QString& path)
{
    QStringList paths;
    for (const CLI::App* command : subcommands(app)) {
        const QString name =
            path.isEmpty() ? text(command->get_name()) : path + QLatin1Char(' ') + text(command->get_name());
        paths << name;
        paths += commandPaths(*command, name);
    }
    return paths;
}

} // namespace

QString manPage(const CLI::App& app)
{
    const QString name = text(app.get_name());
    return QStringLiteral(
               ".TH %1 1 \"\" \"%2 %3\" \"User Commands\"\n.SH NAME\n%2 \\- %4\n.SH SYNOPSIS\n\\fB%2\\fR "
               "[options] command [command options]\n.SH OPTIONS\n%5.SH COMMANDS\n%6.SH NOTES\n.nf\n%7\n.fi\n")
        .arg(name.toUpper(), name, text(app.version()), troff(text(app.get_description())), optionItems(app),
             commandSections(app, name), troff(text(app.get_footer())));
}

QString bashCompletion(const CLI::App& app)
{
    return QStringLiteral(R"(# bash completion of %1
_%1() {
  local current="${COMP_WORDS[COMP_CWORD]}" path="" candidates="" word i
  local commands=" %2 "
  for ((i = 1; i < COMP_CWORD; i++)); do
    word="${COMP_WORDS[i]}"
    [[ "$commands" == *"|${path:+$path }$word|"* ]] && path="${path:+$path }$word"
  done
  case "$path" in
%3  esac
  COMPREPLY=($(compgen -W "$candidates" -- "$current"))
}
complete -o default -F _%1 %1
)")
        .arg(text(app.get_name()), QLatin1Char('|') + commandPaths(app, {}).join(QLatin1Char('|')) + QLatin1Char('|'),
             completionCases(app, {}));
}
