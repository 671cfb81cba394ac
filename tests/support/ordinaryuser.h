#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QList>

#include <functional>
#include <vector>

/// A user whom no file of the system belongs to; the group of the same number is his only one.
constexpr uid_t ordinaryUser = 65534;

/// What `work` gives in a child process that no permission is passed over for: root becomes the ordinary user, and a
/// member of `groups`; anybody else stays who he is.
inline bool asOrdinaryUser(const QList<gid_t>& groups, const std::function<bool()>& work)
{
    const std::vector<gid_t> list(groups.begin(), groups.end());
    const pid_t child = fork();
    if (child == 0) {
        const bool isRoot = geteuid() == 0;
        if (isRoot &&
            (setgroups(list.size(), list.data()) != 0 || setgid(ordinaryUser) != 0 || setuid(ordinaryUser) != 0))
            _exit(2);
        _exit(work() ? 0 : 1);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) > 1)
        qFatal("the child process did not come to its end");
    return WEXITSTATUS(status) == 0;
}
