#pragma once

#include <QString>

#include <optional>

/// The folder that all archives of one base name are unpacked into, held by one thread of one process at a time: a
/// second one waits. What a killed process left beside it goes when the next holds it, or holds another such folder in
/// the same place; an earlier folder that stood aside when a process was killed is put back.
class TemporaryFolder
{
public:
    /// Waits up to `patience` milliseconds for whoever holds the folder.
    TemporaryFolder(const QString& path, int patience);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Why the folder is not held; nothing when it is.
    std::optional<QString> fault() const;
    QString path() const { return m_path; }

    /// A new folder beside this one that only its owner can read; an empty text when none can be made.
    QString makeFresh() const;
    /// Puts a fresh folder in the place of this one: of a folder, a link, or nothing. False when it fails; this one is
    /// then as it was, and the fresh one still there.
    bool replaceBy(const QString& fresh) const;
    /// Deletes a folder with everything in it; what cannot be deleted is logged.
    static bool clear(const QString& folder);

private:
    void putBack() const;
    static void clearBeside(const QString& beside);
    void clearAbandoned() const;

    QString m_path;
    QString m_beside; ///< what the names of everything beside the folder begin with
    int m_lock;       ///< a file descriptor; negative, the system's error, where it could not be had
};
