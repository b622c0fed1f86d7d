#include "wipe/obscure_name.h"

namespace scourel {

std::wstring ObscuredPath(const std::wstring& path) {
  const auto slash = path.rfind(L'\\');
  const std::size_t nameStart = slash == std::wstring::npos ? 0 : slash + 1;
  std::wstring name = path.substr(nameStart);
  const auto point = name.rfind(L'.');
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (i != point) name[i] = L'x';
  }
  return path.substr(0, nameStart) + name;
}

}  // namespace scourel
