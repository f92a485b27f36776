// OdDbEdgeList: the edges at one end of a node of a graph.
#pragma once

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

#include "platform/base/types.h"

/// A list of plain values that keeps a single one in place: most variables read one other, or are
/// read by one, and a walk along such edges then touches no memory besides the nodes. Used like a
/// std::vector; it moves but does not copy. References to values end with the next change.
template <class T>
class OdDbEdgeList {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_default_constructible_v<T>);

 public:
  OdDbEdgeList() = default;
  OdDbEdgeList(OdDbEdgeList&& other) noexcept { swap(other); }
  OdDbEdgeList& operator=(OdDbEdgeList&& other) noexcept {
    OdDbEdgeList(std::move(other)).swap(*this);
    return *this;
  }
  ~OdDbEdgeList() {
    if (!isInPlace()) std::unique_ptr<T[]>(m_edges.many).reset();
  }

  [[nodiscard]] OdUInt32 size() const { return m_size; }
  [[nodiscard]] bool empty() const { return m_size == 0; }
  [[nodiscard]] T* begin() { return isInPlace() ? &m_edges.one : m_edges.many; }
  [[nodiscard]] T* end() { return begin() + m_size; }
  [[nodiscard]] const T* begin() const { return isInPlace() ? &m_edges.one : m_edges.many; }
  [[nodiscard]] const T* end() const { return begin() + m_size; }
  [[nodiscard]] T& operator[](std::size_t place) { return begin()[place]; }
  [[nodiscard]] const T& operator[](std::size_t place) const { return begin()[place]; }
  [[nodiscard]] const T& front() const { return *begin(); }
  [[nodiscard]] const T& back() const { return begin()[m_size - 1]; }
  /// What the list has taken besides itself.
  [[nodiscard]] std::size_t memoryBytes() const { return isInPlace() ? 0 : m_capacity * sizeof(T); }

  void push_back(const T& edge) {
    const T added = edge;  // it may be one of the list's own
    if (m_size == m_capacity) reserve(2 * m_capacity);
    begin()[m_size++] = added;
  }
  void pop_back() { --m_size; }
  void clear() { m_size = 0; }
  void reserve(std::size_t capacity) {
    if (capacity <= m_capacity) return;
    auto many = std::make_unique<T[]>(capacity);
    std::copy(begin(), end(), many.get());
    if (!isInPlace()) std::unique_ptr<T[]>(m_edges.many).reset();
    m_edges.many = many.release();
    m_capacity = static_cast<OdUInt32>(capacity);
  }

 private:
  union Edges {
    T one;
    T* many;
  };

  [[nodiscard]] bool isInPlace() const { return m_capacity == 1; }
  void swap(OdDbEdgeList& other) noexcept {
    std::swap(m_edges, other.m_edges);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
  }

  Edges m_edges{};
  OdUInt32 m_size = 0;
  OdUInt32 m_capacity = 1;
};
