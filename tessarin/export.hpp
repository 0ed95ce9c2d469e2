// The mark of the symbols that the shared library exports; everything without it is hidden.
//
// Classes that are thrown or dynamically cast across the library's border carry the mark as well, so that their type
// information is one object in the whole process.
#pragma once

#define TESSARIN_EXPORT __attribute__((visibility("default")))
