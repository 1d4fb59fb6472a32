#include "Toolkit/Import/Ddl/ScriptWalk.h"

#include <cstdint>

namespace qe::tool {

void WalkScripts(std::span<const ScriptText> scripts, EDialect dialect, ReadingNotes& notes,
                 const ProgressObserver& observer,
                 const std::function<void(const ScriptStatement&, const ScriptPlace&)>& read)
{
    std::uint64_t count = 0;
    ScriptStatement statement;
    for (const ScriptText& script : scripts) {
        StatementReader reader(script.text, dialect);
        while (reader.Read(statement)) {
            if (observer)
                observer({.done = reader.GetOffset(),
                          .size = script.text.size(),
                          .count = count++,
                          .unit = "statements"});
            notes.CountStatement();
            read(statement, {.path = &script.path, .line = statement.line});
        }
        if (reader.GetUnendedLine() != 0)
            notes.Tell({.path = &script.path, .line = reader.GetUnendedLine()}, kUnended);
    }
}

} // namespace qe::tool
