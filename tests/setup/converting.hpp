// Setup functions for tests: the statements in, the value or the fault out.
#pragma once

#include "tessarin/foundation/message.hpp"
#include "tessarin/parser/setup/SetupConversion.hpp"

#include "support/parsing.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>

namespace tessarin::test {

namespace core = tessarin::compiler::core;

/// The tree of a setup function with these statements, the first of which begins in line 3.
inline core::ParseTree setupTree(std::string_view statements) {
  const Parsed parsed = parse("component c\nfunction setup\n" + std::string(statements) + "\nend\nend\n");
  if (parsed.fault) {
    ADD_FAILURE() << describe(*parsed.fault) << " in " << statements.substr(0, 100);
    return {};
  }
  const core::ParseTree& model = parsed.tree.child(1);
  for (std::size_t i = 0; i < model.count(); ++i) {
    if (model.child(i).isNonTerminalType(core::NonTerminal::NonExprStmt)) return model.child(i);
  }
  ADD_FAILURE() << "no setup function";
  return {};
}

inline std::string printed(const core::SimpleSetupStmt& stmt, std::size_t indent = 0) {
  std::ostringstream stream;
  out(stream, stmt, indent);
  return stream.str();
}

/// `error` and `warning` with an id and a text; `refuse`, which raises a message without a place, and
/// `refuseElsewhere`, which raises one with a place of its own.
inline std::optional<core::SetupDiagnosticFunction> findDiagnostic(const nvf::CxId& name) {
  using Arguments = std::vector<nvf::ustring>;
  const auto refuseAt = [](const std::vector<nvf::StackFrame>& stack) -> core::SetupDiagnosticFunction {
    return [stack](const Arguments&, const nvf::Range&) -> core::SetupDiagnostic {
      nvf::MessageException exception(nvf::Message(nvf::BaseMsgID{{}, "host", "Refused"}));
      exception.stack(stack);
      throw exception;
    };
  };
  if (name.view() == u"error") {
    return [](const Arguments& a, const nvf::Range& range) -> core::SetupDiagnostic {
      return core::SimpleSetupErrorStmt(nvf::MessageId::make(a.at(0)).value(), a.at(1), range);
    };
  }
  if (name.view() == u"warning") {
    return [](const Arguments& a, const nvf::Range& range) -> core::SetupDiagnostic {
      return core::SimpleSetupWarningStmt(nvf::MessageId::make(a.at(0)).value(), a.at(1), range);
    };
  }
  if (name.view() == u"refuse") return refuseAt({});
  if (name.view() == u"refuseElsewhere") return refuseAt({{nvf::FileName("elsewhere"), u"f", 1}});
  return std::nullopt;
}

inline core::SimpleSetupStmt convert(std::string_view statements) {
  return core::to_simple_setup_stmt(setupTree(statements), findDiagnostic);
}

/// The text of the converted statements, or the fault as `Id at file:line`, the first statement standing in line 1.
inline std::string converted(std::string_view statements) {
  try {
    return printed(convert(statements));
  } catch (const nvf::MessageException& e) {
    EXPECT_EQ(e.stack().size(), 1U);
    const nvf::StackFrame frame = e.stack().at(0);
    return e.id().id + " at " + frame.fileName.path().string() + ":" + std::to_string(frame.line - 1) +
           nvf::encode_utf8(frame.name);
  }
}

} // namespace tessarin::test
