#ifndef ENGINE_MODEL_METADATAOBJECT_H
#define ENGINE_MODEL_METADATAOBJECT_H

#include "Engine/Model/ObjectRecord.h"
#include "QEENGINE_EXPORT.h"

#include <memory>

class amdi_object;

namespace qe::model {

/// Makes the object that shows a record to the refiner, with the interface of the id's class; a
/// class without an interface of its own gives a plain amdi_object. The record must outlive the
/// object and is read anew at each call.
[[nodiscard]] QEENGINE_EXPORT std::unique_ptr<amdi_object>
MakeMetadataObject(const ObjectRecord& record);

} // namespace qe::model

#endif
