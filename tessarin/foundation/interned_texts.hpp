// How much the table of interned texts holds.
//
// The texts of names, numbers, strings and files are kept to the end of the process, once each (table_string.hpp). A
// process that reads the texts of others for weeks can look at how much has come together, and hand its work over to a
// new process in time.
#pragma once

#include "tessarin/export.hpp"

#include <cstddef>

namespace nvf {

/// What is kept.
struct InternedTexts {
  std::size_t count = 0; ///< different texts
  std::size_t bytes = 0; ///< memory for them and for finding them
};

/// What is kept at the moment, of narrow texts and of UTF-16. Never becomes less. Safe from any thread; takes a lock
/// for each part of the table in turn, so it is meant to be called once for a file and not once for a name.
TESSARIN_EXPORT InternedTexts interned_texts();

} // namespace nvf
