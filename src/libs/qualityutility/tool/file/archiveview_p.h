#pragma once

#include <QIODevice>

/// A zip archive for reading, up to the end of its end record and without the archive's comment: quazip looks for that
/// record in the last 64 KiB only, and takes one that stands in a comment for it. Unbuffered; the archive outlives it.
class ArchiveView : public QIODevice
{
public:
    /// `archive` is open for reading and can be moved about in.
    explicit ArchiveView(QIODevice& archive);

    /// Whether there is nothing but an end record that counts no entries: quazip takes it for no archive.
    bool isEmptyArchive() const;

    /// How many entries are listed, at most `limit`, whatever number the end record says.
    int countListed(int limit);

    qint64 size() const override { return m_size; }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 maxSize) override;

private:
    void findEnd();
    QByteArray bytesAt(qint64 position, int count);

    QIODevice& m_archive;
    qint64 m_position = 0;
    qint64 m_size;
    bool m_hasEnd = false;
};
