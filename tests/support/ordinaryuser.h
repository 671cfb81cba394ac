#pragma once

#include <grp.h>
#include <unistd.h>

#include <QFile>
#include <QString>

#include <vector>

/// A user whom no file of the system belongs to; the group of the same number is his own.
constexpr uid_t ordinaryUser = 65534;

/// Makes root that user, for whom no permission is passed over, and a member of `groups`, and gives him a folder; ends
/// with the object. Nothing where the process is not root.
class OrdinaryUser
{
public:
    explicit OrdinaryUser(const QString& folder = {}, const std::vector<gid_t>& groups = {})
        : m_isRoot(::geteuid() == 0)
    {
        const bool isGiven = !m_isRoot || folder.isEmpty() ||
                             ::chown(QFile::encodeName(folder).constData(), ordinaryUser, ordinaryUser) == 0;
        if (!isGiven || (m_isRoot && (::setgroups(groups.size(), groups.data()) != 0 || ::setegid(ordinaryUser) != 0 ||
                                      ::seteuid(ordinaryUser) != 0)))
            qFatal("cannot become another user");
    }
    ~OrdinaryUser()
    {
        if (m_isRoot && (::seteuid(0) != 0 || ::setegid(0) != 0 || ::setgroups(0, nullptr) != 0))
            qFatal("cannot become root again");
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    const bool m_isRoot;
};
