// OdDbChunkedOrder: a sorted sequence that stays fast to change at any size.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/base/types.h"

/// Items in rising order of their keys, each key once, kept in sorted chunks of bounded size: an
/// insertion or removal moves the items of one chunk only, and walking is a walk over arrays. No
/// chunk is empty, and the last key of a chunk is below the first of the next: so the chunk of a
/// key is found by bisection over the chunks, and the key by bisection in it. A chunk that grows
/// beyond its bound is cut in two; one that becomes empty is removed. Chosen over a tree because
/// most sequences hold a few items and there are very many of them.
///
/// `Order` has static `int compare(const T& item, const Key& key)` for every key type used, T
/// included. Cursors are valid until generation() changes.
template <class T, class Order>
class OdDbChunkedOrder {
 public:
  struct Cursor {
    std::size_t chunk = 0;
    std::size_t index = 0;
  };

  [[nodiscard]] std::size_t size() const { return m_size; }
  [[nodiscard]] bool isEmpty() const { return m_size == 0; }
  /// Changes with every insertion and removal.
  [[nodiscard]] OdUInt32 generation() const { return m_generation; }

  [[nodiscard]] Cursor first() const { return {}; }
  /// The last item; first() of an empty sequence.
  [[nodiscard]] Cursor last() const {
    return isEmpty() ? Cursor() : Cursor{m_chunks.size() - 1, m_chunks.back().size() - 1};
  }
  [[nodiscard]] bool isEnd(const Cursor& at) const { return at.chunk >= m_chunks.size(); }
  [[nodiscard]] const T& item(const Cursor& at) const { return m_chunks[at.chunk][at.index]; }
  void advance(Cursor& at) const {
    if (++at.index == m_chunks[at.chunk].size()) at = {at.chunk + 1, 0};
  }
  /// False, with the cursor left alone, at the first item. The end steps back to the last item.
  bool retreat(Cursor& at) const {
    if (at.index > 0) {
      --at.index;
      return true;
    }
    if (at.chunk == 0) return false;
    --at.chunk;
    at.index = m_chunks[at.chunk].size() - 1;
    return true;
  }

  /// The first item whose key is not below `key`.
  template <class Key>
  [[nodiscard]] Cursor lowerBound(const Key& key) const {
    const std::size_t chunk = chunkOf(key);
    if (chunk == m_chunks.size()) return {chunk, 0};
    const auto& items = m_chunks[chunk];
    const auto at = std::lower_bound(items.begin(), items.end(), key, isBelow<Key>);
    return {chunk, static_cast<std::size_t>(at - items.begin())};
  }
  /// The item of the key, or null.
  template <class Key>
  [[nodiscard]] const T* find(const Key& key) const {
    const Cursor at = lowerBound(key);
    if (isEnd(at) || Order::compare(item(at), key) != 0) return nullptr;
    return &item(at);
  }
  template <class Key>
  [[nodiscard]] T* find(const Key& key) {
    return const_cast<T*>(std::as_const(*this).find(key));
  }

  /// False, and nothing changes, when there is an item of the same key.
  bool insert(T value) {
    if (!m_chunks.empty() && Order::compare(m_chunks.back().back(), value) < 0) {
      append(std::move(value));
      return true;
    }
    const Cursor at = lowerBound(value);
    if (isEnd(at)) {
      append(std::move(value));
      return true;
    }
    if (Order::compare(item(at), value) == 0) return false;
    auto& items = m_chunks[at.chunk];
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(at.index), std::move(value));
    if (items.size() > kChunkSize) split(at.chunk);
    counted(1);
    return true;
  }
  /// False when there is no such item.
  template <class Key>
  bool erase(const Key& key) {
    const Cursor at = lowerBound(key);
    if (isEnd(at) || Order::compare(item(at), key) != 0) return false;
    auto& items = m_chunks[at.chunk];
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(at.index));
    if (items.empty()) m_chunks.erase(m_chunks.begin() + static_cast<std::ptrdiff_t>(at.chunk));
    --m_size;
    ++m_generation;
    return true;
  }
  void clear() {
    m_chunks.clear();
    m_size = 0;
    ++m_generation;
  }

  /// Calls `visit(item)` for all items in order.
  template <class Visit>
  void forEach(const Visit& visit) const {
    for (const auto& items : m_chunks) {
      for (const T& value : items) visit(value);
    }
  }
  /// True when `test(item)` holds for one of the items; stops there.
  template <class Test>
  [[nodiscard]] bool anyOf(const Test& test) const {
    for (const auto& items : m_chunks) {
      if (std::any_of(items.begin(), items.end(), test)) return true;
    }
    return false;
  }

  [[nodiscard]] std::size_t memoryUsed() const {
    std::size_t bytes = m_chunks.capacity() * sizeof(m_chunks[0]);
    for (const auto& items : m_chunks) bytes += items.capacity() * sizeof(T);
    return bytes;
  }

 private:
  static constexpr std::size_t kChunkSize = 256;

  template <class Key>
  static bool isBelow(const T& value, const Key& key) {
    return Order::compare(value, key) < 0;
  }
  // The first chunk whose last item is not below the key.
  template <class Key>
  [[nodiscard]] std::size_t chunkOf(const Key& key) const {
    const auto at = std::lower_bound(
        m_chunks.begin(), m_chunks.end(), key,
        [](const std::vector<T>& items, const Key& k) { return isBelow<Key>(items.back(), k); });
    return static_cast<std::size_t>(at - m_chunks.begin());
  }
  void append(T value) {
    if (m_chunks.empty() || m_chunks.back().size() == kChunkSize) m_chunks.emplace_back();
    m_chunks.back().push_back(std::move(value));
    counted(1);
  }
  void split(std::size_t chunk) {
    auto& items = m_chunks[chunk];
    const auto middle = items.begin() + static_cast<std::ptrdiff_t>(items.size() / 2);
    std::vector<T> upper(std::make_move_iterator(middle), std::make_move_iterator(items.end()));
    items.erase(middle, items.end());
    m_chunks.insert(m_chunks.begin() + static_cast<std::ptrdiff_t>(chunk + 1), std::move(upper));
  }
  void counted(std::size_t added) {
    m_size += added;
    ++m_generation;
  }

  std::vector<std::vector<T>> m_chunks;  // none is empty
  std::size_t m_size = 0;
  OdUInt32 m_generation = 0;
};
