// Copy-on-write array of the runtime.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <utility>

#include "platform/base/array_buffer.h"
#include "platform/base/string.h"

/// A contiguous array whose copies share one buffer until one of them is changed. One pointer wide;
/// an empty array that never grew has no buffer. Elements need a copy constructor for everything
/// that may have to unshare.
///
/// 1. Every access that could change an element (non-const operator[], at, begin, asArrayPtr)
///    unshares first. Pointers and iterators are valid until the array grows or is unshared.
/// 2. An index out of range raises OdError_InvalidIndex and changes nothing.
/// 3. A failed allocation, or more than 2^32 - 1 elements, raises OdError(eOutOfMemory); the array
///    is as before. So it is when copying an element throws.
/// 4. Arguments may be elements of the array itself.
///
/// Different arrays may be used in different threads, also when they share a buffer.
template <class T, class A = OdObjectsAllocator<T>>
class OdArray {
 public:
  using value_type = T;
  using size_type = OdUInt32;
  using reference = T&;
  using const_reference = const T&;
  using iterator = T*;
  using const_iterator = const T*;

  constexpr OdArray() noexcept = default;
  /// An empty array with room for `capacity` elements.
  explicit OdArray(size_type capacity) { reserve(capacity); }
  OdArray(std::initializer_list<T> values) { assign(values.begin(), values.end()); }
  OdArray(const OdArray& other) noexcept : m_data(other.m_data) { Buffer::addReference(m_data); }
  OdArray(OdArray&& other) noexcept : m_data(std::exchange(other.m_data, nullptr)) {}
  ~OdArray() { Buffer::dropReference(m_data); }

  OdArray& operator=(const OdArray& other) noexcept {
    OdArray(other).swap(*this);
    return *this;
  }
  OdArray& operator=(OdArray&& other) noexcept {
    OdArray(std::move(other)).swap(*this);
    return *this;
  }
  OdArray& operator=(std::initializer_list<T> values) {
    OdArray(values).swap(*this);
    return *this;
  }
  void swap(OdArray& other) noexcept { std::swap(m_data, other.m_data); }

  // ---- Queries

  [[nodiscard]] size_type size() const noexcept { return Buffer::size(m_data); }
  [[nodiscard]] size_type length() const noexcept { return Buffer::size(m_data); }
  [[nodiscard]] bool isEmpty() const noexcept { return size() == 0; }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  [[nodiscard]] size_type capacity() const noexcept { return Buffer::capacity(m_data); }
  [[nodiscard]] size_type physicalLength() const noexcept { return capacity(); }

  const T& operator[](size_type index) const {
    checkIndex(index);
    return m_data[index];
  }
  [[nodiscard]] const T& at(size_type index) const { return (*this)[index]; }
  [[nodiscard]] const T& getAt(size_type index) const { return (*this)[index]; }
  [[nodiscard]] const T& first() const { return (*this)[0]; }
  [[nodiscard]] const T& last() const { return (*this)[size() - 1]; }
  [[nodiscard]] const_iterator begin() const noexcept { return m_data; }
  [[nodiscard]] const_iterator end() const noexcept { return m_data + size(); }
  [[nodiscard]] const_iterator cbegin() const noexcept { return begin(); }
  [[nodiscard]] const_iterator cend() const noexcept { return end(); }
  /// Null only when the array never held anything.
  [[nodiscard]] const T* asArrayPtr() const noexcept { return m_data; }

  /// The first equal element at or behind `start`; `index` is left alone when there is none.
  bool find(const T& value, size_type& index, size_type start = 0) const {
    for (size_type i = start; i < size(); ++i) {
      if (m_data[i] == value) {
        index = i;
        return true;
      }
    }
    return false;
  }
  [[nodiscard]] bool contains(const T& value, size_type start = 0) const {
    size_type ignored = 0;
    return find(value, ignored, start);
  }
  bool operator==(const OdArray& other) const {
    if (m_data == other.m_data) return true;
    if (size() != other.size()) return false;
    for (size_type i = 0; i < size(); ++i) {
      if (!(m_data[i] == other.m_data[i])) return false;
    }
    return true;
  }

  // ---- Access that unshares

  T& operator[](size_type index) {
    checkIndex(index);
    unshare();
    return m_data[index];
  }
  T& at(size_type index) { return (*this)[index]; }
  T& first() { return (*this)[0]; }
  T& last() { return (*this)[size() - 1]; }
  iterator begin() {
    unshare();
    return m_data;
  }
  iterator end() {
    unshare();
    return m_data + size();
  }
  T* asArrayPtr() {
    unshare();
    return m_data;
  }

  // ---- Edits

