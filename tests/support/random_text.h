// Texts for the bounded randomized tests: pieces that the function under test
// looks for, with now and then any UTF-16 unit (lone surrogates and zeros
// included). The engines are seeded, so a failure repeats.
#pragma once

#include <initializer_list>
#include <random>
#include <string>

namespace scourel::test {

inline std::wstring RandomText(std::mt19937& random, std::initializer_list<const wchar_t*> pieces, int maxPieces = 16) {
  std::wstring text;
  for (auto n = random() % (maxPieces + 1); n > 0; --n) {
    if (random() % 8 == 0) {
      text += static_cast<wchar_t>(random() % 0x10000);
    } else {
      text += pieces.begin()[random() % pieces.size()];
    }
  }
  return text;
}

}  // namespace scourel::test
