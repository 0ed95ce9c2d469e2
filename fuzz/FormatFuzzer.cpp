// Formats any text in any layout. The laws of the formatter are its own: what breaks one is refused, and a refusal is
// a finding.
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/ide/Format.hpp"
#include "tessarin/ide/Lossless.hpp"
#include "tessarin/ide/TextEdit.hpp"

#include "FuzzText.hpp"

#include <cstdlib>

namespace {

using namespace tessarin;

void require(bool holds) {
  if (!holds) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string text = fuzz::textOf(data, size);
  nvf::set_terminate_handler(nvf::throw_fatal_error);
  ide::FormatOptions options;
  if (size > 2) {
    options.width = 20 + data[1] % 100U;
    options.indentation = 1 + data[2] % 8U;
    if ((data[0] & 2U) != 0) options.lines = ide::LineRange{data[1] % 16U, data[2] % 16U};
  }
  const ide::FormatResult result = ide::format(text, options);
  require(!result.refusal);
  const ide::Lossless before(text);
  const ide::Lossless after(result.text);
  require(ide::apply(text, ide::edits(before, after)) == result.text);
  return 0;
}
