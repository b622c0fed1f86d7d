// A ShredIo that records every call the shredder makes and passes it on to
// the real file system, with a chosen volume geometry and optional failures.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "wipe/shred_io.h"
#include "wipe/wipe_progress.h"

namespace scourel::test {

struct IoEvent {
  enum Kind { kSetAttributes, kOpen, kSeek, kWrite, kFlush, kClose, kRename, kDelete };
  explicit IoEvent(Kind k, std::uint64_t at = 0) : kind(k), offset(at) {}
  Kind kind;
  std::uint64_t offset = 0;        // seek target, or where a write landed
  std::vector<std::uint8_t> bytes; // what a write wrote
  std::wstring path;               // set-attributes, open, rename (from), delete
  DWORD value = 0;                 // attributes set, or the file's attributes when opened
  std::uint8_t progress = 0;       // the progress byte when a seek was made
  std::uint64_t sizeOnDisk = 0;    // delete: the file's size just before it
};

class RecordingIo : public ShredIo {
 public:
  DWORD sectorsPerCluster = 8;
  DWORD bytesPerSector = 512;
  int failWriteNumber = 0;  // 1-based write to fail; 0 = none
  std::vector<IoEvent> events;

  std::vector<IoEvent> Of(IoEvent::Kind kind) const {
    std::vector<IoEvent> out;
    for (const auto& e : events)
      if (e.kind == kind) out.push_back(e);
    return out;
  }

  bool SetAttributes(const std::wstring& path, DWORD attributes) override {
    IoEvent e(IoEvent::kSetAttributes);
    e.path = path;
    e.value = attributes;
    events.push_back(e);
    return ShredIo::SetAttributes(path, attributes);
  }
  UniqueHandleKernel OpenFile(const std::wstring& path, DWORD access, DWORD share, DWORD flags) override {
    IoEvent e(IoEvent::kOpen);
    e.path = path;
    e.value = ::GetFileAttributesW(path.c_str());
    events.push_back(e);
    position_ = 0;
    return ShredIo::OpenFile(path, access, share, flags);
  }
  bool DiskFreeSpace(const std::wstring&, DWORD* spc, DWORD* bps) override {
    *spc = sectorsPerCluster;
    *bps = bytesPerSector;
    return true;
  }
  bool Seek(HANDLE file, std::uint64_t offset) override {
    IoEvent e(IoEvent::kSeek, offset);
    e.progress = g_wipeProgress.get();
    events.push_back(e);
    position_ = offset;
    return ShredIo::Seek(file, offset);
  }
  bool Write(HANDLE file, const std::uint8_t* bytes, std::uint32_t length) override {
    IoEvent e(IoEvent::kWrite, position_);
    e.bytes.assign(bytes, bytes + length);
    events.push_back(e);
    position_ += length;
    if (++writes_ == failWriteNumber) return false;
    return ShredIo::Write(file, bytes, length);
  }
  bool Flush(HANDLE file) override {
    events.emplace_back(IoEvent::kFlush);
    return ShredIo::Flush(file);
  }
  void Close(UniqueHandleKernel& file) override {
    events.emplace_back(IoEvent::kClose);
    ShredIo::Close(file);
  }
  int Rename(const std::wstring& from, const std::wstring& to) override {
    IoEvent e(IoEvent::kRename);
    e.path = from;
    events.push_back(e);
    return ShredIo::Rename(from, to);
  }
  bool Delete(const std::wstring& path) override {
    IoEvent e(IoEvent::kDelete);
    e.path = path;
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
      e.sizeOnDisk = (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
    events.push_back(e);
    return ShredIo::Delete(path);
  }

 private:
  std::uint64_t position_ = 0;
  int writes_ = 0;
};

}  // namespace scourel::test
