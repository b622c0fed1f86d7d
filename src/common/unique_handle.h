// One owning wrapper for every kind of system handle; each kind is a traits
// type naming its invalid value and how it is closed.
#pragma once

#include <utility>

#include "common/win.h"

namespace scourel {

template <typename Traits>
class UniqueHandle {
 public:
  using pointer = typename Traits::type;

  UniqueHandle() noexcept = default;
  explicit UniqueHandle(pointer value) noexcept : value_(value) {}
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;
  UniqueHandle(UniqueHandle&& other) noexcept : value_(other.release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  ~UniqueHandle() { reset(); }

  pointer get() const noexcept { return value_; }
  bool valid() const noexcept { return Traits::IsValid(value_); }
  explicit operator bool() const noexcept { return valid(); }

  pointer release() noexcept { return std::exchange(value_, Traits::Invalid()); }
  void reset(pointer value = Traits::Invalid()) noexcept {
    pointer old = std::exchange(value_, value);
    if (Traits::IsValid(old)) Traits::Close(old);
  }
  // For out-parameters: closes what is held, then hands out the slot.
  pointer* put() noexcept {
    reset();
    return &value_;
  }

 private:
  pointer value_ = Traits::Invalid();
};

// CreateFileW fails with INVALID_HANDLE_VALUE, most others with null: treat both as empty.
struct KernelHandleTraits {
  using type = HANDLE;
  static type Invalid() noexcept { return nullptr; }
  static bool IsValid(type h) noexcept { return h != nullptr && h != INVALID_HANDLE_VALUE; }
  static void Close(type h) noexcept { ::CloseHandle(h); }
};

struct FindHandleTraits {
  using type = HANDLE;
  static type Invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static bool IsValid(type h) noexcept { return h != nullptr && h != INVALID_HANDLE_VALUE; }
  static void Close(type h) noexcept { ::FindClose(h); }
};

// Predefined roots (HKEY_CURRENT_USER and friends) are never closed.
struct RegKeyTraits {
  using type = HKEY;
  static type Invalid() noexcept { return nullptr; }
  static bool IsValid(type h) noexcept {
    const auto v = reinterpret_cast<ULONG_PTR>(h);
    const auto first = reinterpret_cast<ULONG_PTR>(HKEY_CLASSES_ROOT);
    return h != nullptr && !(v >= first && v <= first + 0xFF);
  }
  static void Close(type h) noexcept { ::RegCloseKey(h); }
};

struct CryptProviderTraits {
  using type = HCRYPTPROV;
  static type Invalid() noexcept { return 0; }
  static bool IsValid(type h) noexcept { return h != 0; }
  static void Close(type h) noexcept { ::CryptReleaseContext(h, 0); }
};

struct UrlCacheEnumTraits {
  using type = HANDLE;
  static type Invalid() noexcept { return nullptr; }
  static bool IsValid(type h) noexcept { return h != nullptr; }
  static void Close(type h) noexcept { ::FindCloseUrlCache(h); }
};

using UniqueHandleKernel = UniqueHandle<KernelHandleTraits>;
using UniqueFindHandle = UniqueHandle<FindHandleTraits>;
using UniqueRegKey = UniqueHandle<RegKeyTraits>;
using UniqueCryptProvider = UniqueHandle<CryptProviderTraits>;
using UniqueUrlCacheEnum = UniqueHandle<UrlCacheEnumTraits>;

// Owning COM interface pointer.
template <typename Interface>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(const ComPtr&) = delete;
  ComPtr& operator=(const ComPtr&) = delete;
  ComPtr(ComPtr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ComPtr& operator=(ComPtr&& other) noexcept {
    if (this != &other) {
      reset();
      p_ = std::exchange(other.p_, nullptr);
    }
    return *this;
  }
  ~ComPtr() { reset(); }

  Interface* get() const noexcept { return p_; }
  Interface* operator->() const noexcept { return p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }
  void reset() noexcept {
    if (p_) std::exchange(p_, nullptr)->Release();
  }
  // For CoCreateInstance / QueryInterface out-parameters.
  void** put_void() noexcept {
    reset();
    return reinterpret_cast<void**>(&p_);
  }

 private:
  Interface* p_ = nullptr;
};

}  // namespace scourel
