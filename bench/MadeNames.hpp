// Names as an enemy makes them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tessarin::bench {

/// `count` different names, 2^15 at the most, of 180 letters and digits. All have one hash where that is a chain of
/// multiplications that starts from the length of the text and knows no secret, as the hash of a name once was.
std::vector<std::u16string> namesMadeToCollide(std::size_t count);

/// `count` different names of the same length that nobody has chosen.
std::vector<std::u16string> namesByChance(std::size_t count);

} // namespace tessarin::bench
