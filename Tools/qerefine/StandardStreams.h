#ifndef TOOLS_QEREFINE_STANDARDSTREAMS_H
#define TOOLS_QEREFINE_STANDARDSTREAMS_H

#include "Toolkit/Text/InputFile.h"

#include <array>
#include <cstddef>
#include <streambuf>

namespace qe::tool {

/// What a command wrote could not be delivered.
class OutputError : public InputError
{
public:
    explicit OutputError(const InputError& failure) : InputError(failure) {}
};

/// Writes to a descriptor, which stays open. What cannot be written throws an OutputError: a
/// stream over it hands that on when its `exceptions` include badbit, at the write at which it
/// shows. What a failure leaves unwritten is given up.
class DescriptorBuffer : public std::streambuf
{
public:
    /// Failures are told of as those of `name`.
    DescriptorBuffer(int descriptor, const char* name);

protected:
    int_type overflow(int_type letter) override;
    int sync() override;

private:
    static constexpr std::size_t kSize = 65536;

    void WriteOut();

    int mDescriptor;
    const char* mName;
    std::array<char, kSize> mBytes{};
};

/// Lets each standard stream that is closed fail at its use. Otherwise the next file that is opened
/// would take its place, and data meant for the one would end in the other. A pipe that nobody
/// reads and a file that grows too large fail too, instead of ending the process.
void GuardStandardStreams();

} // namespace qe::tool

#endif
