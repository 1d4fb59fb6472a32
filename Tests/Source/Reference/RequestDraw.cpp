#include "Tests/Source/Reference/RequestDraw.h"

#include "IdClass.h"
#include "Tests/Source/Reference/TreeServices.h"
#include "Tests/Support/ModelText.h"

#include <algorithm>
#include <numeric>

namespace qe::test {

namespace {

class DrawMaker
{
public:
    explicit DrawMaker(std::mt19937& random) : mRandom(random) {}

    Draw Make()
    {
        Draw draw;
        draw.text = MakeText();
        const ModelText model(draw.text);
        draw.newAlgo = Below(2) == 0;
        draw.isGovernorOff = Below(4) == 0;
        draw.own = MakeHost(model);
        draw.other = MakeHost(model);
        draw.shortcutGovernors.shortcutGrouping = Below(2);
        draw.useFactTableCount = Below(2) == 0;
        draw.useStraightestPath = Below(2) == 0;
        if (Below(4) != 0)
            draw.choice = static_cast<std::uint32_t>(Below(3));
        draw.lists = {MakeLists(model, draw.newAlgo), MakeLists(model, draw.newAlgo)};
        if (Below(2) == 0)
            draw.lists.back() = ChangeOneList(draw.lists.front(), draw.lists.back());
        draw.hasShortcutInfo = {Below(3) != 0, Below(3) != 0};
        draw.operations.resize(kOperationCount);
        std::iota(draw.operations.begin(), draw.operations.end(), 0);
        std::shuffle(draw.operations.begin(), draw.operations.end(), mRandom);
        return draw;
    }

private:
    int Below(int bound) { return std::uniform_int_distribution<>(0, bound - 1)(mRandom); }

    template <typename T>
    T Pick(const std::vector<T>& from)
    {
        return from[static_cast<std::size_t>(Below(static_cast<int>(from.size())))];
    }

    Ids PickSome(const Ids& from, int most)
    {
        Ids picked;
        for (int count = from.empty() ? 0 : Below(most + 1); count > 0; --count)
            picked.push_back(Pick(from));
        return picked;
    }

    Lists ChangeOneList(Lists lists, const Lists& others)
    {
        Ids Lists::*const list = Pick(std::vector<Ids Lists::*>{
            &Lists::favouredJoins, &Lists::requiredJoins, &Lists::joins, &Lists::favouredSubjects});
        lists.*list = others.*list;
        return lists;
    }

    std::string MakeText()
    {
        std::vector<std::string> names{"A", "B"};
        // Sparse ones are large, so that paths are long.
        const bool isSparse = Below(3) == 0;
        for (int count = isSparse ? 8 : Below(5); count > 0; --count)
            names.emplace_back(1, static_cast<char>('A' + names.size()));
        std::string text = "A, B; ";
        for (const char* shortcut : {"s -> A", "t -> A", "u -> B", "v -> s", "w ->1 A"}) {
            const bool isOfShortcut = shortcut[0] == 'v';
            if (Below(2) != 0 || (isOfShortcut && !std::count(names.begin(), names.end(), "s")))
                continue;
            text += MakeFolder() + shortcut + "; ";
            names.emplace_back(1, shortcut[0]);
        }
        const std::vector<std::string> operators{">-",  ">-", ">-", "-<",  "-",
                                                 ">-<", ">=", ">~", ">o-o"};
        const int joins = isSparse ? 10 + Below(6) : 2 + Below(10);
        for (int join = 0; join < joins; ++join)
            text += MakeFolder() + Pick(names) + " " + Pick(operators) + " " + Pick(names) +
                    " : j" + std::to_string(join) + "; ";
        // What is joined to a shortcut of its own may be one group with it.
        if (Below(2) == 0)
            text += "A - " + names.back() + " : j88; " + Pick(names) + " - " + names.back() +
                    " : j89; ";
        if (Below(3) == 0)
            text += "A >- B : k on 1 = 1; r -> k : " + Pick(names) + ", " + Pick(names) + "; ";
        return text;
    }

    std::string MakeFolder()
    {
        const std::vector<std::string> folders{"", "", "folder; ", "folder F; ", "folder F/G; "};
        return Pick(folders);
    }

    HostDraw MakeHost(const ModelText& model)
    {
        HostDraw host;
        host.hidden = Below(3) == 0 ? PickSome(model.Joins(), 2) : Ids();
        host.hasCache = Below(5) != 0;
        const std::vector<int> weights{0, 0, 0, 1, 2, 3, 5, 5, 17};
        for (const amd_id& join : model.Joins()) {
            if (const int weight = Pick(weights))
                host.weights[join] = weight;
        }
        host.command = Pick(std::vector<int>{0, 1, 1, 2, 3});
        if (Below(5) != 0)
            host.governors = AQE_Governors{Below(4), Below(2)};
        return host;
    }

    Lists MakeLists(const ModelText& model, bool newAlgo)
    {
        const amd_id unknown(0, IdClassQuerySubject, 99);
        Ids known = model.Joins();
        for (int number = 0; number < 3; ++number)
            known.emplace_back(100, IdClassShortcutJoin, number);
        Lists lists;
        lists.subjects = PickSome(model.Subjects(), model.Subjects().size() > 8 ? 6 : 4);
        lists.secondSet = PickSome(model.Subjects(), 3);
        lists.favouredJoins = PickSome(known, 2);
        lists.requiredJoins = PickSome(known, Below(2) * 3);
        lists.avoidedJoins = PickSome(known, 2);
        lists.furtherAvoidedJoins = PickSome(known, 1);
        lists.favouredSubjects = PickSome(model.Subjects(), Below(2) * 3);
        lists.nodes = model.Subjects();
        lists.joins = model.Joins();
        if (Below(8) == 0)
            lists.subjects.push_back(unknown);
        if (Below(8) == 0)
            lists.joins.push_back(known.back());
        std::shuffle(lists.nodes.begin(), lists.nodes.end(), mRandom);
        std::shuffle(lists.joins.begin(), lists.joins.end(), mRandom);
        // The pairwise growth expects every node that it can come to among the candidates.
        if (newAlgo && Below(3) == 0)
            lists.nodes.pop_back();
        if (Below(3) == 0)
            lists.joins.pop_back();
        if (Below(2) == 0)
            std::erase_if(lists.joins,
                          [&](const amd_id& join) { return Contains(lists.requiredJoins, join); });
        lists.nodes.push_back(lists.nodes.front());
        if (Below(40) == 0)
            lists.nodes.clear();
        return lists;
    }

    std::mt19937& mRandom;
};

} // namespace

Draw DrawRequest(std::mt19937& random)
{
    return DrawMaker(random).Make();
}

} // namespace qe::test
