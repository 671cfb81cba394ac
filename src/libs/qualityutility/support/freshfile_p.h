#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

namespace Support {

/// A new file for a place in `folder`, open for reading and writing. It has no name before it is moved there, and goes
/// with this object or with a killed process. Where the system or the file system knows no such files, and for the
/// moment in which an earlier file gives way, it has a name (`prefix` and six hexadecimal digits) and a lock.
///
/// Such names are counted from 0: who needs one comes upon what a killed process left, which no lock holds any more,
/// and removes it. No folder is looked through for that, however many files are in it.
class FreshFile
{
public:
    enum class Naming {
        Late,   ///< when it is moved, where that can be had
        AtOnce, ///< before it is written
    };

    FreshFile(std::filesystem::path folder, std::string prefix, mode_t mode, Naming naming = Naming::Late);
    ~FreshFile();
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    /// False when the folder cannot take a new file; errno says why, also when a call fails.
    bool isOpen() const { return m_fd >= 0; }
    int fd() const { return m_fd; }
    /// Moves it over what stands there. False when it fails: the target is then as it was.
    bool moveTo(const std::filesystem::path& target);
    /// Whether it has a name of its own just now. Not after a move that failed: the system lets it have none later.
    bool hasName() const { return !m_name.empty(); }

    /// Deletes a file that was made under such a name, unless a living process has it.
    static bool removeAbandoned(const std::filesystem::path& name);

private:
    bool giveName();
    bool takeName(const std::filesystem::path& name);
    std::filesystem::path nameOf(int attempt) const;

    const std::filesystem::path m_folder;
    const std::string m_prefix;
    const mode_t m_mode;
    std::filesystem::path m_name;
    int m_fd = -1;
};

} // namespace Support
