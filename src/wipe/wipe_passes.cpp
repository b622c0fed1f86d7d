#include "wipe/wipe_passes.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>


namespace scourel {

namespace {

// One pass as the method writes it: a fill, a repeating pair or triple, or random.
struct PassSpec {
  std::uint8_t count;  // 0 = random
  std::uint8_t b0, b1, b2;
};

constexpr PassSpec R{0, 0, 0, 0};
constexpr PassSpec Fill(std::uint8_t b) { return {1, b, 0, 0}; }
constexpr PassSpec Pair(std::uint8_t b0, std::uint8_t b1) { return {2, b0, b1, 0}; }
constexpr PassSpec Triple(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2) { return {3, b0, b1, b2}; }

// Gutmann's 35 passes, in the order they reach the disk.
constexpr PassSpec kGutmann[] = {
    R, R, R, R, Fill(0x55), Fill(0xAA),
    Triple(0x92, 0x49, 0x24), Triple(0x49, 0x24, 0x92), Triple(0x24, 0x92, 0x49),
    Fill(0x00), Fill(0x11), Fill(0x22), Fill(0x33), Fill(0x44), Fill(0x55), Fill(0x66), Fill(0x77),
    Fill(0x88), Fill(0x99), Fill(0xAA), Fill(0xBB), Fill(0xCC), Fill(0xDD), Fill(0xEE), Fill(0xFF),
    Triple(0x92, 0x49, 0x24), Triple(0x49, 0x24, 0x92), Triple(0x24, 0x92, 0x49),
    Triple(0x6D, 0xB6, 0xDB), Triple(0xB6, 0xDB, 0x6D), Triple(0xDB, 0x6D, 0xB6),
    R, R, R, R};
static_assert(sizeof(kGutmann) / sizeof(kGutmann[0]) == 35);

}  // namespace

CEraserJunkData::~CEraserJunkData() {
  // Iteratively, so a long stack never recurses through the node destructors.
  while (head_) PopPass();
}

std::uint32_t CEraserJunkData::PassCount(std::uint32_t method) {
  switch (method) {
    case 0:
    case 1:
      return 1;
    case 2:
    case 3:
      return 3;
    case 4:
    case 5:
    case 6:
      return 7;
    case 7:
      return 35;
    case 8:
      return 38;
    default:
      return 0;
  }
}

void CEraserJunkData::BuildPasses(std::uint32_t method, std::uint32_t length) {
  passLength_ = length;

  auto push = [this](const PassSpec& pass) {
    switch (pass.count) {
      case 0: AddRandomPass(); break;
      case 1: AddFillPass(pass.b0); break;
      case 2: AddPairPass(pass.b0, pass.b1); break;
      default: AddTriplePass(pass.b0, pass.b1, pass.b2); break;
    }
  };
  // Each list is in written order and pushed from its end.
  auto pushReversed = [&push](std::initializer_list<PassSpec> passes) {
    for (auto it = passes.end(); it != passes.begin();) push(*--it);
  };
  auto pushGutmann = [&push] {
    for (auto i = std::size(kGutmann); i > 0; --i) push(kGutmann[i - 1]);
  };

  switch (method) {
    case 0: pushReversed({Fill(0x00)}); break;
    case 1: pushReversed({R}); break;
    case 2: pushReversed({Fill(0x12), Fill(0xED), R}); break;
    case 3: pushReversed({Pair(0x00, 0xFF), Pair(0xFF, 0x00), R}); break;
    case 4: pushReversed({Fill(0x00), Fill(0xFF), Fill(0x00), Fill(0xFF), Fill(0x00), Fill(0xFF), R}); break;
    case 5: pushReversed({Fill(0x00), Fill(0xFF), Fill(0x00), Fill(0xFF), Fill(0x00), Fill(0xFF), Fill(0xAA)}); break;
    // 0x56, not 0x55: this method has always written 0x56.
    case 6: pushReversed({Fill(0x56), Fill(0xAA), Fill(0x56), Fill(0xAA), Fill(0x56), Fill(0xAA), R}); break;
    case 7: pushGutmann(); break;
    case 8:
      pushReversed({Fill(0x12), Fill(0xED), R});
      pushGutmann();
      break;
    default: break;
  }
}

PassNode& CEraserJunkData::PushPass() {
  auto node = std::make_unique<PassNode>();
  // One spare byte: when the length is a multiple of three plus two, the
  // last three-byte step of a triple pattern reaches one byte past the end.
  const std::size_t length = std::size_t{passLength_};
  // Left as it comes: each builder writes what it needs (fill and random
  // passes are rewritten whole, every cluster).
  node->bytes = std::make_unique_for_overwrite<std::uint8_t[]>(length + 1);
  node->next = std::move(head_);
  head_ = std::move(node);
  return *head_;
}

void CEraserJunkData::AddFillPass(std::uint8_t b) {
  PassNode& node = PushPass();
  node.pattern[0] = b;
  node.patternLength = 1;
  const std::size_t length = std::size_t{passLength_};
  std::fill_n(node.bytes.get(), length, b);
}

// Repeats the pattern from the first byte, a whole step at a time, for as
// long as fewer than length - 1 bytes are written.
void CEraserJunkData::AddPatternPass(const std::uint8_t* pattern, std::uint8_t patternLength) {
  PassNode& node = PushPass();
  std::copy_n(pattern, patternLength, node.pattern);
  node.patternLength = patternLength;
  const std::size_t length = std::size_t{passLength_};
  std::uint8_t* out = node.bytes.get();
  std::size_t i = 0;
  for (; i + 1 < length; i += patternLength) std::copy_n(pattern, patternLength, out + i);
  if (i < length + 1) std::fill(out + i, out + length + 1, std::uint8_t{0});  // the bytes no step reached
}

void CEraserJunkData::AddPairPass(std::uint8_t b0, std::uint8_t b1) {
  const std::uint8_t pattern[] = {b0, b1};
  AddPatternPass(pattern, 2);
}

void CEraserJunkData::AddTriplePass(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2) {
  const std::uint8_t pattern[] = {b0, b1, b2};
  AddPatternPass(pattern, 3);
}

void CEraserJunkData::AddRandomPass() {
  PassNode& node = PushPass();
  const std::size_t length = std::size_t{passLength_};
  random_.Fill(node.bytes.get(), length);
}

void CEraserJunkData::PopPass() {
  if (!head_) return;
  std::unique_ptr<PassNode> old = std::move(head_);
  head_ = std::move(old->next);
}

}  // namespace scourel
