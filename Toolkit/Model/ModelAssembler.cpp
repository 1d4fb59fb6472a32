#include "Toolkit/Model/ModelAssembler.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/ModelError.h"
#include "Toolkit/Model/ModelKeys.h"

namespace qe::tool {

using model::EAspect;
using model::ModelBuilder;

namespace {

/// Each round leaves out what was wrong in the one before; mistakes that only show then are few.
constexpr int MaximumRounds = 4;

std::string PlaceOf(const ContentObject& object, EAspect aspect)
{
    switch (aspect) {
    case EAspect::Id:
        return ChildPointer(object.pointer, keys::Id);
    case EAspect::Name:
        return object.namePointer;
    case EAspect::Target:
        return ChildPointer(object.pointer, keys::Target);
    case EAspect::LeftEnd:
        return ChildPointer(object.pointer, keys::Left);
    case EAspect::RightEnd:
        return ChildPointer(object.pointer, keys::Right);
    case EAspect::LeftCardinality:
        return ChildPointer(object.pointer, keys::LeftCardinality);
    case EAspect::RightCardinality:
        return ChildPointer(object.pointer, keys::RightCardinality);
    case EAspect::Object:
    case EAspect::Parent:
        break;
    }
    return object.pointer;
}

amd_id AddTo(ModelBuilder& builder, const ContentObject& object, const model::Reference& holder,
             const model::ObjectOptions& options)
{
    switch (object.classCode) {
    case model::IdClassNamespace:
        return builder.AddNamespace(holder, object.name, options);
    case IdClassFolder:
        return builder.AddFolder(holder, object.name, options);
    case IdClassQuerySubject:
        return builder.AddQuerySubject(holder, object.name, options);
    case IdClassQueryItem:
        return builder.AddItem(holder, object.name, options);
    case IdClassShortcut:
        return builder.AddShortcut(holder, object.name, {object.target, object.kind}, options);
    case IdClassRelationship:
        return builder.AddRelationship(holder, object.name, object.left, object.right,
                                       object.condition, options);
    case IdClassRelationship136:
        return builder.AddRelationship136(holder, object.name, object.left, object.right,
                                          object.condition, options);
    case IdClassRelationshipShortcut:
        return builder.AddRelationshipShortcut(
            holder, object.name, {object.target, object.left.subject, object.right.subject},
            options);
    case IdClassFilter:
        return builder.AddFilter(holder, object.name, object.condition, options);
    case IdClassSpecJoin:
        return builder.AddSpecJoin(object.name, object.left, object.right, object.condition,
                                   options);
    default:
        return builder.AddSpecFilter(object.name, object.condition, options);
    }
}

} // namespace

ModelAssembler::ModelAssembler(const ModelContent& content, FileProblems& problems)
    : mContent(&content), mProblems(&problems), mLeftOut(content.objects.size(), false)
{}

std::shared_ptr<const model::Model> ModelAssembler::Assemble()
{
    for (int round = 0; round < MaximumRounds; ++round) {
        try {
            return Build();
        } catch (const model::ModelError& error) {
            if (round == 0)
                Tell(error);
            LeaveOut(error);
        }
    }
    return nullptr;
}

std::shared_ptr<const model::Model> ModelAssembler::Build()
{
    ModelBuilder builder(mContent->locale);
    for (const ContentObject& object : mContent->objects)
        builder.Reserve(object.options.id);
    std::vector<amd_id> ids;
    for (std::size_t i = 0; i < mContent->objects.size(); ++i) {
        const ContentObject& object = mContent->objects[i];
        const bool isHeld = object.holder != ContentObject::NoHolder;
        if (isHeld && mLeftOut[object.holder])
            mLeftOut[i] = true;
        ids.emplace_back();
        if (mLeftOut[i])
            continue;
        model::ObjectOptions options = object.options;
        options.tag = static_cast<std::int64_t>(i);
        ids.back() = AddTo(builder, object,
                           isHeld ? model::Reference(ids[object.holder]) : model::kTop, options);
    }
    return builder.Build();
}

void ModelAssembler::Tell(const model::ModelError& error)
{
    for (const model::ModelProblem& problem : error.GetProblems()) {
        const ContentObject& object = mContent->objects[static_cast<std::size_t>(problem.tag)];
        const std::string pointer = PlaceOf(object, problem.aspect);
        if (!mProblems->IsSettled(pointer))
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
