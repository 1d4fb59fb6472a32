#include "Toolkit/Import/Formats/MQuery.h"

#include "Toolkit/Import/Formats/MPieces.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

/// What only changes columns, or how they are called.
constexpr std::array<std::string_view, 5> kHarmless{
    "Table.RenameColumns", "Table.TransformColumnTypes", "Table.SelectColumns",
    "Table.RemoveColumns", "Table.ReorderColumns"};

/// So many steps may stand on each other.
constexpr std::size_t kMaximumDepth = 200;

/// What a step of a query comes to.
struct Step
{
    QueriedTable table{};
    /// Else it is a place where tables can be looked for.
    bool isTable = false;
};

class MQuery
{
public:
    explicit MQuery(std::vector<MPiece> pieces) : mPieces(std::move(pieces)) {}

    std::optional<QueriedTable> SeeThrough()
    {
        MPieces result = mPieces;
        if (!result.empty() && result.front().IsWord("let")) {
            const auto in = FindIn();
            if (!in)
                return std::nullopt;
            const MPieces steps = result.subspan(1, *in - 1);
            for (std::size_t at = 0; at < steps.size();)
                AddStep(TakeMItem(steps, at));
            result = result.subspan(*in + 1);
        }
        std::optional<Step> step = Evaluate(result);
        if (!step || !step->isTable || step->table.path.empty())
            return std::nullopt;
        return std::move(step->table);
    }

private:
    /// Queries within others are not seen through, so that one "in" is all there may be.
    [[nodiscard]] std::optional<std::size_t> FindIn() const
    {
        std::optional<std::size_t> found;
        for (std::size_t i = 0; i < mPieces.size(); ++i) {
            if (mPieces[i].IsWord("in") && found)
                return std::nullopt;
            if (mPieces[i].IsWord("in"))
                found = i;
        }
        return found;
    }

    void AddStep(MPieces step)
    {
        if (step.size() > 2 && step[0].IsName() && step[1].IsSign('='))
            mSteps.emplace(step[0].text, step.subspan(2));
    }

    std::optional<Step> Evaluate(MPieces pieces)
    {
        if (pieces.empty() || !pieces.front().IsName() || mDepth == kMaximumDepth)
            return std::nullopt;
        ++mDepth;
        std::size_t at = 1;
        std::optional<Step> step;
        if (at < pieces.size() && pieces[at].IsSign('(')) {
            if (const auto arguments = TakeMGroup(pieces, at))
                step = Call(pieces.front().text, *arguments);
        } else {
            step = Refer(pieces.front().text);
        }
        while (step && at < pieces.size())
            step = Follow(std::move(*step), pieces, at);
        --mDepth;
        return step;
    }

    /// What no step is called is a query of its own that leads to a database.
    std::optional<Step> Refer(const std::string& name)
    {
        const auto step = mSteps.find(name);
        return step == mSteps.end() ? Step() : Evaluate(step->second);
    }

    std::optional<Step> Call(const std::string& function, MPieces arguments)
    {
        std::size_t at = 0;
        if (std::find(kHarmless.begin(), kHarmless.end(), function) != kHarmless.end()) {
            std::optional<Step> step = Evaluate(TakeMItem(arguments, at));
            if (!step || !step->isTable)
                return std::nullopt;
            if (function == kHarmless.front() && !Rename(arguments.subspan(at), step->table))
                return std::nullopt;
            return step;
        }
        if (function.starts_with("Table."))
            return std::nullopt;
        if (function == "Value.NativeQuery") {
            static_cast<void>(TakeMItem(arguments, at));
            return AskSql(TakeMItem(arguments, at));
        }
        for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
            if (!arguments[i].IsWord("Query") || !arguments[i + 1].IsSign('='))
                continue;
            const MPieces rest = arguments.subspan(i + 2);
            const auto end = std::find_if(rest.begin(), rest.end(), [](const MPiece& piece) {
                return piece.IsSign(',') || piece.IsSign(']');
            });
            return AskSql(rest.first(static_cast<std::size_t>(end - rest.begin())));
        }
        return Step();
    }

    static std::optional<Step> AskSql(MPieces text)
    {
        if (text.size() != 1 || text.front().kind != EMPiece::Text)
            return std::nullopt;
        std::optional<QueriedTable> table = SeeThroughSql(text.front().text);
        if (!table)
            return std::nullopt;
        return Step{.table = std::move(*table), .isTable = true};
    }

    /// Adds what columns are called after pairs of names; false where there is more.
    static bool Rename(MPieces pairs, QueriedTable& table)
    {
        std::size_t names = 0;
        for (const MPiece& piece : pairs) {
            const bool isMode =
                piece.kind == EMPiece::Word && piece.text.starts_with("MissingField.");
            const bool isText = piece.kind == EMPiece::Text;
            if (!isText && !isMode &&
                !(piece.IsSign('{') || piece.IsSign('}') || piece.IsSign(',')))
                return false;
            if (isText && names++ % 2 == 1)
                table.renamed.insert(piece.text);
        }
        return true;
    }

    /// Goes on by "{[Schema = "s", Item = "t"]}" or "[Data]".
    static std::optional<Step> Follow(Step step, MPieces pieces, std::size_t& at)
    {
        const bool isSearch = pieces[at].IsSign('{');
        if (!isSearch && !pieces[at].IsSign('['))
            return std::nullopt;
        const auto group = TakeMGroup(pieces, at);
        if (!group || group->empty())
            return std::nullopt;
        const bool isData = !isSearch && group->size() == 1 && group->front().IsWord("Data");
        if (isData)
            return step;
        if (!isSearch)
            return std::nullopt;
        std::size_t inner = 0;
        const auto record =
            group->front().IsSign('[') ? TakeMGroup(*group, inner) : std::optional<MPieces>();
        if (!record || inner != group->size() || step.isTable)
            return std::nullopt;
        return Search(std::move(step), *record);
    }

    static std::optional<Step> Search(Step step, MPieces record)
    {
        std::map<std::string, std::string> values;
        for (std::size_t at = 0; at < record.size();) {
            const MPieces field = TakeMItem(record, at);
            if (field.size() != 3 || !field[0].IsName() || !field[1].IsSign('=') ||
                field[2].kind != EMPiece::Text)
                return std::nullopt;
            values[field[0].text] = field[2].text;
        }
        if (values.size() == 2 && values.contains("Schema") && values.contains("Item"))
            return Step{.table = {.path = {values["Schema"], values["Item"]}}, .isTable = true};
        if (!values.contains("Name") || values.size() > 2)
            return std::nullopt;
        const std::string kind = values["Kind"];
        step.isTable = kind == "Table" || kind == "View";
        step.table.path.push_back(values["Name"]);
        if (!step.isTable && !kind.empty() && kind != "Database" && kind != "Schema")
            return std::nullopt;
        return step;
    }

    std::vector<MPiece> mPieces;
    std::map<std::string, MPieces> mSteps;
    std::size_t mDepth = 0;
};

} // namespace

std::optional<QueriedTable> SeeThroughM(std::string_view query)
{
    std::optional<std::vector<MPiece>> pieces = ReadMPieces(query);
    if (!pieces)
        return std::nullopt;
    return MQuery(std::move(*pieces)).SeeThrough();
}

} // namespace qe::tool
