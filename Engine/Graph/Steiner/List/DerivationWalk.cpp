#include "Engine/Graph/Steiner/List/DerivationWalk.h"

namespace qe::graph {

DerivationWalk::DerivationWalk(Derivations& derivations, const StrandPool& pool,
                               std::span<const StrandIndex> strands)
    : mDerivations(derivations), mPool(pool), mStrands(strands)
{}

bool DerivationWalk::MoveNext()
{
    if (!mIsStarted) {
        mIsStarted = true;
        mOpen = AddTask(EKind::Part, mDerivations.GetWhole().value, kNothing);
    } else if (!Backtrack()) {
        return false;
    }
    Complete();
    return true;
}

std::uint32_t DerivationWalk::AddTask(EKind kind, std::uint32_t what, std::uint32_t next)
{
    mTasks.push_back({kind, what, next});
    return static_cast<std::uint32_t>(mTasks.size() - 1);
}

/// Does the last task that has another choice in that other manner.
bool DerivationWalk::Backtrack()
{
    while (!mTurns.empty()) {
        Turn& turn = mTurns.back();
        mTasks.resize(turn.taskCount);
        mEdges.resize(turn.edgeCount);
        const Task task = mTasks[turn.task];
        const std::optional<std::uint64_t> choice = FindChoice(task, turn.nextChoice);
        if (!choice) {
            mTurns.pop_back();
            continue;
        }
        turn.nextChoice = *choice + 1;
        Do(task, *choice);
        return true;
    }
    return false;
}

/// Does what is left in the first manner there is.
void DerivationWalk::Complete()
{
    while (mOpen != kNothing) {
        const Task task = mTasks[mOpen];
        // Every label was put together from others, so there is a choice.
        const std::uint64_t choice = FindChoice(task, 0).value();
        if (choice + 1 < CountChoices(task))
            mTurns.push_back({mOpen, choice + 1, mTasks.size(), mEdges.size()});
        Do(task, choice);
    }
}

std::uint64_t DerivationWalk::CountChoices(const Task& task)
{
    if (task.kind == EKind::Strand)
        return mPool.GetCount({task.what});
    const LabelIndex label{task.what};
    if (task.kind == EKind::Part)
        return 1 + mDerivations.GetJoins(label).size();
    return mDerivations.IsEmpty(label) ? 1 : mDerivations.GetSteps(label).size();
}

/// Returns the first choice, from the given one on, that leads to a tree.
std::optional<std::uint64_t> DerivationWalk::FindChoice(const Task& task, std::uint64_t choice)
{
    const LabelIndex label{task.what};
    if (task.kind != EKind::Strand)
        mDerivations.Expand(label);
    for (; choice < CountChoices(task); ++choice) {
        ++mSteps;
        if (task.kind != EKind::Part)
            return choice;
        if (IsBranch(choice == 0 ? label : mDerivations.GetJoins(label)[choice - 1].branch))
            return choice;
    }
    return std::nullopt;
}

/// Returns whether the label can be a branch; one that comes about by joins alone cannot.
bool DerivationWalk::IsBranch(LabelIndex label)
{
    mDerivations.Expand(label);
    return mDerivations.IsEmpty(label) || !mDerivations.GetSteps(label).empty();
}

/// Replaces the task by those that its choice makes. Of these the last one changes fastest: the
/// strand of a step, the others of a join.
void DerivationWalk::Do(const Task& task, std::uint64_t choice)
{
    const LabelIndex label{task.what};
    if (task.kind == EKind::Strand) {
        mPool.AppendEdges({task.what}, choice, mEdges);
        mOpen = task.next;
    } else if (task.kind == EKind::Part && choice == 0) {
        mOpen = AddTask(EKind::Branch, task.what, task.next);
    } else if (task.kind == EKind::Part) {
        const auto join = mDerivations.GetJoins(label)[choice - 1];
        const std::uint32_t others = AddTask(EKind::Part, join.others.value, task.next);
        mOpen = AddTask(EKind::Branch, join.branch.value, others);
    } else if (mDerivations.IsEmpty(label)) {
        mOpen = task.next;
    } else {
        const auto step = mDerivations.GetSteps(label)[choice];
        const std::uint32_t strand =
            AddTask(EKind::Strand, mStrands[step.edge.value].value, task.next);
        mOpen = AddTask(EKind::Part, step.label.value, strand);
    }
}

} // namespace qe::graph
