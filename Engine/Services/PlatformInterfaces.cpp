// The destructors of the interfaces that callers implement. Defining them here keeps one virtual
// table and one type description of each interface, shared by all modules.

#include "AQE_I_Authentication.h"
#include "AQE_I_QuerySpecJoin.h"
#include "AUT_I_UserConfiguration.h"
#include "I18NConverter.h"
#include "amdi_filter.h"
#include "amdi_gateway.h"
#include "amdi_object.h"
#include "amdi_relationship.h"
#include "amdi_relationshipShortcut.h"
#include "amdi_shortcut.h"
#include "amdi_specFilter.h"

AQE_I_Authentication::~AQE_I_Authentication() = default;
AQE_I_QuerySpecJoin::~AQE_I_QuerySpecJoin() = default;
AUT_I_UserConfiguration::~AUT_I_UserConfiguration() = default;
I18NConverter::~I18NConverter() = default;
amdi_filter::~amdi_filter() = default;
amdi_gateway::~amdi_gateway() = default;
amdi_object::~amdi_object() = default;
amdi_relationship::~amdi_relationship() = default;
amdi_relationshipShortcut::~amdi_relationshipShortcut() = default;
amdi_shortcut::~amdi_shortcut() = default;
amdi_specFilter::~amdi_specFilter() = default;
