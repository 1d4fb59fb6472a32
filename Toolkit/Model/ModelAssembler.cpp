#include "Toolkit/Model/ModelAssembler.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/ModelError.h"
#include "Toolkit/Model/ModelWords.h"

namespace qe::tool {

using model::EAspect;
using model::ModelBuilder;

namespace {

/// Each round leaves out what was wrong in the one before; mistakes that only show then are few.
constexpr int kMaximumRounds = 4;

std::string PlaceOf(const ModelContent& content, std::size_t position, EAspect aspect)
{
    const ContentObject& object = content.objects[position];
    switch (aspect) {
    case EAspect::Id:
        return ChildPointer(object.pointer, keys::kId);
    case EAspect::Name:
        return object.isPlainName ? content.PointerTo(position)
                                  : ChildPointer(object.pointer, keys::kName);
    case EAspect::Target:
        return ChildPointer(object.pointer, keys::kTarget);
    case EAspect::LeftEnd:
        return ChildPointer(object.pointer, keys::kLeft);
    case EAspect::RightEnd:
        return ChildPointer(object.pointer, keys::kRight);
    case EAspect::LeftCardinality:
        return ChildPointer(object.pointer, keys::kLeftCardinality);
    case EAspect::RightCardinality:
        return ChildPointer(object.pointer, keys::kRightCardinality);
    case EAspect::Object:
    case EAspect::Parent:
        break;
    }
    return content.PointerTo(position);
}

amd_id AddTo(ModelBuilder& builder, const ContentObject& object, const model::Reference& parent,
             const model::ObjectOptions& options)
{
    static const ContentLinks kNoLinks;
    const ContentLinks& links = object.links == nullptr ? kNoLinks : *object.links;
    switch (object.classCode) {
    case model::IdClassNamespace:
        return builder.AddNamespace(parent, object.name, options);
    case IdClassFolder:
        return builder.AddFolder(parent, object.name, options);
    case IdClassQuerySubject:
        return builder.AddQuerySubject(parent, object.name, options);
    case IdClassQueryItem:
        return builder.AddItem(parent, object.name, options);
    case IdClassShortcut:
        return builder.AddShortcut(parent, object.name, {links.target, links.kind}, options);
    case IdClassRelationship:
        return builder.AddRelationship(parent, object.name, links.left, links.right,
                                       links.condition, options);
    case IdClassRelationship136:
        return builder.AddRelationship136(parent, object.name, links.left, links.right,
                                          links.condition, options);
    case IdClassRelationshipShortcut:
        return builder.AddRelationshipShortcut(parent, object.name,
                                               {.relationship = links.target,
                                                .left = links.left.subject,
                                                .right = links.right.subject},
                                               options);
    case IdClassFilter:
        return builder.AddFilter(parent, object.name, links.condition, options);
    case IdClassSpecJoin:
        return builder.AddSpecJoin(object.name, links.left, links.right, links.condition, options);
    default:
        return builder.AddSpecFilter(object.name, links.condition, options);
    }
}

} // namespace

ModelAssembler::ModelAssembler(const ModelContent& content, JsonProblems& problems)
    : mContent(&content), mProblems(&problems), mLeftOut(content.objects.size(), false)
{}

std::shared_ptr<const model::Model> ModelAssembler::Assemble()
{
    for (int round = 0; round < kMaximumRounds; ++round) {
        try {
            return Build();
        } catch (const model::ModelError& error) {
            if (round == 0)
                Report(error);
            LeaveOut(error);
        }
    }
    return nullptr;
}

std::shared_ptr<const model::Model> ModelAssembler::Build()
{
    static const ContentDetails kNoDetails;
    ModelBuilder builder(mContent->locale);
    for (const ContentObject& object : mContent->objects) {
        if (object.details != nullptr)
            builder.Reserve(object.details->options.id);
    }
    mDescriptions.clear();
    mQuotedNames.clear();
    mRows.clear();
    std::vector<amd_id> ids;
    for (std::size_t i = 0; i < mContent->objects.size(); ++i) {
        const ContentObject& object = mContent->objects[i];
        const bool hasParent = object.parent != ContentObject::kNoParent;
        if (hasParent && mLeftOut[object.parent])
            mLeftOut[i] = true;
        ids.emplace_back();
        if (mLeftOut[i])
            continue;
        const ContentDetails& details = object.details == nullptr ? kNoDetails : *object.details;
        model::ObjectOptions options = details.options;
        options.tag = static_cast<std::int64_t>(i);
        ids.back() = AddTo(builder, object,
                           hasParent ? model::Reference(ids[object.parent]) : model::kTop, options);
        if (!details.description.empty())
            mDescriptions[ids.back()] = details.description;
        if (!details.quoted.empty())
            mQuotedNames[ids.back()] = details.quoted;
        if (details.rows)
            mRows[ids.back()] = *details.rows;
    }
    return builder.Build();
}

void ModelAssembler::Report(const model::ModelError& error)
{
    for (const model::ModelProblem& problem : error.GetProblems()) {
        const std::string pointer =
            PlaceOf(*mContent, static_cast<std::size_t>(problem.tag), problem.aspect);
        if (!mProblems->IsReported(pointer))
            mProblems->Add(pointer, problem.text, problem.nearestNames);
    }
}

void ModelAssembler::LeaveOut(const model::ModelError& error)
{
    for (const model::ModelProblem& problem : error.GetProblems()) {
        const auto position = static_cast<std::size_t>(problem.tag);
        mLeftOut[position] = true;
        mDoubtfulNames.insert(mContent->objects[position].name);
    }
}

} // namespace qe::tool
