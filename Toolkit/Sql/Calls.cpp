#include "Toolkit/Sql/Calls.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <string>

namespace qe::tool {

namespace {

/// A name by which some dialect knows what is meant.
struct CallName
{
    std::string_view name;
    std::size_t operands;
    ECall call;
};

constexpr std::array kCallNames{
    CallName{"substring", 2, ECall::Rest},
    CallName{"substr", 2, ECall::Rest},
    CallName{"substring", 3, ECall::Part},
    CallName{"substr", 3, ECall::Part},
    CallName{"mid", 3, ECall::Part},
    CallName{"length", 1, ECall::Length},
    CallName{"len", 1, ECall::Length},
    CallName{"char_length", 1, ECall::Length},
    CallName{"character_length", 1, ECall::Length},
    CallName{"mod", 2, ECall::Remainder},
    CallName{"ceil", 1, ECall::Ceiling},
    CallName{"ceiling", 1, ECall::Ceiling},
    CallName{"nvl", 2, ECall::Fallback},
    CallName{"ifnull", 2, ECall::Fallback},
    CallName{"isnull", 2, ECall::Fallback},
    CallName{"year", 1, ECall::Year},
    CallName{"month", 1, ECall::Month},
    CallName{"day", 1, ECall::Day},
    CallName{"current_date", 0, ECall::Today},
    CallName{"curdate", 0, ECall::Today},
    CallName{"current_timestamp", 0, ECall::Now},
    CallName{"now", 0, ECall::Now},
    CallName{"getdate", 0, ECall::Now},
    CallName{"sysdate", 0, ECall::Now},
};

} // namespace

std::optional<ECall> FindCall(std::string_view name, std::size_t operands)
{
    const std::string folded = ascii::ToLower(std::string(name));
    const auto* const found =
        std::find_if(kCallNames.begin(), kCallNames.end(), [&](const CallName& known) {
            return known.name == folded && known.operands == operands;
        });
    return found == kCallNames.end() ? std::nullopt : std::optional(found->call);
}

} // namespace qe::tool
