// A vector as a set: in rising order, each item once.
#pragma once

#include <algorithm>
#include <vector>

/// Sorts by `<` and drops all but one of equal items. Allocates nothing.
template <class Item>
void odSortUnique(std::vector<Item>& items) {
  std::ranges::sort(items);
  items.erase(std::unique(items.begin(), items.end()), items.end());
}
