#ifndef TOOLKIT_PAGE_PAGEPARTS_H
#define TOOLKIT_PAGE_PAGEPARTS_H

namespace qe::tool {

/// The files page.html, page.css and page.js, which the build puts into the program. The page has
/// places for what is filled in, written "@TITLE@".
extern const char* const PageTemplate;
extern const char* const PageStyle;
extern const char* const PageScript;

} // namespace qe::tool

#endif
