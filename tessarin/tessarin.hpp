// The whole library in one include: read a file, look at it, change it, print it. docs/library.md has it by task.
//
// The classes of the language are in `tessarin::compiler::core`, what knows nothing of the language is in `nvf`, and
// both can be reached from `tessarin` here.
#pragma once

#include "tessarin/foundation/digest.hpp"
#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/source_file.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/packages/Directory.hpp"
#include "tessarin/packages/RewriteFile.hpp"
#include "tessarin/packages/TsnFilePrinter.hpp"
#include "tessarin/packages/WalkFile.hpp"
#include "tessarin/parser/ast/ComponentStructureInfo.hpp"
#include "tessarin/parser/ast/Conversions.hpp"
#include "tessarin/parser/ast/Make.hpp"
#include "tessarin/parser/ast/Rewrite.hpp"
#include "tessarin/parser/ast/Usage.hpp"
#include "tessarin/parser/ast/With.hpp"
#include "tessarin/parser/builder/ParseFile.hpp"
#include "tessarin/parser/builder/StringEntries.hpp"
#include "tessarin/parser/lex/Lexer.hpp"
#include "tessarin/parser/parse/Parser.hpp"
#include "tessarin/parser/setup/SetupConversion.hpp"

#include <iostream> // so that a short program needs no other include

/// The library: `parseFile` and its like, and everything of `compiler::core`.
namespace tessarin {
using namespace compiler::core;
} // namespace tessarin
