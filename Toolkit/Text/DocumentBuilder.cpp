#include "Toolkit/Text/DocumentBuilder.h"

namespace qe::tool {

using nlohmann::json;

DepthError::DepthError(const std::string& place)
    : InputError({{place, "is nested too deep: more than " + std::to_string(kMaximumDocumentDepth) +
                              " levels"}})
{}

std::string DocumentBuilder::GetPointer() const
{
    std::string pointer;
    for (const Level& level : mLevels)
        pointer = level.value->is_array() ? ChildPointer(pointer, level.value->size() - 1)
                                          : ChildPointer(pointer, *level.key);
    return pointer;
}

std::string DocumentBuilder::GetNextPointer() const
{
    std::string pointer = GetPointer();
    if (!mLevels.empty() && mLevels.back().value->is_array())
        pointer = ChildPointer(pointer.substr(0, pointer.rfind('/')), mLevels.back().value->size());
    return pointer;
}

json& DocumentBuilder::AddValue(json value)
{
    json* placed = &mDocument;
    if (!mLevels.empty() && mLevels.back().value->is_array())
        placed = &mLevels.back().value->emplace_back();
    else if (!mLevels.empty())
        placed = mLevels.back().member;
    *placed = std::move(value);
    if (mLines != nullptr)
        mLines->Add(GetPointer());
    return *placed;
}

void DocumentBuilder::Enter(json value)
{
    json& placed = AddValue(std::move(value));
    if (mLevels.size() == kMaximumDocumentDepth)
        throw DepthError(mProblems->ToPlace(GetPointer()));
    mLevels.push_back({&placed});
}

void DocumentBuilder::AddKey(std::string name)
{
    Level& level = mLevels.back();
    const auto [member, isNew] =
        level.value->get_ref<json::object_t&>().try_emplace(std::move(name));
    level.key = &member->first;
    level.member = &member->second;
    if (!isNew)
        mProblems->Add(GetPointer(), "key is given twice: \"" + member->first + '"');
}

} // namespace qe::tool
