#include "browsers/url_cache_cookies.h"

#include <cstdint>
#include <string_view>
#include <vector>

#include "common/unique_handle.h"
#include "task/file_probe.h"

namespace scourel {

namespace {

// Room for one entry and the strings that follow it, kept aligned for the
// structure at its start.
class EntryBuffer {
 public:
  INTERNET_CACHE_ENTRY_INFOW* get() {
    return words_.empty() ? nullptr : reinterpret_cast<INTERNET_CACHE_ENTRY_INFOW*>(words_.data());
  }
  DWORD bytes() const { return static_cast<DWORD>(words_.size() * sizeof(std::uint64_t)); }
  // Twice what the call asked for. A call that asks for no more than it was
  // given would ask forever: false.
  bool Grow(DWORD asked) {
    if (asked <= bytes()) return false;
    words_.assign((2 * static_cast<std::uint64_t>(asked) + 7) / 8, 0);
    return true;
  }

 private:
  std::vector<std::uint64_t> words_;
};

// Repeats `find` with a larger buffer for as long as it fails for want of room.
template <typename Find>
bool Fetch(EntryBuffer& buffer, Find find) {
  for (;;) {
    DWORD size = buffer.bytes();
    if (find(buffer.get(), &size)) return true;
    if (::GetLastError() != ERROR_INSUFFICIENT_BUFFER || !buffer.Grow(size)) return false;
  }
}

std::uint64_t LocalFileSize(const INTERNET_CACHE_ENTRY_INFOW& entry) {
  return entry.lpszLocalFileName ? SizeByReadProbe(entry.lpszLocalFileName) : 0;
}

void Count(const TaskContext& context, Tally tally, const INTERNET_CACHE_ENTRY_INFOW& entry) {
  const std::uint64_t size = LocalFileSize(entry);
  context.Record([&] {
    tally.count.add(1);
    AddBytes(tally.bytes, size);
  });
}

}  // namespace

void TakeUrlCacheCookies(const TaskContext& context, const std::wstring& pattern, Tally tally) {
  EntryBuffer buffer;
  UniqueUrlCacheEnum find;
  const bool found = Fetch(buffer, [&](INTERNET_CACHE_ENTRY_INFOW* entry, DWORD* size) {
    find.reset(::FindFirstUrlCacheEntryW(pattern.c_str(), entry, size));
    return find.valid();
  });
  if (!found) return;
  Count(context, tally, *buffer.get());
  auto next = [&](INTERNET_CACHE_ENTRY_INFOW* entry, DWORD* size) {
    return ::FindNextUrlCacheEntryW(find.get(), entry, size) != FALSE;
  };
  while (!context.stopped() && Fetch(buffer, next)) {
    const INTERNET_CACHE_ENTRY_INFOW& entry = *buffer.get();
    const wchar_t* name = entry.lpszSourceUrlName;
    const bool cookie = name && std::wstring_view(name).starts_with(L"Cookie:");
    for (int pass = cookie ? 2 : 1; pass > 0; --pass) {
      if (context.erasing() && name) (void)context.io.DeleteUrlCacheEntry(name);
      Count(context, tally, entry);
    }
  }
}

}  // namespace scourel
