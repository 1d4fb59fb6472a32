#include "Tools/qerefine/StandardStreams.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace qe::tool {

DescriptorBuffer::DescriptorBuffer(int descriptor, const char* name)
    : mDescriptor(descriptor), mName(name)
{
    setp(mBytes.data(), mBytes.data() + mBytes.size());
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type letter)
{
    WriteOut();
    return traits_type::eq_int_type(letter, traits_type::eof())
               ? traits_type::not_eof(letter)
               : sputc(traits_type::to_char_type(letter));
}

int DescriptorBuffer::sync()
{
    WriteOut();
    return 0;
}

void DescriptorBuffer::WriteOut()
{
    const char* next = pbase();
    const char* const end = pptr();
    setp(mBytes.data(), mBytes.data() + mBytes.size());
    while (next != end) {
        const ssize_t written = ::write(mDescriptor, next, static_cast<std::size_t>(end - next));
        if (written >= 0)
            next += written;
        else if (errno != EINTR)
            throw OutputError(InputError(
                {{mName, "cannot be written: " + std::generic_category().message(errno)}}));
    }
}

void GuardStandardStreams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF)
            continue;
        // The least free number is taken, which is this one; and it is opened the wrong way round.
        const int direction = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        static_cast<void>(::open("/dev/null", direction));
    }
    for (const int signal : {SIGPIPE, SIGXFSZ})
        static_cast<void>(std::signal(signal, SIG_IGN));
}

} // namespace qe::tool
