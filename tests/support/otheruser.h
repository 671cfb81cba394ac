#pragma once

#include <unistd.h>

#include <QFile>
#include <QString>

/// Makes the process another user than root, whom permissions do not stop, and gives that user a folder; ends with the
/// object. Nothing where the process is not root.
class OtherUser
{
public:
    explicit OtherUser(const QString& folder) : m_isRoot(::geteuid() == 0)
    {
        constexpr uid_t nobody = 65534;
        if (m_isRoot && (::chown(QFile::encodeName(folder).constData(), nobody, nobody) != 0 || ::seteuid(nobody) != 0))
            qFatal("cannot become another user");
    }
    ~OtherUser()
    {
        if (m_isRoot && ::seteuid(0) != 0)
            qFatal("cannot become root again");
    }
    OtherUser(const OtherUser&) = delete;
    OtherUser& operator=(const OtherUser&) = delete;

private:
    const bool m_isRoot;
};
