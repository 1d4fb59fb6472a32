#include "Toolkit/Import/Formats/CubeSchema.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Import/Ddl/SqlTokens.h"
#include "Toolkit/Import/Formats/SqlCondition.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

/// Members may stand for others, but not without end.
constexpr std::size_t kMaximumDepth = 64;
constexpr std::size_t kMaximumSize = std::size_t{16} * 1024;

std::string Quote(const std::string& name)
{
    std::string text = "\"";
    for (const char letter : name)
        text += letter == '"' ? "\"\"" : std::string(1, letter);
    return text + '"';
}

Names SplitPath(std::string_view path)
{
    Names names{""};
    for (const char letter : path) {
        if (letter == '.')
            names.emplace_back();
        else if (letter != ' ' && letter != '\n' && letter != '\t')
            names.back() += letter;
    }
    return names;
}

class MemberExpander
{
public:
    MemberExpander(const Cubes& cubes, std::string& problem) : mCubes(cubes), mProblem(problem) {}

    std::string Expand(std::string_view sql, const Cube& self)
    {
        std::string text;
        while (!sql.empty() && mProblem.empty()) {
            const std::size_t open = std::min(sql.find('{'), sql.size());
            text += sql.substr(0, open);
            sql.remove_prefix(open);
            if (sql.empty())
                break;
            // The way JavaScript writes it.
            if (text.ends_with('$'))
                text.pop_back();
            const std::size_t close = sql.find('}');
            if (close == std::string_view::npos)
                return Fail("has a brace that does not end");
            text += Resolve(sql.substr(1, close - 1), self);
            sql.remove_prefix(close + 1);
            if (text.size() > kMaximumSize)
                return Fail("is too long");
        }
        return mProblem.empty() ? text : std::string();
    }

private:
    std::string Resolve(std::string_view path, const Cube& self)
    {
        const Names names = SplitPath(path);
        const Cube* const cube = names.size() == 1 ? nullptr : Find(names[names.size() - 2], self);
        if (names.size() == 1) {
            if (const Cube* const named = Find(names.front(), self))
                return Quote(named->name);
            return ExpandMember(names.front(), self, path);
        }
        if (cube != nullptr)
            return ExpandMember(names.back(), *cube, path);
        std::vector<std::string> nearest =
            model::NearestNames(names[names.size() - 2], NamesOfCubes());
        for (std::string& name : nearest)
            name = '{' + name + '.' + names.back() + '}';
        return Fail("names no cube: " + Show(path) + ToHint(nearest));
    }

    static std::string Show(std::string_view path) { return '{' + std::string(path) + '}'; }

    [[nodiscard]] std::vector<std::string_view> NamesOfCubes() const
    {
        std::vector<std::string_view> names;
        for (const auto& [name, cube] : mCubes)
            names.push_back(name);
        return names;
    }

    std::string FailAtMember(const std::string& name, const Cube& cube, std::string_view path)
    {
        std::vector<std::string_view> known;
        if (path.find('.') == std::string_view::npos)
            known = NamesOfCubes();
        for (const CubeDimension& dimension : cube.dimensions)
            known.push_back(dimension.name);
        const std::string owner(path.substr(0, path.rfind('.') + 1));
        std::vector<std::string> nearest = model::NearestNames(name, known);
        for (std::string& near : nearest)
            near = '{' + owner + near + '}';
        return Fail("names no dimension: " + Show(path) + ToHint(nearest));
    }

    [[nodiscard]] const Cube* Find(const std::string& name, const Cube& self) const
    {
        if (name == "CUBE" || name == self.name)
            return &self;
        const auto found = mCubes.find(name);
        return found == mCubes.end() ? nullptr : found->second;
    }

    std::string ExpandMember(const std::string& name, const Cube& cube, std::string_view path)
    {
        const auto dimension =
            std::find_if(cube.dimensions.begin(), cube.dimensions.end(),
                         [&name](const CubeDimension& other) { return other.name == name; });
        if (dimension == cube.dimensions.end())
            return FailAtMember(name, cube, path);
        if (std::find(mOpen.begin(), mOpen.end(), &*dimension) != mOpen.end())
            return Fail("names members that stand for each other: " + Show(path));
        if (mOpen.size() == kMaximumDepth)
            return Fail("names members that stand for others, more than " +
                        std::to_string(kMaximumDepth) + " in a row: " + Show(path));
        mOpen.push_back(&*dimension);
        const std::string sql = QualifyNames(Expand(dimension->sql, cube), Quote(cube.name));
        mOpen.pop_back();
        return ReadTableName(sql).size() == 2 ? sql : '(' + sql + ')';
    }

    std::string Fail(std::string problem)
    {
        if (mProblem.empty())
            mProblem = std::move(problem);
        return {};
    }

    const Cubes& mCubes;
    std::string& mProblem;
    /// The members that are being replaced.
    std::vector<const CubeDimension*> mOpen;
};

} // namespace

std::string ExpandMembers(std::string_view sql, const Cube& self, const Cubes& cubes,
                          std::string& problem)
{
    return MemberExpander(cubes, problem).Expand(sql, self);
}

std::string ColumnOf(const CubeDimension& dimension, const Cube& cube, const Cubes& cubes)
{
    std::string problem;
    const std::string sql =
        QualifyNames(ExpandMembers(dimension.sql, cube, cubes, problem), Quote(cube.name));
    const Names names = ReadTableName(sql);
    return names.size() == 2 && names.front() == cube.name ? names.back() : std::string();
}

std::vector<std::string> ReadTableName(std::string_view sql)
{
    constexpr EDialect kQuoting = EDialect::Sqlite;
    SqlTokenizer tokens(sql, kQuoting);
    Names names;
    for (;;) {
        const SqlToken name = tokens.Next();
        if (name.kind != EToken::Word && name.kind != EToken::QuotedName)
            return {};
        names.push_back(ToName(name, kQuoting));
        const SqlToken dot = tokens.Next();
        if (dot.kind == EToken::End)
            return names;
        if (!dot.IsSign('.'))
            return {};
    }
}

} // namespace qe::tool
