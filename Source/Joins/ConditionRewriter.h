#ifndef SOURCE_JOINS_CONDITIONREWRITER_H
#define SOURCE_JOINS_CONDITIONREWRITER_H

#include "I18NString.h"
#include "amd_id.h"

class amdi_gateway;

namespace qe {

/// The two ends of a join, before and after it is seen through a shortcut.
struct EndReplacement
{
    amd_id oldLeft;
    amd_id newLeft;
    amd_id oldRight;
    amd_id newRight;
};

/// Rewrites the condition of a relationship so that its item references go through the new ends.
///
/// A side whose end stays, or whose new end the condition names already, is left alone. When
/// neither side is settled, the first half of the references in reading order is taken to belong
/// to the left end and the rest to the right end, which is what tells the two sides of a
/// self-join apart. Returns the text itself when there is nothing to rewrite, and otherwise the
/// condition as the expression library writes it. What the gateway or the parser raises passes
/// through.
[[nodiscard]] I18NString ReplaceEndReferences(amdi_gateway& gateway, const EndReplacement& ends,
                                              const I18NString& text);

} // namespace qe

#endif
