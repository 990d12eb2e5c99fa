// Warnings about the library's environment variables, for `zel info`.
#pragma once

namespace zel::tool {

// Prints a warning on standard error for each value the library would ignore or read otherwise
// than written, and for ZEL_ names it does not read; returns how many.
int warn_about_environment();

} // namespace zel::tool
