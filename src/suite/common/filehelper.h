#pragma once

#include <suite/common/suite_common_export.h>

#include <QString>

namespace Common {

/// Folders of the file system. They block for the file work; any thread.
class SUITE_COMMON_EXPORT FileHelper
{
public:
    FileHelper() = delete;

    /// Creates a folder with its parents. True when it is there afterwards, made or found.
    static bool createDir(const QString& path);

    /// Deletes a folder with everything in it. A symbolic link, given or found inside, is itself deleted and never
    /// followed. Folders that their owner may not change are opened for that first. True when nothing is left of it.
    /// An empty path, a root and a file are refused.
    static bool deleteDir(const QString& path);
};

} // namespace Common
