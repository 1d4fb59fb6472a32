#include "Shortcuts/ShortcutGroupDump.h"

#include "amdi_gateway.h"
#include "amdi_object.h"

#include <ostream>

namespace qe {
namespace {

/// Gives "name(class:number)", without a name when there is no object.
I18NString Describe(amdi_gateway* gateway, const amd_id& id)
{
    const amdi_object* const object = gateway == nullptr ? nullptr : gateway->GetObject(id);
    const I18NString name = object == nullptr ? I18NString() : object->GetName();
    return name + "(" + ToText(id) + ")";
}

void WriteLine(std::ostream& out, const I18NString& line)
{
    out << line.c_str() << std::endl;
}

} // namespace

void DumpShortcutGroups(amdi_gateway* gateway, const std::map<amd_id, std::set<amd_id>>& groups,
                        std::ostream& out)
{
    out << "Shortcut groups:" << std::endl;
    for (const auto& [key, members] : groups) {
        I18NString line = Describe(gateway, key) + " <-- ";
        for (const amd_id& member : members)
            line += Describe(gateway, member) + ";";
        WriteLine(out, line);
    }
}

void DumpShortcutJoins(amdi_gateway* gateway, const std::vector<AQE_I_Refiner::QEjoinInfo>& joins,
                       std::ostream& out)
{
    out << "Joins for the shortcuts:" << std::endl;
    for (const AQE_I_Refiner::QEjoinInfo& join : joins)
        WriteLine(out, Describe(gateway, join.leftQuerySubject) + " <1:1--1:1> " +
                           Describe(gateway, join.rightQuerySubject));
}

} // namespace qe
