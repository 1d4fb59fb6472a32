#ifndef TOOLKIT_AGENT_AGENTSERVER_H
#define TOOLKIT_AGENT_AGENTSERVER_H

#include "Toolkit/Agent/AgentSession.h"

#include <cstddef>
#include <iosfwd>

namespace qe::tool {

class ModelShelf;

struct AgentServerOptions
{
    AgentIdentity identity{};
    /// The calls of tools that are worked on at a time.
    std::size_t threads = 1;
    /// A longer message is refused. In bytes.
    std::size_t longestMessage = std::size_t{1} << 20;
    /// The lines of calls that may wait; when there are more, no line is read until one is
    /// answered.
    std::size_t mostWaiting = 256;
};

/// Answers a client of the Model Context Protocol, whose messages are lines, until the input ends
/// and every call is answered. A call is answered when it is done, so that short ones may overtake
/// long ones; what does not call a tool is answered at once. Calls that are cancelled get no
/// answer; the one that is being worked on is finished for nobody. Nothing else is written to the
/// output, and each line is flushed.
///
/// Throws what writing to the output throws, after the next line of input.
void ServeAgent(const ModelShelf& shelf, std::istream& input, std::ostream& output,
                const AgentServerOptions& options);

} // namespace qe::tool

#endif
