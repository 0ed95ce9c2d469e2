// What a host gets back for a file that it hands on.
#pragma once

namespace tessarin::compiler::core {

/// The front end keeps the value for its host and reads none into it but the default: a host may give the other values
/// of the underlying type a meaning of its own.
enum class FileDispatchReturnAs : int { Default = 0 };

} // namespace tessarin::compiler::core
