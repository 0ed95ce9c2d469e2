// Keeps text of strangers from steering a terminal.
#pragma once

#include "Console.hpp"

#include <functional>
#include <ostream>
#include <streambuf>
#include <string>

namespace tessarin::tool {

/// Passes UTF-8 on to another buffer with escapes for what is not printable, as `escaped` writes them; line ends and
/// tabs stay. Holds back a line at the most, and of a long line a few thousand bytes.
class TerminalBuffer : public std::streambuf {
public:
  /// `target` must live longer.
  explicit TerminalBuffer(std::streambuf& target) noexcept : target_(target) {}
  TerminalBuffer(const TerminalBuffer&) = delete;
  TerminalBuffer& operator=(const TerminalBuffer&) = delete;
  ~TerminalBuffer() override;

protected:
  int_type overflow(int_type c) override;
  int sync() override;

private:
  void pass();

  std::streambuf& target_;
  std::string held_;
};

/// Calls `write` with a stream to standard output that leads through a `TerminalBuffer` where it is a terminal.
void writeText(Console& console, const std::function<void(std::ostream&)>& write);

} // namespace tessarin::tool
