// How a command ended.
#pragma once

namespace tessarin::tool {

/// The exit status of the process. The greater one is the graver one.
enum class Status {
  Success = 0,
  Fault = 1, ///< the input has a fault
  Usage = 2, ///< the command line is wrong, a file cannot be read or written, or there is not enough memory
};

} // namespace tessarin::tool
