// Building whole files for tests: source text in, the printed form or the fault out.
#pragma once

#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/ast/ComponentStructureInfo.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include "support/parsing.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <variant>

namespace tessarin::test {

/// What `function` returns, or the fault that it throws as `Id(argument, …) at line:column`, with `firstLine` lines
/// taken off. A fatal diagnostic is its text and its line. Warnings are dropped.
inline std::string resultOf(const std::function<std::string()>& function, std::size_t firstLine = 0) {
  const ThrowingTerminate terminate;
  const nvf::ScopedWarningSink sink([](const nvf::Message&) {});
  try {
    return function();
  } catch (const nvf::LocationException& e) {
    EXPECT_EQ(e.message().location(), e.location());
    return describe(e.message(), firstLine);
  } catch (const nvf::MessageException& e) {
    EXPECT_FALSE(e.message().location());
    return describe(e.message());
  } catch (const nvf::FatalError& e) {
    EXPECT_EQ(e.diagnostic().sourceFile, "parser/ast/ASTBuilder");
    return "fatal: " + e.diagnostic().text + " " + std::to_string(e.diagnostic().line);
  }
}

/// The tree of a file; warnings are dropped.
inline compiler::core::ParseTree fileTree(std::string_view source, std::string_view fileName = "c.tsn") {
  const nvf::ScopedWarningSink sink([](const nvf::Message&) {});
  return compiler::core::Parser(bufferOf(source, fileName)).parse();
}

/// The text of a file of either sort.
inline std::string printed(const compiler::core::TSNFile& file) {
  return nvf::encode_utf8(std::visit([](const auto& alternative) { return alternative.string(0, 2); }, file));
}

/// The printed form of a file, or its fault.
inline std::string built(std::string_view source,
                         const compiler::core::ASTBuilder& builder = compiler::core::ASTBuilder()) {
  return resultOf([&] { return printed(builder.buildTSNFile(fileTree(source), compiler::core::FileSource::open)); });
}

/// The model of a file.
inline compiler::core::Model modelOf(std::string_view source) {
  return compiler::core::ASTBuilder().buildModelFile(fileTree(source), compiler::core::FileSource::open).model();
}

/// The printed form of what stands in a model, at the indent 2, or its fault; the first line is that of `body`.
inline std::string builtBody(std::string_view body) {
  const std::string head = "component c\n";
  return resultOf(
      [&] {
        const std::string text = nvf::encode_utf8(modelOf(head + std::string(body) + "\nend\n").string(0, 2));
        const std::string end = "end \n";
        EXPECT_TRUE(text.starts_with(head) && text.ends_with(end)) << text;
        return text.substr(head.size(), text.size() - head.size() - end.size());
      },
      1);
}

/// A source text and what comes of it.
struct BuildCase {
  std::string source;
  std::string expected;
};

} // namespace tessarin::test
