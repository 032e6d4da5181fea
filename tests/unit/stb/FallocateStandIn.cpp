#include <cerrno>

#include <fcntl.h>

// The file systems of flash memory know no reserving of room, so these tests do without it: what
// does not fit is met while it is written. The box's tests have a file system that reserves.
int fallocate(int /*descriptor*/, int /*mode*/, off_t /*offset*/, off_t /*length*/) {
    errno = EOPNOTSUPP;
    return -1;
}
