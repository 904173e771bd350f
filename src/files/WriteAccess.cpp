#include "files/WriteAccess.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

QString whyNotWritable(const QString& path)
{
    const bool writable = faccessat(AT_FDCWD, QFile::encodeName(path), W_OK, AT_EACCESS) == 0;
    return writable ? QString() : qt_error_string(errno);
}
