#include "tessarin/foundation/terminate.hpp"
#include "tessarin/foundation/warning.hpp"

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <utility>

namespace nvf {

namespace {

void abortWithDiagnostic(const FatalDiagnostic& diagnostic) {
  std::cerr << "fatal: " << diagnostic.text << "\n  at " << diagnostic.sourceFile << ':' << diagnostic.line << "\n  in "
            << diagnostic.signature << std::endl;
  std::abort();
}

constinit std::atomic<TerminateHandler> terminateHandler = abortWithDiagnostic;

void printWarning(const Message& message) {
  std::cerr << "warning: " + encode_utf8(message.fullMessage()) + "\n";
}

struct ProcessSink {
  std::mutex mutex;
  WarningSink sink = printWarning;
};

ProcessSink& processSink() {
  // Never destroyed, so that destructors of other static objects may still warn.
  static auto& sink = *new ProcessSink;
  return sink;
}

constinit thread_local ScopedWarningSink* innermostSink = nullptr;

} // namespace

TerminateHandler set_terminate_handler(TerminateHandler handler) noexcept {
  return terminateHandler.exchange(handler == nullptr ? abortWithDiagnostic : handler);
}

void terminate(const char* text, const char* sourceFile, int line, const char* signature) {
  terminateHandler.load()(FatalDiagnostic{text, sourceFile, line, signature});
  std::abort();
}

FatalError::FatalError(FatalDiagnostic diagnostic) : Exception(diagnostic.text), diagnostic_(std::move(diagnostic)) {}
FatalError::~FatalError() = default;

void throw_fatal_error(const FatalDiagnostic& diagnostic) {
  throw FatalError(diagnostic);
}

Warning& Warning::get() {
  static Warning warning;
  return warning;
}

void Warning::issueWarning(const Message& message) {
  if (innermostSink != nullptr) {
    innermostSink->sink_(message);
    return;
  }
  const WarningSink sink = [] {
    const std::scoped_lock lock(processSink().mutex);
    return processSink().sink;
  }();
  sink(message);
}

WarningSink Warning::sink(WarningSink sink) {
  if (!sink) sink = printWarning;
  const std::scoped_lock lock(processSink().mutex);
  return std::exchange(processSink().sink, std::move(sink));
}

ScopedWarningSink::ScopedWarningSink(WarningSink sink)
    : sink_(sink ? std::move(sink) : printWarning), outer_(std::exchange(innermostSink, this)) {}

ScopedWarningSink::~ScopedWarningSink() {
  innermostSink = outer_;
}

} // namespace nvf
