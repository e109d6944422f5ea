#pragma once

#include <map>
#include <stdexcept>
#include <vector>

#include "base/DereferenceLess.h"
#include "base/NonCopyable.h"

namespace qro_common {

// Records kept in registration order (a record's position is its number)
// with an index that finds a record by value through T::operator<. The
// storage owns the item vector and every record in it. T provides
// `T* Clone() const` and `operator<`.
template <typename T>
class Storage : public qro_base::NonCopyable {
 public:
  using Items = std::vector<T*>;
  using Index = std::multimap<T*, int, qro_base::DereferenceLess<T*>>;

  Storage() = default;
  virtual ~Storage() { DeleteItems(); }

  // Adopts `items` (owning the vector and its records) and rebuilds the
  // index from it. Null entries keep their position but are not indexed.
  // The previous vector and its records are deleted unless it is `items`.
  void Init(Items* items) {
    if (items != items_) {
      DeleteItems();
      items_ = items;
    }
    index_.clear();
    if (items_ == nullptr) return;
    for (size_t i = 0; i < items_->size(); ++i) {
      T* item = (*items_)[i];
      if (item != nullptr) index_.emplace(item, static_cast<int>(i));
    }
  }

  // The position of a record equal to `item`; when there is none, a clone
  // of `item` is appended and indexed and its position returned. The first
  // registration of a value wins.
  int Register(const T& item) {
    int found = Find(item);
    if (found >= 0) return found;
    return Add(item);
  }

  // Appends and indexes a clone of `item` without looking for an equal
  // record; its position.
  int Add(const T& item) {
    EnsureItems();
    T* copy = item.Clone();
    items_->push_back(copy);
    int position = static_cast<int>(items_->size() - 1);
    index_.emplace(copy, position);
    return position;
  }

  // The position of the first indexed record equal to `item`, or -1.
  int Find(const T& item) const {
    T* key = const_cast<T*>(&item);
    auto it = index_.lower_bound(key);
    if (it == index_.end() || index_.key_comp()(key, it->first)) return -1;
    return it->second;
  }

  // The record at `position` (may be null); std::out_of_range beyond the end.
  T* Get(unsigned position) const {
    if (items_ == nullptr) throw std::out_of_range("Storage::Get");
    return items_->at(position);
  }

  // Number of positions, null entries included.
  int GetCount() const { return items_ == nullptr ? 0 : static_cast<int>(items_->size()); }

 protected:
  // Creates an empty item vector when there is none, with room for `reserve`.
  void EnsureItems(size_t reserve = 0) {
    if (items_ == nullptr) items_ = new Items();
    if (reserve > 0) items_->reserve(reserve);
  }

  Items* items_ = nullptr;
  Index index_;

 private:
  void DeleteItems() {
    index_.clear();
    if (items_ == nullptr) return;
    for (T* item : *items_) delete item;
    delete items_;
    items_ = nullptr;
  }
};

}  // namespace qro_common
