// Where the tool writes: the answer to standard output, what is wrong with the input to standard error.
#pragma once

#include "Status.hpp"

#include <cstddef>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string_view>

namespace tessarin::tool {

/// Collects output in a large block and writes it to a file descriptor when the block is full or `drain` is called.
/// The flush of a stream does nothing: listings end each line with one.
class BlockBuffer : public std::streambuf {
public:
  explicit BlockBuffer(int descriptor);
  BlockBuffer(const BlockBuffer&) = delete;
  BlockBuffer& operator=(const BlockBuffer&) = delete;

  /// Writes what is collected. After a failure everything is dropped.
  void drain();
  /// 0, or the `errno` of the first write that failed.
  [[nodiscard]] int failure() const noexcept { return failure_; }

protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize length) override;

private:
  void write(const char* text, std::size_t length);

  int descriptor_;
  int failure_ = 0;
  std::unique_ptr<char[]> block_;
};

/// The tool's outputs. Used by one thread.
class Console {
public:
  Console();

  /// Standard output, written in large blocks.
  [[nodiscard]] std::ostream& out() noexcept { return out_; }
  /// Whether text on standard output may be coloured: it is a terminal, and the user has not set NO_COLOR.
  [[nodiscard]] bool outHasColours() const noexcept { return outHasColours_; }

  /// Writes to standard error, behind what standard output has got so far.
  void report(std::string_view text);
  /// The same as `outHasColours` for standard error.
  [[nodiscard]] bool errorHasColours() const noexcept { return errorHasColours_; }

  /// Writes what is left. `status`, or `Usage`, with a word to standard error, where standard output could not take the
  /// answer.
  Status finish(Status status);

private:
  BlockBuffer outBuffer_;
  BlockBuffer errorBuffer_;
  std::ostream out_;
  bool outHasColours_;
  bool errorHasColours_;
};

} // namespace tessarin::tool
