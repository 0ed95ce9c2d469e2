// The setting of the process that says what a host gets back for a file.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/parser/setup/FileDispatchReturnAs.hpp"

#include <memory>

namespace tessarin::compiler::core {

/// Holds one value. Not safe from several threads: whoever shares the setting among them keeps them apart.
class TESSARIN_EXPORT FileDispatchReturnAsSetting {
public:
  /// The one instance. It starts with the default.
  static FileDispatchReturnAsSetting& get() noexcept;

  FileDispatchReturnAsSetting(const FileDispatchReturnAsSetting&) = delete;
  FileDispatchReturnAsSetting& operator=(const FileDispatchReturnAsSetting&) = delete;

  /// What holds now.
  [[nodiscard]] FileDispatchReturnAs value() const noexcept { return value_; }

  /// Sets a value for as long as it or one of its copies lives; then the former value is back. Scopes nest strictly, as
  /// objects on a stack do.
  class TESSARIN_EXPORT Manager {
  public:
    /// Sets `value` at once; the setting must outlive the manager.
    Manager(FileDispatchReturnAsSetting& setting, FileDispatchReturnAs value);

  private:
    std::shared_ptr<FileDispatchReturnAsSetting> scope_; // its deleter puts the former value back
  };

private:
  FileDispatchReturnAsSetting() = default;

  FileDispatchReturnAs value_ = FileDispatchReturnAs::Default;
};

} // namespace tessarin::compiler::core
