#pragma once

#include <QString>

namespace CLI {
class App;
}

// Texts made of the command line's own definition, the same that --help prints.

/// The manual page, in troff.
QString manPage(const CLI::App& app);

/// The completion of a bash shell.
QString bashCompletion(const CLI::App& app);
