#pragma once
// Slot vectors of owned range objects, shared by the advance tables and the
// default-font tables: the 128 Unicode-range slots of a table and the block
// slots of a multi-block range have the same ownership rules and the same
// binary forms.
//
// Table form: one entry per slot in order, a type byte (0 for an empty
// slot) followed by the range's body (written by the range itself, type
// byte included).
// Block form: S (uint8, slot count), D (uint8, occupied slots), then D
// times the slot number (uint8, strictly ascending) and the range.

#include <memory>
#include <vector>

#include "base/ByteOrder.h"
#include "base/InputStream.h"
#include "base/OutputStream.h"

namespace qro_common {

// What reading a whole table found.
enum class RangeTableRead {
  kLoaded,  // at least one type byte was not 0
  kEmpty,   // every type byte was 0
  kDamaged  // truncated or invalid input; nothing is kept
};

template <typename Range>
void deleteRanges(std::vector<Range*>& slots) {
  for (Range*& range : slots) {
    delete range;
    range = nullptr;
  }
}

// The range in `slot`, null when empty or out of bounds.
template <typename Range>
Range* rangeAt(const std::vector<Range*>& slots, int slot) {
  if (slot < 0 || slot >= static_cast<int>(slots.size())) return nullptr;
  return slots[static_cast<size_t>(slot)];
}

// Stores `range` (owning) in `slot`, deleting a different range that was
// there. Out of bounds, `range` is deleted and false returned.
template <typename Range>
bool putRange(std::vector<Range*>& slots, int slot, Range* range) {
  if (slot < 0 || slot >= static_cast<int>(slots.size())) {
    delete range;
    return false;
  }
  Range*& current = slots[static_cast<size_t>(slot)];
  if (current != range) delete current;
  current = range;
  return true;
}

// Reads the table form into `slots` (which keeps its size). `make(type)`
// returns a new range for a type byte, or null to leave the slot empty
// without reading a body.
template <typename Range, typename Make>
RangeTableRead readRangeTable(qro_base::InputStream& in, std::vector<Range*>& slots, Make make) {
  deleteRanges(slots);
  bool any = false;
  for (Range*& slot : slots) {
    unsigned char type = 0;
    if (!qro_base::readUInt8(in, type)) {
      deleteRanges(slots);
      return RangeTableRead::kDamaged;
    }
    if (type != 0) any = true;
    std::unique_ptr<Range> range(make(type));
    if (range == nullptr) continue;
    if (!range->Read(in)) {
      deleteRanges(slots);
      return RangeTableRead::kDamaged;
    }
    slot = range.release();
  }
  return any ? RangeTableRead::kLoaded : RangeTableRead::kEmpty;
}

template <typename Range>
bool writeRangeTable(qro_base::OutputStream& out, const std::vector<Range*>& slots) {
  for (const Range* range : slots) {
    if (!(range == nullptr ? qro_base::writeUInt8(out, 0) : range->Write(out))) return false;
  }
  return true;
}

// Reads the block form (after the multi range's own type byte) into
// `slots`, resized to S. `make(type)` returns a new range for the type byte
// that precedes each block. Any damage leaves `slots` empty and gives false.
template <typename Range, typename Make>
bool readRangeBlocks(qro_base::InputStream& in, std::vector<Range*>& slots, Make make) {
  deleteRanges(slots);
  unsigned char slotCount = 0;
  unsigned char occupied = 0;
  bool ok = qro_base::readUInt8(in, slotCount) && qro_base::readUInt8(in, occupied) &&
            occupied <= slotCount;
  if (ok && slots.size() != slotCount) slots.assign(slotCount, nullptr);
  int previous = -1;
  for (unsigned i = 0; ok && i < occupied; ++i) {
    unsigned char slot = 0;
    unsigned char type = 0;
    ok = qro_base::readUInt8(in, slot) && slot < slotCount && slot > previous &&
         qro_base::readUInt8(in, type);
    if (!ok) break;
    previous = slot;
    std::unique_ptr<Range> range(make(type));
    ok = range != nullptr && range->Read(in);
    if (ok) slots[slot] = range.release();
  }
  if (!ok) {
    deleteRanges(slots);
    slots.clear();
  }
  return ok;
}

// Writes the multi range's type byte and the block form.
template <typename Range>
bool writeRangeBlocks(qro_base::OutputStream& out, const std::vector<Range*>& slots,
                      unsigned char multiType) {
  int occupied = 0;
  for (const Range* range : slots) occupied += range != nullptr;
  bool ok = qro_base::writeUInt8(out, multiType) &&
            qro_base::writeUInt8(out, static_cast<unsigned char>(slots.size())) &&
            qro_base::writeUInt8(out, static_cast<unsigned char>(occupied));
  for (size_t slot = 0; ok && slot < slots.size(); ++slot) {
    if (slots[slot] == nullptr) continue;
    ok = qro_base::writeUInt8(out, static_cast<unsigned char>(slot)) && slots[slot]->Write(out);
  }
  return ok;
}

}  // namespace qro_common
