// Functions of the language.
#pragma once

#include "tessarin/parser/ast/Declaration.hpp"
#include "tessarin/parser/ast/FileSource.hpp"

#include <unordered_map>
#include <vector>

namespace tessarin::compiler::core {

/// `function [ outputs ] = name( inputs )` with its definitions.
class TESSARIN_EXPORT TSNFunction
    : public nvf::TupleWrapper<TSNFunction*, Ident, nvf::Expressions<Ident>, nvf::Expressions<Ident>,
                               nvf::Expressions1<DefinitionsBlock>, FileSource> {
public:
  /// The name, the results and arguments in the order of the source, the definitions, one block at least, and the mark
  /// of the caller.
  /// @{
  TSNFunction(const Ident& name, const nvf::Expressions<Ident>& outputs, const nvf::Expressions<Ident>& inputs,
              const nvf::Expressions1<DefinitionsBlock>& definitions, FileSource source)
      : TupleWrapper(name, outputs, inputs, definitions, source) {}
  [[nodiscard]] const Ident& name() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<Ident>& outputs() const noexcept { return get<1>(); }
  [[nodiscard]] const nvf::Expressions<Ident>& inputs() const noexcept { return get<2>(); }
  [[nodiscard]] const nvf::Expressions1<DefinitionsBlock>& definitions() const noexcept { return get<3>(); }
  [[nodiscard]] FileSource source() const noexcept { return get<4>(); }
  /// Ends its last line.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// The local functions of a file by name.
using LocalTSNFunctions = std::unordered_map<nvf::CxId, TSNFunction>;

/// The functions in order of the names under which they stand in the map, to which they belong.
TESSARIN_EXPORT std::vector<const TSNFunction*> inOrderOfName(const LocalTSNFunctions& functions);

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::TSNFunction, "name", "outputs", "inputs", "definitions",
                            "source");
