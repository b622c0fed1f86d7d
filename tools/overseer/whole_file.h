// Files overseer reads and writes in one go: rules, profile lists, plug-ins.
#pragma once

#include <cstdint>
#include <string>

namespace overseer {

// False when the file cannot be read or is larger than maxBytes.
bool ReadWholeFile(const std::wstring& path, std::string& bytes, std::uint64_t maxBytes);
// Replaces the file (created when missing) with the bytes.
bool WriteWholeFile(const std::wstring& path, const std::string& bytes);

}  // namespace overseer
