// The nine wipe methods as stacks of pass buffers. A method's passes are
// pushed in reverse, so that taking the head each time writes them in the
// method's order.
#pragma once

#include <cstdint>
#include <memory>

#include "common/unique_handle.h"
#include "wipe/disk.h"
#include "wipe/random_fill.h"

namespace scourel {

struct PassNode {
  std::unique_ptr<std::uint8_t[]> bytes;
  std::unique_ptr<PassNode> next;
  std::uint8_t pattern[3] = {};
  std::uint8_t patternLength = 0;  // 0 for a random pass
};

class CEraserJunkData {
 public:
  CEraserJunkData() = default;
  virtual ~CEraserJunkData();
  CEraserJunkData(const CEraserJunkData&) = delete;
  CEraserJunkData& operator=(const CEraserJunkData&) = delete;

  // 0,1 -> 1; 2,3 -> 3; 4..6 -> 7; 7 -> 35; 8 -> 38; anything else -> 0.
  static std::uint32_t PassCount(std::uint32_t method);

  // Pushes every pass of `method`, each `length` bytes long; nothing above 8.
  void BuildPasses(std::uint32_t method, std::uint32_t length);
  // The length the Add*Pass builders give the buffers they push.
  void SetPassLength(std::uint32_t length) { passLength_ = length; }
  void AddFillPass(std::uint8_t b);
  void AddPairPass(std::uint8_t b0, std::uint8_t b1);
  void AddTriplePass(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2);
  void AddRandomPass();
  void PopPass();

  const PassNode* head() const { return head_.get(); }

 protected:
  // Drops the key the random passes share: the next file gets a new one.
  void ReleaseRandomKey() { random_.Release(); }

  CDisk volume_;  // cluster geometry of the file being wiped
  CDisk wipedVolume_;  // the volume whose free space is being wiped

 private:
  PassNode& PushPass();
  void AddPatternPass(const std::uint8_t* pattern, std::uint8_t patternLength);

  std::unique_ptr<PassNode> head_;
  // The length of the passes being built. Each shredder keeps its own, so two
  // shredders on volumes with different cluster sizes never share buffers.
  std::uint32_t passLength_ = 0;
  RandomPassSource random_;
};

}  // namespace scourel
