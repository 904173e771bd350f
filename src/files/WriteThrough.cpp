#include "files/WriteThrough.h"

#include <cerrno>
#include <unistd.h>

QString writeThrough(int handle, const QByteArray& content)
{
    qsizetype done = 0;
    while (done < content.size()) {
        const ssize_t more = write(handle, content.data() + done, static_cast<size_t>(content.size() - done));
        if (more == -1 && errno != EINTR)
            return qt_error_string(errno);
        done += qMax<ssize_t>(more, 0);
    }
    // Some file systems cannot synchronise at all.
    const bool isThere = fsync(handle) == 0 || errno == EINVAL || errno == ENOTSUP;
    return isThere ? QString() : qt_error_string(errno);
}
