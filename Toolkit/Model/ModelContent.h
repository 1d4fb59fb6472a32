#ifndef TOOLKIT_MODEL_MODELCONTENT_H
#define TOOLKIT_MODEL_MODELCONTENT_H

#include "AQE_Governors.h"
#include "Engine/Model/ModelBuilder.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qe::tool {

/// One object as a model file describes it. Fields that its class does not use keep their
/// defaults.
struct ContentObject
{
    static constexpr std::size_t kNoParent = static_cast<std::size_t>(-1);

    std::int32_t classCode = 0;
    /// Where the file describes it.
    std::string pointer{};
    /// Where the file names it.
    std::string namePointer{};
    /// The position of its parent, which comes before it.
    std::size_t parent = kNoParent;
    std::string name{};
    model::ObjectOptions options{};
    model::Reference target{};
    std::int32_t kind = 0;
    model::JoinEnd left{};
    model::JoinEnd right{};
    std::string condition{};
};

/// The content of a model file, before names are looked up.
struct ModelContent
{
    std::string locale = "en";
    std::vector<std::string> userClasses{};
    AQE_Governors governors{};
    std::vector<ContentObject> objects{};
};

} // namespace qe::tool

#endif
