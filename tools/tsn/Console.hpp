// Where the tool writes: the answer to standard output, what is wrong with the input to standard error.
#pragma once

#include "Status.hpp"

#include <cstddef>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string_view>
#include <vector>

namespace tessarin::tool {

/// Collects output in a large block and writes it to a file descriptor when the block is full or `drain` is called.
/// The flush of a stream does nothing: listings end each line with one.
class BlockBuffer : public std::streambuf {
public:
  explicit BlockBuffer(int descriptor);
  BlockBuffer(const BlockBuffer&) = delete;
  BlockBuffer& operator=(const BlockBuffer&) = delete;

  /// Writes what is collected, unless it is held. After a failure everything is dropped.
  void drain();
  /// Writes what is collected, and from now on collects everything, in as many blocks as it takes, until it is let go
  /// or dropped. Throws `std::bad_alloc` where there is no memory for another block.
  void hold();
  void letGo();
  void drop() noexcept;
  /// 0, or the `errno` of the first write that failed.
  [[nodiscard]] int failure() const noexcept { return failure_; }

protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize length) override;

private:
  void makeRoom();
  void put(const char* text, std::streamsize length); // which has room
  void write(const char* text, std::size_t length);

  int descriptor_;
  int failure_ = 0;
  std::unique_ptr<char[]> block_;
  bool isHeld_ = false;
  std::vector<std::vector<char>> full_; // blocks that are held
};

/// The tool's outputs. Used by one thread.
class Console {
public:
  /// Standard streams that the process was started without are taken by the null device, so that no file that is opened
  /// later gets their place: reading and writing them fails.
  Console();

  /// Standard output, written in large blocks.
  [[nodiscard]] std::ostream& out() noexcept { return out_; }
  /// Whether it is a terminal, which text of strangers must not steer.
  [[nodiscard]] bool outIsTerminal() const noexcept { return outIsTerminal_; }
  /// Between the two calls nothing of standard output is written: a document for machines is complete or not there.
  /// Throws `std::bad_alloc` where memory has ended on the way.
  void beginDocument() { outBuffer_.hold(); }
  void endDocument();
  /// Drops a document that cannot be completed; does nothing where none is open.
  void dropDocument() noexcept { outBuffer_.drop(); }
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
  /// Made before anything is opened.
  struct StandardStreams {
    StandardStreams();
  } standardStreams_;
  BlockBuffer outBuffer_;
  BlockBuffer errorBuffer_;
  std::ostream out_;
  bool outIsTerminal_;
  bool outHasColours_;
  bool errorHasColours_;
};

} // namespace tessarin::tool
