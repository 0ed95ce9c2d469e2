#include "tessarin/parser/setup/FileDispatchReturnAsSetting.hpp"

namespace tessarin::compiler::core {

FileDispatchReturnAsSetting& FileDispatchReturnAsSetting::get() noexcept {
  static FileDispatchReturnAsSetting setting;
  return setting;
}

FileDispatchReturnAsSetting::Manager::Manager(FileDispatchReturnAsSetting& setting, FileDispatchReturnAs value)
    : scope_(&setting, [former = setting.value_](FileDispatchReturnAsSetting* owner) { owner->value_ = former; }) {
  setting.value_ = value;
}

} // namespace tessarin::compiler::core
