/* Preloaded into a program, lets one of its calls on files fail. For tests; Linux only.
 *
 * QE_FAULT_FOLDER  only files in this folder count, and standard output
 * QE_FAULT_CALL    open, read, write, sync, rename or close
 * QE_FAULT_AT      which of these calls fails, counted from 1
 * QE_FAULT_ERROR   with which errno; 0: it does a part of the work, and the next is interrupted
 * QE_FAULT_TOLD    file that is made once the call has failed
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

enum
{
    kMostDescriptors = 1024
};

static int counted[kMostDescriptors] = {0, 1};
static long calls;
static int isInterrupted;

static int StandsInFolder(const char* path)
{
    const char* const folder = getenv("QE_FAULT_FOLDER");
    return folder != NULL && path != NULL && strncmp(path, folder, strlen(folder)) == 0;
}

static int IsCounted(int descriptor)
{
    return descriptor >= 0 && descriptor < kMostDescriptors && counted[descriptor];
}

static int Remember(int descriptor, int isCounted)
{
    if (descriptor >= 0 && descriptor < kMostDescriptors)
        counted[descriptor] = isCounted;
    return descriptor;
}

static void Tell(void)
{
    const char* const told = getenv("QE_FAULT_TOLD");
    if (told != NULL)
        syscall(SYS_close, syscall(SYS_openat, AT_FDCWD, told, O_CREAT | O_WRONLY, 0600));
}

/* Returns whether this call is to fail. */
static int IsToFail(const char* call)
{
    const char* const wanted = getenv("QE_FAULT_CALL");
    const char* const at = getenv("QE_FAULT_AT");
    if (wanted == NULL || at == NULL || strcmp(wanted, call) != 0 || ++calls != atol(at))
        return 0;
    Tell();
    return 1;
}

static int GetError(void)
{
    const char* const error = getenv("QE_FAULT_ERROR");
    return error == NULL ? EIO : atoi(error);
}

/* Returns -1 with an errno when the call is to fail; otherwise how many bytes it is to take. */
static ssize_t Judge(const char* call, int descriptor, size_t count)
{
    if (!IsCounted(descriptor))
        return (ssize_t)count;
    if (isInterrupted) {
        isInterrupted = 0;
        errno = EINTR;
        return -1;
    }
    if (!IsToFail(call))
        return (ssize_t)count;
    errno = GetError();
    if (errno != 0)
        return -1;
    isInterrupted = 1;
    return (ssize_t)(count > 1 ? count / 2 : count);
}

static int MayOpen(const char* path)
{
    if (!StandsInFolder(path) || !IsToFail("open"))
        return 1;
    errno = GetError();
    return 0;
}

static int Open(int folder, const char* path, int flags, mode_t mode)
{
    if (!MayOpen(path))
        return -1;
    return Remember((int)syscall(SYS_openat, folder, path, flags, mode), StandsInFolder(path));
}

static mode_t ReadMode(int flags, va_list rest)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
}

#define DEFINE_OPEN(name)                                                                          \
    int name(const char* path, int flags, ...)                                                     \
    {                                                                                              \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        const mode_t mode = ReadMode(flags, rest);                                                 \
        va_end(rest);                                                                              \
        return Open(AT_FDCWD, path, flags, mode);                                                  \
    }
DEFINE_OPEN(open)
DEFINE_OPEN(open64)

#define DEFINE_FOPEN(name)                                                                         \
    FILE* name(const char* path, const char* mode)                                                 \
    {                                                                                              \
        FILE* (*real)(const char*, const char*) = NULL;                                            \
        *(void**)&real = dlsym(RTLD_NEXT, #name);                                                  \
        FILE* const file = MayOpen(path) ? real(path, mode) : NULL;                                \
        if (file != NULL)                                                                          \
            Remember(fileno(file), StandsInFolder(path));                                          \
        return file;                                                                               \
    }
DEFINE_FOPEN(fopen)
DEFINE_FOPEN(fopen64)

#define DEFINE_MKSTEMP(name)                                                                       \
    int name(char* path)                                                                           \
    {                                                                                              \
        int (*real)(char*) = NULL;                                                                 \
        *(void**)&real = dlsym(RTLD_NEXT, #name);                                                  \
        return MayOpen(path) ? Remember(real(path), StandsInFolder(path)) : -1;                    \
    }
DEFINE_MKSTEMP(mkstemp)
DEFINE_MKSTEMP(mkstemp64)

ssize_t read(int descriptor, void* bytes, size_t count)
{
    const ssize_t most = Judge("read", descriptor, count);
    return most < 0 ? -1 : syscall(SYS_read, descriptor, bytes, (size_t)most);
}

#define DEFINE_PREAD(name)                                                                         \
    ssize_t name(int descriptor, void* bytes, size_t count, off_t offset)                          \
    {                                                                                              \
        const ssize_t most = Judge("read", descriptor, count);                                     \
        return most < 0 ? -1 : syscall(SYS_pread64, descriptor, bytes, (size_t)most, offset);      \
    }
DEFINE_PREAD(pread)
DEFINE_PREAD(pread64)

ssize_t write(int descriptor, const void* bytes, size_t count)
{
    const ssize_t most = Judge("write", descriptor, count);
    return most < 0 ? -1 : syscall(SYS_write, descriptor, bytes, (size_t)most);
}

int fsync(int descriptor)
{
    return Judge("sync", descriptor, 1) < 0 ? -1 : (int)syscall(SYS_fsync, descriptor);
}

int rename(const char* from, const char* to)
{
    if (StandsInFolder(to) && IsToFail("rename")) {
        errno = GetError();
        return -1;
    }
    return (int)syscall(SYS_rename, from, to);
}

/* What fails to close is closed all the same. */
int close(int descriptor)
{
    const ssize_t judged = descriptor > STDERR_FILENO ? Judge("close", descriptor, 1) : 1;
    const int error = errno;
    const long closed = syscall(SYS_close, Remember(descriptor, 0));
    if (judged >= 0)
        return (int)closed;
    errno = error;
    return -1;
}

int fclose(FILE* file)
{
    int (*real)(FILE*) = NULL;
    *(void**)&real = dlsym(RTLD_NEXT, "fclose");
    const int descriptor = fileno(file);
    const ssize_t judged = descriptor > STDERR_FILENO ? Judge("close", descriptor, 1) : 1;
    const int error = errno;
    Remember(descriptor, 0);
    const int closed = real(file);
    if (judged >= 0)
        return closed;
    errno = error;
    return EOF;
}
