#ifndef SOURCE_JOINS_REFINERSERVICES_H
#define SOURCE_JOINS_REFINERSERVICES_H

class AQE_I_QuerySubjectShortcutInfo;
class AQE_RequestContext;
class amdi_gateway;
struct AQE_Governors;

namespace qe {

/// What the operations of a refiner work with. All of it is borrowed, and any of it may be null.
struct RefinerServices
{
    amdi_gateway* gateway = nullptr;
    AQE_Governors* governors = nullptr;
    AQE_RequestContext* requestContext = nullptr;
    AQE_I_QuerySubjectShortcutInfo* shortcutInfo = nullptr;
};

} // namespace qe

#endif
