#include "Bindings/C/SchemaTexts.h"
#include "qerefine.h"

#include <string_view>

const char* qe_version(void)
{
    return QEREFINER_VERSION;
}

const char* qe_schema(const char* name)
{
    if (name == nullptr)
        return nullptr;
    const std::string_view asked = name;
    if (asked == "answer")
        return qe::binding::kAnswerSchema;
    return asked == "model" ? qe::binding::kModelSchema : nullptr;
}