  void setAt(size_type index, const T& value) {
    if (Buffer::isShared(m_data)) {
      checkIndex(index);
      T copy(value);  // may be an element of the buffer that is dropped
      (*this)[index] = std::move(copy);
      return;
    }
    (*this)[index] = value;
  }
  /// Makes room for at least `capacity` elements in all.
  void reserve(size_type capacity) {
    if (capacity > this->capacity() || (capacity && Buffer::isShared(m_data))) {
      adopt(Buffer::copy(m_data, size(), std::max(capacity, size())));
    }
  }
  /// Room for exactly `capacity` elements; those beyond it go.
  void setPhysicalLength(size_type capacity) {
    if (capacity == this->capacity()) return;
    adopt(Buffer::copy(m_data, std::min(size(), capacity), capacity));
  }
  void resize(size_type count) {
    if (count <= size()) return truncate(count);
    makeRoom(count);
    Buffer::constructDefault(m_data, size(), count);
  }
  void resize(size_type count, const T& value) {
    if (count <= size()) return truncate(count);
    const T copy(value);  // the value may be an element  NOLINT(performance-unnecessary-*)
    makeRoom(count);
    Buffer::constructCopies(m_data, size(), count, copy);
  }
  /// Drops the elements and keeps an unshared buffer for reuse.
  void clear() { truncate(0); }

  /// The index of the new element.
  size_type append(const T& value) {
    emplace_back(value);
    return size() - 1;
  }
  size_type append(T&& value) {
    emplace_back(std::move(value));
    return size() - 1;
  }
  OdArray& append(const OdArray& other) {
    if (isEmpty() && capacity() < other.size()) return *this = other;
    const OdArray source(other);  // keeps the elements when `other` is this array
    appendRange(source.m_data, source.size());
    return *this;
  }
  void push_back(const T& value) { emplace_back(value); }
  void push_back(T&& value) { emplace_back(std::move(value)); }
  template <class... Arguments>
  T& emplace_back(Arguments&&... arguments) {
    const size_type count = size();
    if (count < capacity() && !Buffer::isShared(m_data)) [[likely]]
      return Buffer::constructOne(m_data, count, std::forward<Arguments>(arguments)...);
    T element(std::forward<Arguments>(arguments)...);  // before the old elements move
    makeRoom(Buffer::countPlus(count, 1));
    return Buffer::constructOne(m_data, count, std::move(element));
  }
  /// Inserts before the element at `index`; index == size() appends.
  void insertAt(size_type index, const T& value) {
    if (index > size()) odRaiseInvalidIndex(index, size());
    emplace_back(value);
    std::rotate(m_data + index, m_data + size() - 1, m_data + size());
  }
  void removeAt(size_type index) {
    checkIndex(index);
    unshare();
    closeGap(index, 1);
  }
  /// The elements first to last, both included.
  void removeSubArray(size_type first, size_type last) {
    checkIndex(last);
    if (first > last) odRaiseInvalidIndex(first, size());
    unshare();
    closeGap(first, last - first + 1);
  }
  void removeLast() {
    checkIndex(0);
    truncate(size() - 1);
  }
  /// The first equal element at or behind `start`; false when there is none.
  bool remove(const T& value, size_type start = 0) {
    size_type index = 0;
    if (!find(value, index, start)) return false;
    removeAt(index);
    return true;
  }
  void reverse() {
    if (size() > 1) std::reverse(begin(), end());
  }
  template <std::forward_iterator Iterator>
  void assign(Iterator from, Iterator to) {
    const auto count = std::distance(from, to);
    OdArray fresh(Buffer::countPlus(0, static_cast<OdUInt64>(count)));
    for (; from != to; ++from) fresh.emplace_back(*from);
    swap(fresh);
  }
  template <std::forward_iterator Iterator>
  void append(Iterator from, Iterator to) {
    OdArray tail;
    tail.assign(from, to);
    append(tail);
  }

 private:
  using Buffer = OdArrayBuffer<T, A>;

  void checkIndex(size_type index) const {
    if (index >= size()) [[unlikely]]
      odRaiseInvalidIndex(index, size());
  }
  void unshare() {
    if (Buffer::isShared(m_data)) [[unlikely]]
      adopt(Buffer::copy(m_data, size(), size()));
  }
  void adopt(T* data) noexcept {
    Buffer::dropReference(m_data);
    m_data = data;
  }
  /// An unshared buffer with room for `count` elements; grows by half at least.
  void makeRoom(size_type count) {
    if (Buffer::isShared(m_data)) {
      adopt(Buffer::copy(m_data, size(), Buffer::grownCapacity(capacity(), count)));
    } else if (count > capacity()) {
      m_data = Buffer::regrow(m_data, Buffer::grownCapacity(capacity(), count));
    }
  }
  void truncate(size_type count) {
    if (count == size()) return;
    if (Buffer::isShared(m_data)) {
      adopt(Buffer::copy(m_data, count, count));
    } else {
      Buffer::destroyFrom(m_data, count);
    }
  }
  /// Drops `count` elements of an unshared buffer and moves those behind them down.
  void closeGap(size_type first, size_type count) {
    if (!m_data) return;
    const size_type tail = size() - first - count;
    std::copy_n(std::make_move_iterator(m_data + first + count), tail, m_data + first);
    Buffer::destroyFrom(m_data, first + tail);
  }
  void appendRange(const T* values, size_type count) {
    if (count == 0) return;
    makeRoom(Buffer::countPlus(size(), count));
    Buffer::constructFrom(m_data, values, count);
  }

  T* m_data = nullptr;
};

using OdBinaryData = OdArray<OdUInt8, OdMemoryAllocator<OdUInt8>>;
using OdStringArray = OdArray<OdString, OdObjectsAllocator<OdString>>;
