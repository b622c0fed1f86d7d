// What the category step tables are written with: the enumerators by their
// bare names, and the one list of names that Chrome keeps in each profile.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "browsers/browser_steps.h"

namespace scourel::step_table {

using enum protocol::Browser;
using enum Gate;
using enum Base;
using enum Treatment;
using enum AlsoCounted;

// A name below a Chrome profile folder, and how it is taken.
struct ChromeProfileName {
  std::wstring_view name;
  Treatment treatment;
};

// The same names in the default profile (gated on its folder) and in the
// extra profile (gated on the version's search).
template <std::size_t N>
constexpr std::array<BrowserStep, N> ChromeDefaultSteps(const ChromeProfileName (&names)[N]) {
  std::array<BrowserStep, N> steps{};
  for (std::size_t i = 0; i < N; ++i) steps[i] = {kChrome, kChromeDefault, kChromeDefaultProfile, names[i].name, names[i].treatment};
  return steps;
}
template <std::size_t N>
constexpr std::array<BrowserStep, N> ChromeExtraSteps(const ChromeProfileName (&names)[N]) {
  std::array<BrowserStep, N> steps{};
  for (std::size_t i = 0; i < N; ++i) steps[i] = {kChrome, kExtraChromeProfile, kChromeExtra, names[i].name, names[i].treatment};
  return steps;
}

// Pieces of a table, one after the other.
template <std::size_t... N>
constexpr std::array<BrowserStep, (N + ...)> Joined(const std::array<BrowserStep, N>&... pieces) {
  std::array<BrowserStep, (N + ...)> steps{};
  auto at = steps.begin();
  ((at = std::copy(pieces.begin(), pieces.end(), at)), ...);
  return steps;
}

}  // namespace scourel::step_table
